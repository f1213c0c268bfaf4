# Two commands matter on a fresh Debian 12 or Ubuntu machine: `make run` and `make test`.
# Both install what is missing first (tools/install-deps.sh).

JOBS ?= $(shell nproc)

.PHONY: all deps dev release test run bench soak screenshots format clean

all: dev

deps:
	@tools/install-deps.sh

dev: deps
	@cmake --preset dev >/dev/null
	@cmake --build --preset dev -j $(JOBS)

release: deps
	@cmake --preset release >/dev/null
	@cmake --build --preset release -j $(JOBS)

test: dev
	@ctest --preset dev -j $(JOBS)

run: release
	@tools/run.sh build/release

bench: release
	@bench/run.sh build/release

# The tray app for 30 minutes while sessions come, go and change (MINUTES=5 for less).
soak: release
	@bench/soak.sh build/release $(MINUTES)

screenshots: dev
	@cmake --build --preset dev --target screenshots

format:
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	rm -rf build
