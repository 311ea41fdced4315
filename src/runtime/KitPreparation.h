#pragma once

namespace zentoro::Kit {

// `zentoro --prepare-kit`, which `make` runs after building the program: builds the kit for
// the compiler found into the prepared folder beside the program, so a new copy's first
// build doesn't wait for it. Without a compiler it says so and succeeds: a compiler
// installed later is met by the ordinary cache. Returns the process's exit status.
int prepare(int argc, char **argv);

} // namespace zentoro::Kit
