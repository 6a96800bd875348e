# Two entry points for a fresh machine: `make demo` and `make test`.
JOBS ?= $(shell nproc)
MAKEFLAGS += --no-print-directory
BUILD ?= build
SAN_BUILD ?= build-san
DEMO ?= $(BUILD)/demo
BENCH_BUILD ?= build-release
BENCH_DIR ?= $(BENCH_BUILD)/bench-run
BENCH_SIZES ?= 250000 500000 1000000
BENCH_REPEAT ?= 3
FUZZ_BUILD ?= build-fuzz
FUZZ_SECONDS ?= 60

.PHONY: all deps configure build programs demo test test-plain test-san test-fuzz fuzz fuzz-build bench clean

all: build

deps:
	@scripts/install-deps.sh

configure: deps
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null

build: configure
	@cmake --build $(BUILD) -j $(JOBS)

# Only the two programs that the demo runs.
programs: configure
	@cmake --build $(BUILD) -j $(JOBS) --target orva modrake

# The transport model; its solve with POSTOPT, whose listing is shown; then the same model with
# a flaw planted in it, whose listing is shown too. The logs are left out; the listings stay in
# $(DEMO). README.md, "Using it", reads the last.
demo: programs
	@mkdir -p $(DEMO)
	@echo "== orva examples/transport/transport.mod: ANALYSIS, BLOCKPIC, BLOCKLIST, PICTURE, MATCHIT"
	@$(BUILD)/orva examples/transport/transport.mod --listing $(DEMO)/transport.lst >/dev/null
	@echo "== orva examples/transport/transport.mod --requests examples/transport/solved.mrk: POSTOPT after the solve"
	@$(BUILD)/orva examples/transport/transport.mod --requests examples/transport/solved.mrk --listing $(DEMO)/solved.lst >/dev/null
	@cat $(DEMO)/solved.lst
	@echo "== orva examples/analysis/shipping.mod: ANALYSIS"
	@$(BUILD)/orva examples/analysis/shipping.mod --listing $(DEMO)/shipping.lst >/dev/null
	@cat $(DEMO)/shipping.lst
	@echo "== README.md, \"Using it\", reads this listing."

test: test-plain test-san test-fuzz

test-plain: build
	@cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

test-san: deps
	@cmake -S . -B $(SAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DMODRAKE_SANITIZE=ON >/dev/null
	@cmake --build $(SAN_BUILD) -j $(JOBS)
	@cd $(SAN_BUILD) && ctest --output-on-failure -j $(JOBS)

# Generated models read by glpsol --check and diagnosed by orva, in a Release build; each
# size BENCH_REPEAT times, the two in turn, and the median run of each reported.
bench:
	@scripts/install-deps.sh bench
	@cmake -S . -B $(BENCH_BUILD) -DCMAKE_BUILD_TYPE=Release >/dev/null
	@cmake --build $(BENCH_BUILD) -j $(JOBS) --target orva modrake modrake-bench
	@mkdir -p $(BENCH_DIR)
	@$(BENCH_BUILD)/modrake-bench $(BENCH_DIR) $(BENCH_BUILD)/orva $(BENCH_REPEAT) $(BENCH_SIZES)

# The libFuzzer targets, built with clang under the sanitizers.
fuzz-build: deps
	@CC=clang CXX=clang++ cmake -S . -B $(FUZZ_BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo -DMODRAKE_FUZZ=ON >/dev/null
	@cmake --build $(FUZZ_BUILD) -j $(JOBS)

# Every target for FUZZ_SECONDS; `make test` runs each for a few seconds.
fuzz: fuzz-build
	@scripts/fuzz.sh $(FUZZ_SECONDS) $(FUZZ_BUILD)

test-fuzz: fuzz-build
	@scripts/fuzz.sh 4 $(FUZZ_BUILD) --brief

clean:
	rm -rf $(BUILD) $(SAN_BUILD) $(BENCH_BUILD) $(FUZZ_BUILD)
