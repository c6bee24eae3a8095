#!/usr/bin/env bash
# vkpch grep -c against GNU grep -P -c and ripgrep (rg -c -j1) on 32 MB of
# real prose and logs (the Debian changelogs, copyright and license texts on
# this machine), with the README's patterns and patterns written for this
# run without tuning; then word lists (-f) of the 300 and 3000 commonest
# words of the text against grep -F -f, grep -f and rg -F -f; then -r over a tree of 20,000 files cut from the same
# text, every tool on all cores; then the resident memory of vkpch grep on a
# 1 GiB file. Counts are checked: a pattern whose counts differ says so.
# Times: the best of RUNS runs, in seconds. Installs ripgrep through the
# repo's script when it is missing.
#
#   bench/grep_vs_grep.sh [VKPCH] [RUNS]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
vkpch=${1:-$root/build/native/bin/vkpch}
runs=${2:-3}
work=${GREP_BENCH_DIR:-$(mktemp -d)}
[ -n "${GREP_BENCH_DIR:-}" ] || trap 'rm -rf "$work"' EXIT
command -v rg > /dev/null || bash "$root/scripts/install-deps.sh"
export LC_ALL=C.UTF-8
text=$work/text.txt

# The corpus: every changelog and copyright file under /usr/share/doc and the
# license texts, in sorted order, repeated until it holds 32 MB.
if [ ! -s "$text" ]; then
    {
        find /usr/share/doc -name 'changelog*.gz' | sort | xargs -r zcat -f 2>/dev/null || true
        find /usr/share/doc -name copyright | sort | xargs -r cat 2>/dev/null || true
        cat /usr/share/common-licenses/* 2>/dev/null || true
    } > "$work/one.txt"
    while [ "$(stat -c %s "$text" 2>/dev/null || echo 0)" -lt $((32 << 20)) ]; do cat "$work/one.txt" >> "$text"; done
    head -c $((32 << 20)) "$text" > "$work/cut.txt" && mv "$work/cut.txt" "$text"
    printf '\n' >> "$text"
fi

best() {  # best wall time of $runs runs of "$@"
    local b="" t0 t1 t
    for _ in $(seq "$runs"); do
        t0=$(date +%s%N); "$@" > "$work/out" 2>/dev/null || true; t1=$(date +%s%N)
        t=$(( (t1 - t0) / 1000 ))
        if [ -z "$b" ] || [ "$t" -lt "$b" ]; then b=$t; fi
    done
    printf '%d.%03d' $((b / 1000000)) $(((b / 1000) % 1000))
}
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", (b > 0 ? a / b : 0) }'; }

printf '%s MB of changelogs and license texts, best of %s runs, seconds\n\n' $(( $(stat -c %s "$text") >> 20 )) "$runs"
printf '| pattern | lines | vkpch grep | grep -P | rg -j1 | / grep -P | / rg |\n|---|---:|---:|---:|---:|---:|---:|\n'
while IFS='|' read -r name flags pattern; do
    ours=$("$vkpch" grep -c $flags "$pattern" "$text" || true)
    theirs=$(grep -c -P $flags "$pattern" "$text" || true)
    rgc=$(rg -c -j1 $flags "$pattern" "$text" || echo 0)
    note=""
    [ "$ours" = "$theirs" ] || note=" (grep -P counts $theirs)"
    [ "$ours" = "$rgc" ] || note="$note (rg counts $rgc)"
    a=$(best "$vkpch" grep -c $flags "$pattern" "$text")
    b=$(best grep -c -P $flags "$pattern" "$text")
    c=$(best rg -c -j1 $flags "$pattern" "$text")
    printf '| %s | %s%s | %s | %s | %s | %s | %s |\n' "$name" "$ours" "$note" "$a" "$b" "$c" "$(ratio "$a" "$b")" "$(ratio "$a" "$c")"
done <<'CASES'
literal word||lighthouse
word, ignoring case|-i|keeper
alternation of words||keeper|lamp|harbour|trawler
URI||https?://[\w.-]+(?:/[\w./?=&%-]*)?
e-mail address||[\w.+-]+@[\w-]+\.[\w.-]+
IPv4 address||\b(?:\d{1,3}\.){3}\d{1,3}\b
date||\d{4}-\d{2}-\d{2}
\w+ing\b||\w+ing\b
\p{Greek}+||\p{Greek}+
untuned: bug number||[Cc]loses:? #\d+
untuned: version||\d+\.\d+(\.\d+)?-\d+
untuned: maintainer line||^ -- .+ <[^>]+>  \w{3}, \d+
untuned: security, any case|-i|security|vulnerab
untuned: two capitalised words||\b[A-Z][a-z]+ [A-Z][a-z]+\b
untuned: long word||\b\w{14,}\b
CASES

# Word lists: the N commonest words of at least four ASCII letters of the
# text, by count, then in byte order.
printf '\nword lists (-f), best of %s runs, seconds\n\n' "$runs"
printf '| words | flags | lines | vkpch grep -f | vkpch grep -F -f | grep -F -f | grep -f | rg -F -f | / grep -F -f | / grep -f | / rg -F -f |\n'
printf '|---:|---|---:|---:|---:|---:|---:|---:|---:|---:|---:|\n'
grep -oE '[A-Za-z]{4,}' "$text" | sort | uniq -c | sort -k1,1nr -k2,2 | awk '{ print $2 }' > "$work/ranked.txt"
# Plain lists, then as whole words (-w) and as whole lines (-x), 300 words
# (grep takes some 40 s for -w with 3000). Under UTF-8, GNU grep takes
# letters beyond ASCII as word bytes, so its -w count may differ by a few
# lines.
for flags in -c "-c -w" "-c -x"; do
  for n in 300 3000; do
    [ "$flags" = -c ] || [ "$n" = 300 ] || continue
    words=$work/words$n.txt
    head -n "$n" "$work/ranked.txt" > "$words"
    ours=$("$vkpch" grep $flags -f "$words" "$text" || true)
    note=""
    for tool in "$vkpch grep -F" "grep -F" "grep" "rg -j1 -F"; do
        c=$($tool $flags -f "$words" "$text" || true)
        [ "${c:-0}" = "$ours" ] || note="$note ($tool counts ${c:-0})"
    done
    a=$(best "$vkpch" grep $flags -f "$words" "$text")
    f=$(best "$vkpch" grep $flags -F -f "$words" "$text")
    b=$(best grep $flags -F -f "$words" "$text")
    g=$(best grep $flags -f "$words" "$text")
    c=$(best rg $flags -j1 -F -f "$words" "$text")
    printf '| %s | %s | %s%s | %s | %s | %s | %s | %s | %s | %s | %s |\n' "$(wc -l < "$words")" "${flags#-c}" "$ours" "$note" \
        "$a" "$f" "$b" "$g" "$c" "$(ratio "$a" "$b")" "$(ratio "$a" "$g")" "$(ratio "$a" "$c")"
  done
done

# -r over 20,000 files of about 1.6 KB in 200 directories, all cores.
tree=$work/tree
if [ ! -d "$tree" ]; then
    python3 - "$text" "$tree" <<'PY'
import os, sys
lines = open(sys.argv[1], "rb").read().splitlines(keepends=True)
per = len(lines) // 20000
for k in range(20000):
    d = os.path.join(sys.argv[2], "d%03d" % (k // 100))
    os.makedirs(d, exist_ok=True)
    with open(os.path.join(d, "f%05d.txt" % k), "wb") as f:
        f.writelines(lines[k * per:(k + 1) * per])
PY
fi
files=$(find "$tree" -type f | wc -l)
printf '\n-r over %s files, all cores (%s), best of %s runs, seconds\n\n' "$files" "$(nproc)" "$runs"
printf '| pattern | matching lines | vkpch grep -r | grep -rP | rg | / grep -rP | / rg |\n|---|---:|---:|---:|---:|---:|---:|\n'
while IFS='|' read -r name flags pattern; do
    ours=$({ "$vkpch" grep -r -c $flags "$pattern" "$tree" || true; } | awk -F: '{ s += $NF } END { print s + 0 }')
    theirs=$({ grep -r -c -P $flags "$pattern" "$tree" || true; } | awk -F: '{ s += $NF } END { print s + 0 }')
    rgc=$({ rg -c $flags "$pattern" "$tree" || true; } | awk -F: '{ s += $NF } END { print s + 0 }')
    note=""
    [ "$ours" = "$theirs" ] || note=" (grep -rP counts $theirs)"
    [ "$ours" = "$rgc" ] || note="$note (rg counts $rgc)"
    a=$(best "$vkpch" grep -r -c $flags "$pattern" "$tree")
    b=$(best grep -r -c -P $flags "$pattern" "$tree")
    c=$(best rg -c $flags "$pattern" "$tree")
    printf '| %s | %s%s | %s | %s | %s | %s | %s |\n' "$name" "$ours" "$note" "$a" "$b" "$c" "$(ratio "$a" "$b")" "$(ratio "$a" "$c")"
done <<'CASES'
literal word||Debian
date||\d{4}-\d{2}-\d{2}
untuned: bug number||[Cc]loses:? #\d+
untuned: long word||\b\w{14,}\b
CASES

# Resident memory on a 1 GiB file (32 copies of the text).
big=$work/big.txt
for _ in $(seq 32); do cat "$text"; done > "$big"
rss=$( { /usr/bin/time -f '%M' "$vkpch" grep -c '\d{4}-\d{2}-\d{2}' "$big" > /dev/null; } 2>&1 | tail -1)
printf '\nvkpch grep -c on a %s MB file: %s KB resident at most\n' $(( $(stat -c %s "$big") >> 20 )) "$rss"
rm -f "$big"
