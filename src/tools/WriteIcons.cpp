// Writes the program's icon into a hicolor theme folder for `make install`:
// scalable/apps/<id>.svg and <n>x<n>/apps/<id>.png.
#include "ui/AppIcon.h"

#include <QDir>
#include <QFile>
#include <QGuiApplication>

#include <cstdio>

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s <hicolor folder>\n", argv[0]);
        return 2;
    }
    using namespace zentoro;
    const QString root = QFile::decodeName(argv[1]);
    const QString name = AppIcon::themeName();
    const QString scalable = root + QStringLiteral("/scalable/apps");
    QDir().mkpath(scalable);
    QFile svg(scalable + u'/' + name + QStringLiteral(".svg"));
    bool written = svg.open(QIODevice::WriteOnly) && svg.write(AppIcon::svg()) > 0;
    for (const int size : {16, 24, 32, 48, 64, 128, 256, 512}) {
        const QString folder = root + QStringLiteral("/%1x%1/apps").arg(size);
        QDir().mkpath(folder);
        written = written && AppIcon::image(size).save(folder + u'/' + name + QStringLiteral(".png"));
    }
    if (!written)
        std::fprintf(stderr, "Couldn't write the icons into %s\n", argv[1]);
    return written ? 0 : 1;
}
