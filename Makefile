# Entry points for people and CI. Each target installs what it needs first, so a fresh
# Debian 12 machine needs nothing but this checkout.
BUILD_DIR ?= build
ASAN_DIR ?= build-asan
JOBS ?= $(shell nproc)
CMAKE_FLAGS ?=

.PHONY: deps configure build run test test-sanitize bench clean

deps:
	bash scripts/install-deps.sh

configure: deps
	cmake -S . -B $(BUILD_DIR) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS)

build: configure
	cmake --build $(BUILD_DIR) -j $(JOBS)

run: build
	./$(BUILD_DIR)/cli/corvida-cli stream --simulated --measure --seconds 10

test: build
	cd $(BUILD_DIR) && ctest --output-on-failure -j $(JOBS)

test-sanitize: deps
	cmake -S . -B $(ASAN_DIR) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCORVIDA_SANITIZE=ON -DCORVIDA_BUILD_BENCH=OFF
	cmake --build $(ASAN_DIR) -j $(JOBS)
	cd $(ASAN_DIR) && ASAN_OPTIONS=detect_leaks=0 UBSAN_OPTIONS=print_stacktrace=1 ctest --output-on-failure -j $(JOBS)

bench: build
	for b in $(BUILD_DIR)/bench/bench_*; do [ -x "$$b" ] && "$$b"; done

clean:
	rm -rf $(BUILD_DIR) $(ASAN_DIR)
