# The two set-up commands: `make run` and `make test`. Both install what is
# missing, configure and build first. `make test` also checks the formatting of the lines
# changed since the branch left main (on main, of the last commit); `make format` formats
# every source as .clang-format and .swift-format say. `make install` puts the program, its
# prepared UI kit, desktop entry, icons and AppStream metadata under PREFIX; `make uninstall`
# removes exactly what that install put there.
BUILD_DIR ?= build
JOBS ?= $(shell nproc)
PREFIX ?= $(HOME)/.local

.PHONY: run test bench fuzz format deps configure build clean install uninstall

deps:
	@scripts/install-deps

configure: deps
	@cmake -S . -B $(BUILD_DIR) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null

build: configure
	@cmake --build $(BUILD_DIR) -j $(JOBS)

run: build
	$(BUILD_DIR)/zentoro

test: build
	@scripts/format --check
	cd $(BUILD_DIR) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

format: deps
	@scripts/format

bench: build
	@bench/run $(BUILD_DIR)

# Searches every parser for new failures for FUZZ_SECONDS each; fails on any finding.
FUZZ_SECONDS ?= 60
fuzz: deps
	@scripts/fuzz search $(BUILD_DIR)/fuzz $(FUZZ_SECONDS)

install: build
	cmake --install $(BUILD_DIR) --prefix "$(PREFIX)"

uninstall:
	cmake -D PREFIX="$(PREFIX)" -P cmake/Uninstall.cmake

clean:
	rm -rf $(BUILD_DIR)
