#!/usr/bin/env bash
# Installs the Debian packages a task needs, and nothing when all are there.
#   tools/install-deps.sh SET...     SET: build, test, bench, fuzz, docs
# build: the library, tools and demo; test: the suite and the servers it starts
# on loopback; bench: the benchmarks; fuzz: the libFuzzer targets (clang);
# docs: the API reference (Doxygen).
# Uses sudo when not root. ORVELAN_NO_INSTALL=1 only reports what is missing.
set -euo pipefail

build=(build-essential cmake g++ libssl-dev zlib1g-dev openssl python3)
test=(googletest libgtest-dev libgmock-dev binutils locales nginx-light curl dante-server tinyproxy microsocks
      libpugixml-dev pkgconf groff-base)
bench=(libbenchmark-dev libpugixml-dev)
fuzz=(clang libclang-rt-14-dev)
docs=(doxygen)

wanted=("${build[@]}")
need_locale=0
for set in "$@"; do
  case "$set" in
    build) ;;
    test) wanted+=("${test[@]}"); need_locale=1 ;;
    bench) wanted+=("${bench[@]}") ;;
    fuzz) wanted+=("${fuzz[@]}") ;;
    docs) wanted+=("${docs[@]}") ;;
    *) echo "install-deps: unknown set '$set' (build, test, bench, fuzz, docs)" >&2; exit 2 ;;
  esac
done

say() { echo "install-deps: $*" >&2; }

if ! command -v dpkg-query >/dev/null; then
  say "not a Debian system; make sure these are installed: ${wanted[*]}"
  exit 0
fi

# One dpkg-query for all: this runs before every build, so it must be quick.
installed=$(dpkg-query -W -f='${Package} ${Status}\n' "${wanted[@]}" 2>/dev/null | awk '/ installed$/ { print $1 }' || true)
missing=()
for p in "${wanted[@]}"; do
  [[ $'\n'"$installed"$'\n' == *$'\n'"$p"$'\n'* || " ${missing[*]} " == *" $p "* ]] || missing+=("$p")
done
# A comma-decimal locale proves that the library's atof ignores LC_NUMERIC.
if [ "$need_locale" = 1 ] && locale -a 2>/dev/null | grep -qi '^de_DE\.utf-\?8$'; then
  need_locale=0
fi
if [ "${#missing[@]}" -eq 0 ] && [ "$need_locale" = 0 ]; then
  exit 0
fi

todo="${missing[*]}"
[ "$need_locale" = 1 ] && todo="${todo:+$todo and }the de_DE.UTF-8 locale"
as_root=()
if [ -n "${ORVELAN_NO_INSTALL:-}" ]; then
  say "missing $todo (not installed: ORVELAN_NO_INSTALL is set)"
  exit 1
elif [ "$(id -u)" -ne 0 ]; then
  if ! command -v sudo >/dev/null; then
    say "missing $todo, and no sudo: install it as root"
    exit 1
  fi
  as_root=(sudo)
fi

if [ "${#missing[@]}" -gt 0 ]; then
  say "installing ${missing[*]}"
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
    apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
if [ "$need_locale" = 1 ]; then
  say "generating the de_DE.UTF-8 locale"
  "${as_root[@]}" localedef -i de_DE -f UTF-8 de_DE.UTF-8
fi
