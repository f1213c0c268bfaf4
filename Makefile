# Two commands matter on a fresh Debian 12 or Ubuntu machine: `make run` and `make test`.
# Each installs first what it is missing (tools/install-deps.sh): `make run` only what
# building and running need, `make test`, `make bench` and `make soak` what they add.

JOBS ?= $(shell nproc)

.PHONY: all dev release test run bench soak deb screenshots format clean

all: dev

dev:
	@tools/install-deps.sh test
	@cmake --preset dev >/dev/null
	@cmake --build --preset dev -j $(JOBS)

release:
	@tools/install-deps.sh run
	@cmake --preset release >/dev/null
	@cmake --build --preset release -j $(JOBS)

# The package first, so that the tests that look into it need not build it beside the others.
test: dev
	@tools/build-deb.sh >/dev/null
	@ctest --preset dev -j $(JOBS)
	@tools/count-lines.sh 2>/dev/null || true

run: release
	@tools/run.sh build/release

bench:
	@tools/install-deps.sh bench
	@cmake --preset release -DBRENVIK_BUILD_BENCH=ON >/dev/null
	@cmake --build --preset release -j $(JOBS)
	@bench/run.sh build/release

# The tray app for 30 minutes while sessions come, go and change (MINUTES=5 for less).
soak:
	@tools/install-deps.sh soak
	@cmake --preset release -DBRENVIK_BUILD_BENCH=ON >/dev/null
	@cmake --build --preset release -j $(JOBS)
	@bench/soak.sh build/release $(MINUTES)

# brenvik_<version>_<arch>.deb in build/package.
deb:
	@tools/install-deps.sh deb
	@tools/build-deb.sh

screenshots: dev
	@cmake --build --preset dev --target screenshots

format:
	@git ls-files '*.cpp' '*.h' | xargs clang-format -i

clean:
	rm -rf build
