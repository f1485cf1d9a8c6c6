# Front door: `make demo` and `make test`. Each first installs the Debian
# packages it lacks (tools/install-deps.sh, quiet when nothing is missing);
# CMake does the real work.
BUILD_DIR ?= build
ASAN_DIR ?= build-asan
TSAN_DIR ?= build-tsan
FUZZ_DIR ?= build-fuzz
JOBS ?= 2
MAKEFLAGS += --no-print-directory
CMAKE_FLAGS ?=
PREFIX ?= /usr/local
# $(call configure,DIR,PACKAGE SETS,CMAKE ARGUMENTS)
configure = tools/install-deps.sh $(2) && cmake -S . -B $(1) $(3) $(CMAKE_FLAGS) >/dev/null

.PHONY: all build demo install test test-long test-asan test-tsan fuzz fuzz-ci bench docs clean

all: build

build:
	@$(call configure,$(BUILD_DIR),build,-DCMAKE_BUILD_TYPE=RelWithDebInfo)
	@cmake --build $(BUILD_DIR) -j $(JOBS)

demo:
	@$(call configure,$(BUILD_DIR),build,-DCMAKE_BUILD_TYPE=RelWithDebInfo)
	@cmake --build $(BUILD_DIR) -j $(JOBS) --target orvelan-demo orvelan-cpp-example
	@$(BUILD_DIR)/examples/orvelan-demo
	@echo "== The same file through the C++ wrapper (examples/cpp_host.cc)"
	@$(BUILD_DIR)/examples/orvelan-cpp-example examples/statement.ofx

# The library, headers, pkg-config file and CMake package under PREFIX, staged
# under DESTDIR when it is set.
install:
	@$(call configure,$(BUILD_DIR),build,-DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_INSTALL_PREFIX=$(PREFIX))
	@cmake --build $(BUILD_DIR) -j $(JOBS) --target orvelan
	@DESTDIR=$(DESTDIR) cmake --install $(BUILD_DIR)

# CTest lists skipped tests without their reasons; the awk script adds them.
test:
	@$(call configure,$(BUILD_DIR),test,-DCMAKE_BUILD_TYPE=RelWithDebInfo)
	@cmake --build $(BUILD_DIR) -j $(JOBS)
	@cd $(BUILD_DIR) && ctest --output-on-failure --no-tests=error -j $(JOBS) -LE long; status=$$?; \
		awk -f $(CURDIR)/cmake/skip_reasons.awk Testing/Temporary/LastTest.log; exit $$status

# The full-size growth and hostile-file runs (1,000 exchanges, a 1 GB file),
# one at a time: they measure the process's own memory.
test-long:
	@$(call configure,$(BUILD_DIR),test,-DCMAKE_BUILD_TYPE=RelWithDebInfo)
	@cmake --build $(BUILD_DIR) -j $(JOBS)
	@cd $(BUILD_DIR) && ctest --output-on-failure --no-tests=error -L long; status=$$?; \
		awk -f $(CURDIR)/cmake/skip_reasons.awk Testing/Temporary/LastTest.log; exit $$status

test-asan:
	@$(call configure,$(ASAN_DIR),test,-DCMAKE_BUILD_TYPE=Debug -DORVELAN_SANITIZE=ON -DORVELAN_BUILD_BENCH=OFF)
	@cmake --build $(ASAN_DIR) -j $(JOBS)
	@cd $(ASAN_DIR) && ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
		ctest --output-on-failure --no-tests=error -j $(JOBS) -LE long; status=$$?; \
		awk -f $(CURDIR)/cmake/skip_reasons.awk Testing/Temporary/LastTest.log; exit $$status

# The same suite under ThreadSanitizer; the thread test is the one that counts.
test-tsan:
	@$(call configure,$(TSAN_DIR),test,-DCMAKE_BUILD_TYPE=Debug -DORVELAN_TSAN=ON -DORVELAN_BUILD_BENCH=OFF)
	@cmake --build $(TSAN_DIR) -j $(JOBS)
	@cd $(TSAN_DIR) && TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 \
		ctest --output-on-failure --no-tests=error -j $(JOBS) -LE long; status=$$?; \
		awk -f $(CURDIR)/cmake/skip_reasons.awk Testing/Temporary/LastTest.log; exit $$status

fuzz: export CC = clang
fuzz: export CXX = clang++
fuzz:
	@$(call configure,$(FUZZ_DIR),fuzz,-DCMAKE_BUILD_TYPE=RelWithDebInfo -DORVELAN_BUILD_FUZZ=ON \
		-DORVELAN_BUILD_TESTS=OFF -DORVELAN_BUILD_BENCH=OFF)
	@cmake --build $(FUZZ_DIR) -j $(JOBS)

# Each fuzz target (or those in FUZZ_TARGETS) for FUZZ_SECONDS or FUZZ_RUNS
# executions, whichever comes first, on its seeds and, for the OFX targets,
# the shared real files (fuzz/run.sh); new inputs go to a scratch corpus, the
# seeds stay as committed. CI runs ten targets after the suite, so 30 s each.
FUZZ_SECONDS ?= 30
FUZZ_RUNS ?= -1
FUZZ_TARGETS ?= $(notdir $(basename $(wildcard fuzz/*_fuzz.cc)))
fuzz-ci: fuzz
	@for name in $(FUZZ_TARGETS); do \
		fuzz/run.sh $(FUZZ_DIR) $$name $(FUZZ_SECONDS) $(FUZZ_RUNS) || exit 1; \
	done

bench:
	@$(call configure,$(BUILD_DIR),bench,-DCMAKE_BUILD_TYPE=RelWithDebInfo)
	@cmake --build $(BUILD_DIR) -j $(JOBS)
	@for b in $(BUILD_DIR)/bench/*_bench $(BUILD_DIR)/bench/*_timing; do echo "== $$b"; $$b; done

# The API reference from the public headers' comments, in $(BUILD_DIR)/docs/html;
# a Doxygen warning fails it (docs/Doxyfile).
docs:
	@tools/install-deps.sh docs
	@mkdir -p $(BUILD_DIR)/docs
	@(cat docs/Doxyfile; echo "OUTPUT_DIRECTORY = $(BUILD_DIR)/docs"; \
		sed -n 's/^project(orvelan VERSION \([0-9.]*\).*/PROJECT_NUMBER = \1/p' CMakeLists.txt) | doxygen -
	@echo "API reference: $(BUILD_DIR)/docs/html/index.html"

clean:
	rm -rf $(BUILD_DIR) $(ASAN_DIR) $(TSAN_DIR) $(FUZZ_DIR)
