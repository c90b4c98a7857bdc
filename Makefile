# The front door. `make test` and `make demo` work on a fresh Debian 12
# machine as root: they install what is missing, build, and run.
BUILD      ?= build
ASAN_BUILD ?= build-asan
BENCH_BUILD ?= build-bench
JOBS       ?= $(shell nproc)
CMAKE_ARGS ?=

.PHONY: all deps build test test-plain test-sanitize demo bench install clean

all: build

deps:
	@tools/install-deps

build: deps
	cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=Release $(CMAKE_ARGS)
	cmake --build $(BUILD) -j$(JOBS)

test: test-plain test-sanitize

test-plain: build
	ctest --test-dir $(BUILD) --output-on-failure -j$(JOBS)

# The same suite under AddressSanitizer and UndefinedBehaviorSanitizer.
test-sanitize: deps
	cmake -S . -B $(ASAN_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DMAPWRIGHT_SANITIZE=ON $(CMAKE_ARGS)
	cmake --build $(ASAN_BUILD) -j$(JOBS)
	ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
	  ctest --test-dir $(ASAN_BUILD) --output-on-failure -j$(JOBS)

demo: build
	@echo "The command-line tool that runs the demo is not built yet."

bench: deps
	cmake -S . -B $(BENCH_BUILD) -DCMAKE_BUILD_TYPE=Release -DMAPWRIGHT_BENCH=ON -DMAPWRIGHT_TESTS=OFF $(CMAKE_ARGS)
	cmake --build $(BENCH_BUILD) -j$(JOBS)
	$(BENCH_BUILD)/bench/mapwright_bench

install: build
	cmake --install $(BUILD) --prefix $(or $(PREFIX),/usr/local)

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(BENCH_BUILD)
