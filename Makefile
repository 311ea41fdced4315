# The two set-up commands: `make run` and `make test`. Both install what is
# missing, configure and build first.
BUILD_DIR ?= build
JOBS ?= $(shell nproc)

.PHONY: run test bench fuzz deps configure build clean

deps:
	@scripts/install-deps

configure: deps
	@cmake -S . -B $(BUILD_DIR) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null

build: configure
	@cmake --build $(BUILD_DIR) -j $(JOBS)

run: build
	$(BUILD_DIR)/zentoro

test: build
	cd $(BUILD_DIR) && QT_QPA_PLATFORM=offscreen ctest --output-on-failure -j $(JOBS)

bench: build
	@bench/run $(BUILD_DIR)

# Searches every parser for new failures for FUZZ_SECONDS each; fails on any finding.
FUZZ_SECONDS ?= 60
fuzz: deps
	@scripts/fuzz search $(BUILD_DIR)/fuzz $(FUZZ_SECONDS)

clean:
	rm -rf $(BUILD_DIR)
