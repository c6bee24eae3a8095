# Thin wrapper over the CMake presets. `make demo` and `make test` install
# what is missing (scripts/install-deps.sh), configure, build and run.
.PHONY: all deps demo test test-native test-sanitize test-tsan test-windows fuzz bench install clean regen-unicode peer-seeds

FUZZ_SECONDS ?= 20
FUZZ_REGEXP_SECONDS ?= 60
PREFIX ?= /usr/local

all: deps
	cmake --preset native
	cmake --build --preset native

deps:
	@bash scripts/install-deps.sh

demo: deps
	cmake --preset native >/dev/null
	cmake --build --preset native --target vkpch
	@echo "== vkpch version"
	@build/native/bin/vkpch version
	@echo "== vkpch find the data/sample.txt"
	@build/native/bin/vkpch find the data/sample.txt | tr '\n' ' '; echo
	@echo "== vkpch find --rev keeper data/sample.txt"
	@build/native/bin/vkpch find --rev keeper data/sample.txt
	@printf '%s\n' "== vkpch grep -n '\\b(keeper|lamp|log)\\b' data/sample.txt"
	@build/native/bin/vkpch grep -n '\b(keeper|lamp|log)\b' data/sample.txt
	@printf '%s\n' "== vkpch grep -o '[A-Z]\\w+' data/sample.txt"
	@build/native/bin/vkpch grep -o '[A-Z]\w+' data/sample.txt | tr '\n' ' '; echo

test: deps test-native test-sanitize test-tsan test-windows
	@echo "make test: native, sanitizer, ThreadSanitizer and Windows suites passed"

test-native:
	cmake --preset native
	cmake --build --preset native
	ctest --preset native

test-sanitize:
	cmake --preset sanitize
	cmake --build --preset sanitize
	ctest --preset sanitize
	$(MAKE) fuzz

# The library and the thread test under ThreadSanitizer.
test-tsan:
	cmake --preset tsan
	cmake --build --preset tsan
	ctest --preset tsan

test-windows:
	cmake --preset mingw
	cmake --build --preset mingw
	bash scripts/wine-init.sh
	ctest --preset mingw

# Short fuzz runs, the regexp targets a little longer; FUZZ_SECONDS=600 make
# fuzz runs every target at least that long.
fuzz:
	bash scripts/run-fuzzers.sh build/sanitize/bin $(FUZZ_SECONDS) \
	  fuzz_regexp_compile=$(FUZZ_REGEXP_SECONDS) fuzz_regexp_find=$(FUZZ_REGEXP_SECONDS) \
	  fuzz_regexp_replace=$(FUZZ_REGEXP_SECONDS)

# The libpcre2 comparison on many seeds (make test runs one).
PEER_SEEDS ?= $(shell seq 1 50)
PEER_PATTERNS ?= 20000
peer-seeds: deps
	cmake --preset native >/dev/null
	cmake --build --preset native --target vkpch_regexp_peer
	@for s in $(PEER_SEEDS); do \
	  VKPCH_PEER_SEED=$$s VKPCH_PEER_PATTERNS=$(PEER_PATTERNS) build/native/bin/vkpch_regexp_peer --gtest_brief=1 \
	    || exit 1; \
	done

bench: deps
	cmake --preset native
	cmake --build --preset native --target vkpch_bench
	build/native/bin/vkpch_bench

# Rewrite the committed Unicode tables from ../shared/ucd-5.1.0.
regen-unicode:
	cmake --preset native >/dev/null
	cmake --build --preset native --target regen-unicode

install: all
	cmake --install build/native --prefix $(PREFIX)

clean:
	rm -rf build
