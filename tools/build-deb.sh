#!/usr/bin/env bash
# Builds brenvik_<version>_<arch>.deb in build/package (an optimised build with
# Debian's hardening flags, no tests) and prints its path.
# Usage: tools/build-deb.sh [BUILD_DIR]
set -euo pipefail
cd "$(dirname "$0")/.."
build=${1:-build/package}
# All of Debian's hardening, bindnow included.
export DEB_BUILD_MAINT_OPTIONS=hardening=+all
if [[ ! -f $build/CMakeCache.txt ]]; then
  CXXFLAGS="$(dpkg-buildflags --get CXXFLAGS) $(dpkg-buildflags --get CPPFLAGS)" \
    LDFLAGS="$(dpkg-buildflags --get LDFLAGS)" \
    cmake -S . -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=None -DCMAKE_INSTALL_PREFIX=/usr \
      -DBRENVIK_BUILD_TESTS=OFF -DBRENVIK_BUILD_BENCH=OFF -DBRENVIK_SANITIZE=OFF >/dev/null
fi
cmake --build "$build" -j "$(nproc)" >/dev/null
(cd "$build" && cpack -G DEB >/dev/null)
ls "$build"/brenvik_*.deb
