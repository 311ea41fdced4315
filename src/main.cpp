#include "ui/ZentoroApp.h"

int main(int argc, char **argv)
{
    return zentoro::ZentoroApp::run(argc, argv);
}
