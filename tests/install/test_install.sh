#!/usr/bin/env bash
# Installs the build into a scratch prefix, then builds and runs a small host
# against it twice: through pkg-config and through find_package.
# Usage: test_install.sh BUILD_DIR LIBDIR C_COMPILER [SANITIZER_FLAGS]
set -euo pipefail
build=$1 libdir=$2 cc=$3 sanitize=${4:-}
host_source=$(cd "$(dirname "$0")/host" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/prefix
expected="44 effects; gray 60 60 60 255, 85 85 85 128"

cmake --install "$build" --prefix "$prefix" >/dev/null
for f in "$libdir/libkelvarine.so" "$libdir/libkelvarine.so.1" include/kelvarine.h \
         include/kelvarine_prims.h include/kelvarine_prim_entries.h bin/kelvarine \
         "$libdir/pkgconfig/kelvarine.pc" "$libdir/cmake/Kelvarine/KelvarineConfig.cmake"; do
  [ -e "$prefix/$f" ] || { echo "not installed: $f"; exit 1; }
done
"$prefix/bin/kelvarine" list | grep -q ' 1036 .* Gray$' || { echo "the installed command does not list Gray"; exit 1; }

check() {  # check LABEL PROGRAM
  local got
  got=$("$2")
  [ "$got" = "$expected" ] || { echo "$1 host printed '$got', expected '$expected'"; exit 1; }
  echo "$1 host: $got"
}

export PKG_CONFIG_PATH=$prefix/$libdir/pkgconfig
# shellcheck disable=SC2046
"$cc" $sanitize "$host_source/host.c" -o "$scratch/host-pkg-config" $(pkg-config --cflags --libs kelvarine) \
  -Wl,-rpath,"$(pkg-config --variable=libdir kelvarine)"
check pkg-config "$scratch/host-pkg-config"

cmake -S "$host_source" -B "$scratch/host-build" -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_C_COMPILER="$cc" \
  -DCMAKE_C_FLAGS="$sanitize" >/dev/null
cmake --build "$scratch/host-build" >/dev/null
check find_package "$scratch/host-build/host"
