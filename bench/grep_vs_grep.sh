#!/usr/bin/env bash
# vkpch grep against GNU grep -P (libpcre2 with its JIT) and grep -P with
# "(*NO_JIT)" (libpcre2's interpreter) on the README's find patterns, over
# several megabytes of generated text: English words from data/sample.txt
# in a seeded order with e-mail addresses, URIs, IPv4 addresses, dates and
# Greek words mixed in. Each tool counts matching lines (-c); the counts must
# agree. Times: the best of RUNS runs, in seconds.
#
#   bench/grep_vs_grep.sh [VKPCH] [MEGABYTES] [RUNS]
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
vkpch=${1:-$root/build/native/bin/vkpch}
megabytes=${2:-8}
runs=${3:-5}
work=${GREP_BENCH_DIR:-$(mktemp -d)}
[ -n "${GREP_BENCH_DIR:-}" ] || trap 'rm -rf "$work"' EXIT
text=$work/text.txt

python3 - "$root/data/sample.txt" "$text" "$megabytes" <<'PY'
import random, sys
random.seed(7)
words = open(sys.argv[1], encoding="utf-8").read().split()
users = ["anna", "j.smith", "keeper", "ops+alerts", "m_rossi", "li.wei"]
hosts = ["example.org", "mail.example.com", "lighthouse.net", "harbour-office.co.uk"]
paths = ["", "/", "/log/2019/june", "/index.html?id=42&tab=ships", "/a/b-c/d.txt"]
greek = ["Καλημέρα", "κόσμε", "Ελλάδα", "φιλοσοφία", "θάλασσα", "φάρος"]
out, size, limit = [], 0, int(sys.argv[3]) << 20
while size < limit:
    w = random.choice(words)
    if random.randrange(40) == 0:
        k = random.randrange(5)
        w += " " + (random.choice(users) + "@" + random.choice(hosts) if k == 0 else
                    random.choice(["http://", "https://"]) + random.choice(hosts) + random.choice(paths) if k == 1 else
                    ".".join(str(random.randrange(256)) for _ in range(4)) if k == 2 else
                    "%04d-%02d-%02d" % (1900 + random.randrange(130), 1 + random.randrange(12), 1 + random.randrange(28)) if k == 3 else
                    random.choice(greek))
    w += "\n" if random.randrange(12) == 0 else " "
    out.append(w)
    size += len(w.encode())
open(sys.argv[2], "w", encoding="utf-8").write("".join(out) + "\n")
PY

best() {  # best wall time of $runs runs of "$@"
    local b="" t0 t1 t
    for _ in $(seq "$runs"); do
        t0=$(date +%s%N); "$@" > "$work/out" || true; t1=$(date +%s%N)  # not /dev/null: grep stops at the first match there
        t=$(( (t1 - t0) / 1000 ))
        if [ -z "$b" ] || [ "$t" -lt "$b" ]; then b=$t; fi
    done
    printf '%d.%03d' $((b / 1000000)) $(((b / 1000) % 1000))
}

export LC_ALL=C.UTF-8
printf '%s MB of text, best of %s runs, seconds; ratio = ours / grep -P\n\n' "$megabytes" "$runs"
printf '| pattern | lines | vkpch grep | grep -P | grep -P, no JIT | vs grep -P | vs no JIT |\n|---|---:|---:|---:|---:|---:|---:|\n'
while IFS='|' read -r name flags pattern; do
    ours=$("$vkpch" grep -c $flags "$pattern" "$text" || true)
    theirs=$(grep -c -P $flags "$pattern" "$text" || true)
    nojit=$(grep -c -P $flags "(*NO_JIT)$pattern" "$text" 2>/dev/null || echo "n/a")
    if [ "$ours" != "$theirs" ]; then
        printf '| %s | count differs: ours %s, grep -P %s | | | | | |\n' "$name" "$ours" "$theirs"
        continue
    fi
    a=$(best "$vkpch" grep -c $flags "$pattern" "$text")
    b=$(best grep -c -P $flags "$pattern" "$text")
    c=n/a
    [ "$nojit" = "$theirs" ] && c=$(best grep -c -P $flags "(*NO_JIT)$pattern" "$text")
    ra=$(awk -v a="$a" -v b="$b" 'BEGIN { printf "%.2f", (b > 0 ? a / b : 0) }')
    rc=$(awk -v a="$a" -v c="$c" 'BEGIN { if (c == "n/a" || c == 0) print "n/a"; else printf "%.2f", a / c }')
    printf '| %s | %s | %s | %s | %s | %s | %s |\n' "$name" "$ours" "$a" "$b" "$c" "$ra" "$rc"
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
CASES
