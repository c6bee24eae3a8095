#!/usr/bin/env bash
# Runs every libFuzzer target in DIR (named fuzz_*) for SECONDS each, from
# its seed corpus in fuzz/corpus/NAME when there is one. NAME=SECONDS after
# them gives that target at least SECONDS. A single input that runs for more
# than 60 seconds fails the run.
#   run-fuzzers.sh DIR SECONDS [NAME=SECONDS...]
set -euo pipefail
dir=$1 seconds=$2
shift 2
declare -A at_least=()
for arg in "$@"; do at_least[${arg%%=*}]=${arg#*=}; done
root=$(cd "$(dirname "$0")/.." && pwd)
shopt -s nullglob
targets=("$dir"/fuzz_*)
[ ${#targets[@]} -gt 0 ] || { echo "no fuzz targets in $dir"; exit 1; }
for t in "${targets[@]}"; do
  name=$(basename "$t")
  time=$seconds
  min=${at_least[$name]:-0}
  [ "$min" -gt "$time" ] && time=$min
  work=$(mktemp -d)
  seeds=()
  [ -d "$root/fuzz/corpus/$name" ] && seeds=("$root/fuzz/corpus/$name")
  echo "== $name for ${time}s"
  "$t" -max_total_time="$time" -timeout=60 -print_final_stats=1 "$work" "${seeds[@]}" 2>&1 | tail -n 12
  rm -rf "$work"
done
