// The host interface is declarations only; this file gives the C target something to build.
#include "zentoro_host.h"
