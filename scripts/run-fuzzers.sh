#!/usr/bin/env bash
# Runs every libFuzzer target in DIR (named fuzz_*) for SECONDS each, from
# its seed corpus in fuzz/corpus/NAME when there is one.
set -euo pipefail
dir=$1 seconds=$2
root=$(cd "$(dirname "$0")/.." && pwd)
shopt -s nullglob
targets=("$dir"/fuzz_*)
[ ${#targets[@]} -gt 0 ] || { echo "no fuzz targets in $dir"; exit 1; }
for t in "${targets[@]}"; do
  name=$(basename "$t")
  work=$(mktemp -d)
  seeds=()
  [ -d "$root/fuzz/corpus/$name" ] && seeds=("$root/fuzz/corpus/$name")
  echo "== $name for ${seconds}s"
  "$t" -max_total_time="$seconds" -print_final_stats=1 "$work" "${seeds[@]}" 2>&1 | tail -n 12
  rm -rf "$work"
done
