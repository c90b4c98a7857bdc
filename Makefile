# The front door. `make test` and `make demo` work on a fresh Debian 12
# machine as root: they install what is missing, build, and run.
BUILD      ?= build
ASAN_BUILD ?= build-asan
BENCH_BUILD ?= build-bench
JOBS       ?= $(shell nproc)
CMAKE_ARGS ?=

.PHONY: all deps build test test-plain test-sanitize demo screenshots bench install clean

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

# The main job on the shipped sample: ground control points in Pulkovo 1942 /
# Gauss-Kruger zone 7 converted to WGS 84 / UTM zone 37 and back. It runs on a
# copy of the shipped catalogs and a registry file in a temporary directory,
# removed afterwards, so the user's own catalogs and saved systems are never
# read or changed. The last line is the round trip's difference: the standard
# Molodensky shift is not exactly invertible (PROJ's leaves the same few mm).
SAMPLE := data/samples/gcp_pulkovo1942_gk7.txt
GK7    := gk zone=7 datum="Pulkovo 1942"
UTM37  := utm zone=37 north datum="WGS 84"
demo: build
	@set -e; tmp=$$(mktemp -d); trap 'rm -rf "$$tmp"' EXIT; \
	cp -R "data/Auxiliary Data" "$$tmp/"; \
	export MAPWRIGHT_APPDIR="$$tmp" MAPWRIGHT_REGISTRY="$$tmp/registry.sqlite3" MAPWRIGHT_UI_LANG=en; \
	mw="$(BUILD)/cli/mapwright"; \
	grep -v '^#' $(SAMPLE) > "$$tmp/gk.txt"; \
	echo; echo "== Ground control points, Pulkovo 1942 / Gauss-Kruger zone 7 ($(SAMPLE)):"; \
	echo "   easting northing height name"; \
	cat "$$tmp/gk.txt"; \
	echo; echo "== To WGS 84 / UTM zone 37N:"; \
	echo "   mapwright convert --from '$(subst ",\",$(GK7))' --to '$(subst ",\",$(UTM37))'"; \
	"$$mw" convert --from '$(GK7)' --to '$(UTM37)' "$$tmp/gk.txt" > "$$tmp/utm.txt"; \
	cat "$$tmp/utm.txt"; \
	echo; echo "== And back to Pulkovo 1942 / Gauss-Kruger zone 7:"; \
	echo "   mapwright convert --from '$(subst ",\",$(UTM37))' --to '$(subst ",\",$(GK7))'"; \
	"$$mw" convert --from '$(UTM37)' --to '$(GK7)' "$$tmp/utm.txt" > "$$tmp/back.txt"; \
	cat "$$tmp/back.txt"; \
	echo; paste -d' ' "$$tmp/gk.txt" "$$tmp/back.txt" | awk '{ d = sqrt(($$1 - $$6) ^ 2 + ($$2 - $$7) ^ 2); \
	  if (d > m) m = d; v = $$3 - $$8; if (v < 0) v = -v; if (v > mv) mv = v } \
	  END { printf "Largest round-trip difference: %.4f m across, %.4f m in height\n", m, mv }'

# The pictures of the two dialogs in docs/images, English and Russian: real
# widgets on Qt's offscreen platform (DejaVu Sans has the Cyrillic and the
# degree sign), on a copy of the shipped catalogs; nothing is saved.
screenshots: build
	@set -e; tmp=$$(mktemp -d); trap 'rm -rf "$$tmp"' EXIT; \
	cp -R "data/Auxiliary Data" "$$tmp/"; mkdir -p docs/images; \
	MAPWRIGHT_APPDIR="$$tmp" MAPWRIGHT_REGISTRY="$$tmp/registry.sqlite3" XDG_RUNTIME_DIR="$$tmp" \
	QT_QPA_PLATFORM=offscreen $(BUILD)/tools/screenshots/mw_screenshots docs/images

bench: deps
	cmake -S . -B $(BENCH_BUILD) -DCMAKE_BUILD_TYPE=Release -DMAPWRIGHT_BENCH=ON -DMAPWRIGHT_TESTS=OFF $(CMAKE_ARGS)
	cmake --build $(BENCH_BUILD) -j$(JOBS)
	$(BENCH_BUILD)/bench/mapwright_bench

install: build
	cmake --install $(BUILD) --prefix $(or $(PREFIX),/usr/local)

clean:
	rm -rf $(BUILD) $(ASAN_BUILD) $(BENCH_BUILD)
