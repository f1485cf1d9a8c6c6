#!/bin/sh
# An installed copy as downstream projects meet it: installs the build into a
# scratch prefix, then builds and runs a C host through pkg-config with plain
# cc and a C++ host through find_package(Orvelan).
#   check_install.sh BUILD_DIR SOURCE_DIR
set -u
build_dir=$1
source_dir=$2
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
prefix=$scratch/prefix
statement=$source_dir/examples/statement.ofx
fail() { echo "FAIL: $*"; exit 1; }

cmake --install "$build_dir" --prefix "$prefix" >"$scratch/install.log" 2>&1 || { cat "$scratch/install.log"; fail "install"; }
lib=$(find "$prefix" -name 'liborvelan.so.3' | head -1)
[ -n "$lib" ] || fail "no liborvelan.so.3 installed"
libdir=$(dirname "$lib")
[ -L "$libdir/liborvelan.so" ] || fail "no development link liborvelan.so"
[ -f "$prefix/include/orvelan.h" ] || fail "no orvelan.h installed"
[ -x "$prefix/bin/orvelan" ] && [ -L "$prefix/bin/orvelan-statement" ] || fail "no orvelan tool with its older names"
LD_LIBRARY_PATH=$libdir "$prefix/bin/orvelan-statement" "$statement" >/dev/null || fail "the installed orvelan-statement"
[ -f "$prefix/share/man/man1/orvelan.1" ] || fail "no manual page installed"

command -v pkg-config >/dev/null || fail "pkg-config is not installed"
flags=$(PKG_CONFIG_PATH=$libdir/pkgconfig pkg-config --cflags --libs orvelan) || fail "pkg-config does not know orvelan"
cc "$source_dir/examples/downstream/pkgconfig/host.c" $flags -o "$scratch/c_host" || fail "cc against pkg-config flags"
LD_LIBRARY_PATH=$libdir "$scratch/c_host" "$statement" >"$scratch/c_out" || fail "the C host"
grep -q '^4 transactions' "$scratch/c_out" || { cat "$scratch/c_out"; fail "the C host's output"; }

cmake -S "$source_dir/examples/downstream/cmake" -B "$scratch/cmake_host" -DCMAKE_PREFIX_PATH="$prefix" \
  >"$scratch/cmake.log" 2>&1 || { cat "$scratch/cmake.log"; fail "find_package(Orvelan)"; }
cmake --build "$scratch/cmake_host" >>"$scratch/cmake.log" 2>&1 || { cat "$scratch/cmake.log"; fail "the C++ host build"; }
"$scratch/cmake_host/host" "$statement" >"$scratch/cpp_out" || fail "the C++ host"
[ "$(wc -l <"$scratch/cpp_out")" -eq 4 ] || { cat "$scratch/cpp_out"; fail "the C++ host's output"; }
echo "installed, and both downstream hosts built and ran"
