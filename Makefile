# Entry points for people and CI. Each target installs what it needs first, so a fresh
# Debian 12 machine needs nothing but this checkout.
BUILD_DIR ?= build
ASAN_DIR ?= build-asan
JOBS ?= $(shell nproc)
CMAKE_FLAGS ?=

.PHONY: deps configure build run test test-sanitize fuzz bench clean

FUZZ_DIR ?= build-fuzz
FUZZ_SECONDS ?= 60

deps:
	bash scripts/install-deps.sh

configure: deps
	cmake -S . -B $(BUILD_DIR) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS)

build: configure
	cmake --build $(BUILD_DIR) -j $(JOBS)

# Starts the desktop program. Without a display (a server, a container) run it under a virtual
# one: xvfb-run -a make run
run: build
	./$(BUILD_DIR)/corvida

test: build
	cd $(BUILD_DIR) && ctest --output-on-failure -j $(JOBS)

test-sanitize: deps
	cmake -S . -B $(ASAN_DIR) -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCORVIDA_SANITIZE=ON -DCORVIDA_BUILD_BENCH=OFF
	cmake --build $(ASAN_DIR) -j $(JOBS)
	cd $(ASAN_DIR) && ASAN_OPTIONS=detect_leaks=0 UBSAN_OPTIONS=print_stacktrace=1 ctest --output-on-failure -j $(JOBS)

# Each fuzz target runs for FUZZ_SECONDS on its seeds; a crash or sanitizer report fails the run.
fuzz: deps
	cmake -S . -B $(FUZZ_DIR) -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_C_COMPILER=clang \
		-DCMAKE_CXX_COMPILER=clang++ -DCORVIDA_BUILD_FUZZ=ON -DCORVIDA_SANITIZE=ON -DCORVIDA_BUILD_TESTS=OFF -DCORVIDA_BUILD_BENCH=OFF
	cmake --build $(FUZZ_DIR) -j $(JOBS) --target corvida_fuzz_targets
	for f in $(FUZZ_DIR)/tests/fuzz/fuzz_*; do \
		[ -f "$$f" ] && [ -x "$$f" ] || continue; name=$$(basename $$f); \
		mkdir -p $(FUZZ_DIR)/corpus/$$name; \
		seeds=tests/fuzz/$${name#fuzz_}_seeds; [ -d "$$seeds" ] || seeds=; \
		"$$f" -max_total_time=$(FUZZ_SECONDS) -max_len=8192 -timeout=10 -rss_limit_mb=1024 -print_final_stats=1 \
			$(FUZZ_DIR)/corpus/$$name $$seeds || exit 1; \
	done

bench: build
	for b in $(BUILD_DIR)/bench/bench_*; do [ -x "$$b" ] && "$$b"; done

clean:
	rm -rf $(BUILD_DIR) $(ASAN_DIR)
