# Front door: `make demo` and `make test`. CMake does the real work.
BUILD_DIR ?= build
ASAN_DIR ?= build-asan
FUZZ_DIR ?= build-fuzz
JOBS ?= 2
MAKEFLAGS += --no-print-directory
CMAKE_FLAGS ?=

.PHONY: all build demo test test-asan fuzz fuzz-ci bench clean

all: build

build:
	@cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS) >/dev/null
	@cmake --build $(BUILD_DIR) -j $(JOBS)

demo: build
	@$(BUILD_DIR)/examples/orvelan-demo

test: build
	@cd $(BUILD_DIR) && ctest --output-on-failure -j $(JOBS)

test-asan:
	@cmake -S . -B $(ASAN_DIR) -DCMAKE_BUILD_TYPE=Debug -DORVELAN_SANITIZE=ON -DORVELAN_BUILD_BENCH=OFF $(CMAKE_FLAGS) >/dev/null
	@cmake --build $(ASAN_DIR) -j $(JOBS)
	@cd $(ASAN_DIR) && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
		ctest --output-on-failure -j $(JOBS)

fuzz:
	@CC=clang CXX=clang++ cmake -S . -B $(FUZZ_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DORVELAN_BUILD_FUZZ=ON \
		-DORVELAN_BUILD_TESTS=OFF -DORVELAN_BUILD_BENCH=OFF $(CMAKE_FLAGS) >/dev/null
	@cmake --build $(FUZZ_DIR) -j $(JOBS)

# Each fuzz target for FUZZ_SECONDS on its seeds (fuzz/seeds/<target>/);
# new inputs go to a scratch corpus, the seeds stay as committed.
FUZZ_SECONDS ?= 60
fuzz-ci: fuzz
	@for t in $(FUZZ_DIR)/fuzz/*_fuzz; do \
		name=$$(basename $$t); scratch=$(FUZZ_DIR)/corpus/$$name; mkdir -p $$scratch; \
		echo "== $$name for $(FUZZ_SECONDS)s"; \
		$$t -max_total_time=$(FUZZ_SECONDS) -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 \
			$$scratch fuzz/seeds/$$name || exit 1; \
	done

bench:
	@cmake -S . -B $(BUILD_DIR) -DCMAKE_BUILD_TYPE=RelWithDebInfo $(CMAKE_FLAGS) >/dev/null
	@cmake --build $(BUILD_DIR) -j $(JOBS)
	@for b in $(BUILD_DIR)/bench/*_bench $(BUILD_DIR)/bench/*_timing; do echo "== $$b"; $$b; done

clean:
	rm -rf $(BUILD_DIR) $(ASAN_DIR) $(FUZZ_DIR)
