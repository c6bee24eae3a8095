#!/usr/bin/env bash
# Runs every libFuzzer target in DIR (named fuzz_*) for SECONDS each, from
# its seed corpus in fuzz/corpus/NAME when there is one. NAME=SECONDS after
# them gives that target at least SECONDS. A single input that runs for more
# than 60 seconds fails the run. Each target runs that long once per feature
# mask in FUZZ_CPU_MASKS (VKPCORE_CPU_FEATURES): by default 0x30, the 16-byte
# kernels, and, on an AVX2 processor, the full mask, the 32-byte kernels.
#   run-fuzzers.sh DIR SECONDS [NAME=SECONDS...]
set -euo pipefail
dir=$1 seconds=$2
shift 2
declare -A at_least=()
for arg in "$@"; do at_least[${arg%%=*}]=${arg#*=}; done
root=$(cd "$(dirname "$0")/.." && pwd)
if [ -z "${FUZZ_CPU_MASKS:-}" ]; then
  FUZZ_CPU_MASKS=0x30
  grep -qw avx2 /proc/cpuinfo 2>/dev/null && FUZZ_CPU_MASKS="$FUZZ_CPU_MASKS 0xFFFFFFFFFFFFFFFF"
fi
shopt -s nullglob
targets=("$dir"/fuzz_*)
[ ${#targets[@]} -gt 0 ] || { echo "no fuzz targets in $dir"; exit 1; }
for t in "${targets[@]}"; do
  name=$(basename "$t")
  time=$seconds
  min=${at_least[$name]:-0}
  [ "$min" -gt "$time" ] && time=$min
  seeds=()
  [ -d "$root/fuzz/corpus/$name" ] && seeds=("$root/fuzz/corpus/$name")
  for mask in $FUZZ_CPU_MASKS; do
    work=$(mktemp -d)
    echo "== $name for ${time}s, feature mask $mask"
    VKPCORE_CPU_FEATURES=$mask "$t" -max_total_time="$time" -timeout=60 -print_final_stats=1 "$work" "${seeds[@]}" 2>&1 | tail -n 12
    rm -rf "$work"
  done
done
