# Thin wrapper over CMake. `make test` is all a new machine needs.
PREFIX ?= /usr/local
JOBS ?= $(shell nproc 2>/dev/null || echo 2)
CCACHE := $(shell command -v ccache 2>/dev/null)
CMAKE_FLAGS := -DCMAKE_BUILD_TYPE=RelWithDebInfo $(if $(CCACHE),-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)

# ctest runs the cases two at a time; a case that needs more time than this is a hang.
CTEST := ctest --output-on-failure -j $(JOBS) --timeout 300

.PHONY: all deps build python test demo test-asan test-tsan bench fuzz install clean

all: build

deps:
	@scripts/install-deps

build/CMakeCache.txt: | deps
	cmake -S . -B build $(CMAKE_FLAGS)

build: deps build/CMakeCache.txt
	cmake --build build -j $(JOBS)

# The Python module alone, into build/python (PYTHONPATH=build/python imports it).
python: deps build/CMakeCache.txt
	cmake --build build -j $(JOBS) --target python

test: build
	cd build && $(CTEST)

# The blob finder of examples/blobs.tsp over a generated frame sequence: the boxes of each
# frame on stdout; the annotated frames and the graph of the filter in out/demo/. The
# generator's own boxes go to out/demo/generated-boxes.txt, to compare.
DEMO := out/demo
demo: build
	@scripts/install-deps demo
	rm -rf $(DEMO) && mkdir -p $(DEMO)
	build/examples/frames/generate_frames $(DEMO)/frames > $(DEMO)/generated-boxes.txt
	build/tools/tessarity_run/tessarity-run examples/blobs.tsp --frames camera=$(DEMO)/frames \
	  --get Blobs:boxes --get Blobs:annotated --dump Blobs --out $(DEMO)

# AddressSanitizer and UndefinedBehaviorSanitizer; the first report fails the run.
test-asan: deps
	cmake -S . -B build-asan $(CMAKE_FLAGS) -DTESSARITY_SANITIZE="address;undefined"
	cmake --build build-asan -j $(JOBS)
	cd build-asan && ASAN_OPTIONS=halt_on_error=1:detect_leaks=1 \
	  UBSAN_OPTIONS=halt_on_error=1:print_stacktrace=1 $(CTEST)

test-tsan: deps
	cmake -S . -B build-tsan $(CMAKE_FLAGS) -DTESSARITY_SANITIZE=thread
	cmake --build build-tsan -j $(JOBS)
	cd build-tsan && TSAN_OPTIONS=halt_on_error=1:second_deadlock_stack=1 $(CTEST)

bench:
	@scripts/install-deps bench
	cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release -DTESSARITY_BUILD_TESTS=OFF \
	  -DTESSARITY_BUILD_BENCH=ON $(if $(CCACHE),-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
	cmake --build build-bench -j $(JOBS)
	./build-bench/bench/tessarity_bench
	PYTHONPATH=build-bench/python /usr/bin/python3 bench/python_bench.py build-bench/bench/tessarity_bench

# libFuzzer, built with clang; not part of CI. FUZZ_TARGET=filter_fuzzer runs the built-in
# filters on values made from the bytes instead of the program language.
FUZZ_SECONDS ?= 600
FUZZ_TARGET ?= program_fuzzer
fuzz:
	@scripts/install-deps fuzz
	CC=clang CXX=clang++ cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo \
	  -DTESSARITY_FUZZ=ON -DTESSARITY_BUILD_TESTS=OFF $(if $(CCACHE),-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
	cmake --build build-fuzz -j $(JOBS) --target $(FUZZ_TARGET)
	mkdir -p build-fuzz/corpus-$(FUZZ_TARGET)
	./build-fuzz/fuzz/$(FUZZ_TARGET) build-fuzz/corpus-$(FUZZ_TARGET) fuzz/corpus/$(FUZZ_TARGET) \
	  -max_len=4096 -max_total_time=$(FUZZ_SECONDS) -print_final_stats=1

install: build
	cmake --install build --prefix $(PREFIX)

clean:
	rm -rf build build-asan build-tsan build-bench build-fuzz out
