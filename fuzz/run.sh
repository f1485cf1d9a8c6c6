#!/usr/bin/env bash
# Runs one fuzz target over a scratch corpus: its committed seeds, plus, for
# the targets that read OFX, the shared files of real responses (copied in
# with the option bytes each target expects, never committed) and the tag
# dictionary. New inputs stay in the scratch corpus; findings go to
# FUZZ_DIR/findings/<target>/.
#   fuzz/run.sh BUILD_DIR TARGET SECONDS [RUNS]
set -euo pipefail
build=$1 target=$2 seconds=$3 runs=${4:--1}
here=$(cd "$(dirname "$0")" && pwd)
corpus_dir=${ORVELAN_CORPUS:-$here/../../shared/corpus}
scratch=$build/corpus/$target findings=$build/findings/$target
mkdir -p "$scratch" "$findings"

# The option bytes each OFX target gets in front of a real file.
case $target in
  service_reader_fuzz) prefixes="00 01 02 03 04 05 06 07 08 10 13" ;;
  ofx_response_fuzz | lenient_reader_fuzz | markup_fuzz) prefixes="00 01" ;;
  *) prefixes="" ;;
esac
dict=()
if [[ -n $prefixes || $target == path_query_fuzz ]]; then dict=(-dict="$here/ofx.dict"); fi
if [[ -n $prefixes && -d $corpus_dir ]]; then
  for file in "$corpus_dir"/*; do
    for p in $prefixes; do
      { printf "\\x$p"; cat "$file"; } > "$scratch/real-$p-$(basename "$file")"
    done
  done
fi

echo "== $target for ${seconds}s"
exec "$build/fuzz/$target" -max_total_time="$seconds" -runs="$runs" -timeout=10 -rss_limit_mb=2048 \
  -print_final_stats=1 -artifact_prefix="$findings/" "${dict[@]}" "$scratch" "$here/seeds/$target"
