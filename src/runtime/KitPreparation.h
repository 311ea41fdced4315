#pragma once

namespace zentoro::Kit {

// `zentoro --prepare-kit`, which `make` runs after building the program: builds the kit for
// the compiler found into the prepared folder beside the program, so a new copy's first
// build doesn't wait for it. Without a compiler it says so and succeeds: a compiler
// installed later is met by the ordinary cache. Returns the process's exit status.
int prepare(int argc, char **argv);

// `zentoro --prepared-kit-folder`: prints the complete prepared kit this program would use for
// the compiler found, beside it or installed with it, and succeeds; fails silently when there
// is none. `make install` asks the built program which folder to install, and its test asks
// the installed program whether it finds what was installed.
int printPreparedFolder(int argc, char **argv);

} // namespace zentoro::Kit
