# Two entry points for a fresh machine: `make demo` and `make test`.
JOBS ?= $(shell nproc)
MAKEFLAGS += --no-print-directory
BUILD ?= build
SAN_BUILD ?= build-san

.PHONY: all deps build demo test test-plain test-san clean

all: build

deps:
	@scripts/install-deps.sh

build: deps
	@cmake -S . -B $(BUILD) -DCMAKE_BUILD_TYPE=RelWithDebInfo >/dev/null
	@cmake --build $(BUILD) -j $(JOBS)

demo: build
	@cd examples/transport && ../../$(BUILD)/orva transport.mod --listing - --keep-scratch ../../$(BUILD)/demo-scratch

test: test-plain test-san

test-plain: build
	@cd $(BUILD) && ctest --output-on-failure -j $(JOBS)

test-san: deps
	@cmake -S . -B $(SAN_BUILD) -DCMAKE_BUILD_TYPE=Debug -DMODRAKE_SANITIZE=ON >/dev/null
	@cmake --build $(SAN_BUILD) -j $(JOBS)
	@cd $(SAN_BUILD) && ctest --output-on-failure -j $(JOBS)

clean:
	rm -rf $(BUILD) $(SAN_BUILD)
