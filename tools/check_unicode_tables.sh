#!/bin/sh
# Re-runs tools/gen_unicode_tables.py into a temporary folder and compares
# its output byte for byte with the committed tables.
# Usage: check_unicode_tables.sh [REPO_ROOT [UCD_DIR]]
# Exits 0 when they match, 1 when they differ, 77 (skipped) when python3
# or the Unicode data is not available.
repo=${1:-$(cd "$(dirname "$0")/.." && pwd)}
ucd=${2:-$repo/../shared/ucd-5.1.0}

if ! command -v python3 >/dev/null 2>&1; then
    echo "skipped: python3 is not installed"
    exit 77
fi
if [ ! -f "$ucd/UnicodeData.txt" ]; then
    echo "skipped: no Unicode data at $ucd"
    exit 77
fi

tmp=$(mktemp -d) || exit 1
trap 'rm -rf "$tmp"' EXIT
python3 "$repo/tools/gen_unicode_tables.py" "$ucd" --out "$tmp" || exit 1

status=0
count=0
for file in $(cd "$tmp" && find . -type f | sort); do
    count=$((count + 1))
    if ! cmp -s "$tmp/$file" "$repo/$file"; then
        echo "stale: ${file#./} differs from the generator's output (run make regen-unicode)"
        status=1
    fi
done
if [ "$count" -eq 0 ]; then
    echo "the generator wrote nothing"
    exit 1
fi
[ "$status" -eq 0 ] && echo "$count generated files are up to date"
exit $status
