#!/usr/bin/env python3
"""vkpch grep, replace and convert side by side with GNU grep -P, perl -pe
and iconv on generated combinations of options, patterns and files; output
and exit status must agree.

usage: differential.py VKPCH {grep|replace|convert|recursive} [SEEDS] [CASES]
The tool may be prefixed by an emulator: VKPCH is split on spaces."""
import os
import random
import re
import shutil
import subprocess
import sys
import tempfile

WORDS = ("the keeper lamp harbour light sing singing rang Ringing The LAMP a an ab aab bab cd cdcd "
         "2024 1999 42 x xy yx foo bar e.g. (note) [tag] 3.14 well-known don't").split()

# Patterns in the syntax both sides accept, and literal strings for -F.
PATTERNS = [r"the", r"lamp", r"\bth\w+", r"[A-Z][a-z]+", r"\d+", r"(ab|cd)+", r"^the", r"e$", r"(?i)lamp",
            r"o{2,}", r"\s\w{3}\s", r"(?<=a)b", r"x(?=y)", r"\w+ing\b", r"^$", r".", r"keeper|lamp",
            r"[^a-z ]+", r"(\w)\1", r"\bab\b", r"(?<!a)b", r"a*", r"\.", r"\(\w+\)", r"^\S+$", r"r\r?$",
            # Patterns that a search over many lines could see differently
            # from a search of each line: line feeds, anchors, flags, commits.
            r"[^x]*g$", r"\s+$", r"(?s)e.a", r"(?>[^b]*)$", r"(\w+) \1", r"(?-m)^the", r"\Athe", r"e\z",
            r"\Bing", r"(?<![a-z])the", r"a\s*\n?b", r"(?!the)\b\w+$", r".*lamp", r"[\D]+$"]
LITERALS = ["e.g.", "(note)", "[tag]", "3.14", "don't", "a", "the", "x y", "", "lamp", " the", "keeper"]
TEMPLATES = ["<$&>", "[$1]", "$2$1", "X", "", "$1-$1"]


def run(cmd, stdin=None, env=None):
    with open(stdin, "rb") if stdin else open(os.devnull, "rb") as f:
        p = subprocess.run(cmd, stdin=f, stdout=subprocess.PIPE, stderr=subprocess.PIPE, env=env)
    return p.returncode, p.stdout.replace(b"\r\n", b"\n") if os.name == "nt" else p.stdout, p.stderr


def text_lines(rng, n, crlf=False):
    eol = "\r\n" if crlf else "\n"
    return "".join(" ".join(rng.choice(WORDS) for _ in range(rng.randint(0, 8))) + eol for _ in range(n))


def make_files(rng, d):
    files = {
        "a.txt": text_lines(rng, 40).encode(),
        "b.txt": text_lines(rng, 12).encode().rstrip(b"\n"),      # no final line feed
        "crlf.txt": text_lines(rng, 10, crlf=True).encode(),
        "empty.txt": b"",
        "bin.dat": text_lines(rng, 3).encode() + b"the\0lamp\n" + text_lines(rng, 3).encode(),
    }
    for name, data in files.items():
        with open(os.path.join(d, name), "wb") as f:
            f.write(data)
    os.mkdir(os.path.join(d, "dir"))
    return list(files) + ["dir", "missing.txt"]


def messages(err, prog):
    # Standard error as a set of lines with the program's name taken out.
    return sorted(set(re.sub(rb"^" + prog + rb": ", b"", l) for l in err.splitlines()))


def grep_case(rng, vkpch, names):
    opts = []
    fixed = rng.random() < 0.15
    pats = [rng.choice(LITERALS if fixed else PATTERNS)]
    if fixed:
        opts.append("-F")
    for flag in rng.sample(["-i", "-v", "-w", "-x", "-c", "-l", "-L", "-n", "-o", "-q", "-s", "-h", "-H", "-a", "-z"],
                           rng.randint(0, 3)):
        opts.append(flag)
    if rng.random() < 0.2:
        opts += ["-m", str(rng.randint(1, 3))]
    if rng.random() < 0.25:
        opts += [rng.choice(["-A", "-B", "-C"]), str(rng.randint(0, 2))]
    if rng.random() < 0.15 and "-v" not in opts:
        opts.append("--color=always")
    files = rng.sample(names, rng.randint(0, 3))
    stdin = None
    if not files or rng.random() < 0.1:
        stdin = "a.txt"
        if files:
            files.insert(rng.randint(0, len(files)), "-")
    # vkpch takes options after operands as well; GNU grep too (GNU argument order).
    args = ["-e", pats[0]] if rng.random() < 0.3 else [pats[0]]
    if fixed and rng.random() < 0.5:  # a word list: several patterns searched as one, often as words
        args = [a for p in rng.sample(LITERALS, rng.randint(2, 4)) for a in ("-e", p)]
        opts += ["-w"] if rng.random() < 0.5 and "-w" not in opts else []
    tail = files[:]
    flags = [o for o in opts if o.startswith("-") and len(o) == 2 and o not in "-m-A-B-C"]
    if rng.random() < 0.3 and flags and files:  # an option after the operands
        opts.remove(flags[-1])
        tail = files + [flags[-1]]
    ours = vkpch + ["grep"] + opts + args + tail
    theirs = ["grep"] + ([] if fixed else ["-P"]) + opts + args + tail
    return ours, theirs, stdin


def compare(label, ours, theirs, stdin, env, prog):
    a, b = run(ours, stdin), run(theirs, stdin, env)
    same = a[0] == b[0] and a[1] == b[1] and messages(a[2], b"vkpch") == messages(b[2], prog)
    if not same:
        print(f"{label}: {' '.join(theirs)}" + (f" < {stdin}" if stdin else ""))
        print(f"  exit {a[0]} vs {b[0]}\n  ours:   {a[1][:400]!r} {a[2][:300]!r}\n  theirs: {b[1][:400]!r} {b[2][:300]!r}")
    return same


def grep_suite(vkpch, seed, cases, d):
    rng = random.Random(seed)
    names = make_files(rng, d)
    env = dict(os.environ, LC_ALL="C")  # bytes as they are: only a zero byte makes a file binary
    bad = 0
    for k in range(cases):
        ours, theirs, stdin = grep_case(rng, vkpch, names)
        if "-v" in ours and ours[ours.index("grep") + 1:].count("") > 0:
            continue  # GNU grep reads no file for -v with an empty pattern (nothing can be selected)
        if "-z" in ours and any("$" in a for a in ours):
            continue  # with -z GNU grep's $ matches at the very end only; Perl's (and ours) also before a final line feed
        bad += not compare(f"grep seed {seed} case {k}", ours, theirs, stdin, env, b"grep")
    return bad


def replace_suite(vkpch, seed, cases, d):
    rng = random.Random(seed)
    make_files(rng, d)
    bad = 0
    for k in range(cases):
        pat = rng.choice(PATTERNS)
        tmpl = rng.choice(TEMPLATES)
        flags = rng.sample(["-g", "-i"], rng.randint(0, 2))
        whole = rng.random() < 0.15
        name = rng.choice(["a.txt", "b.txt", "crlf.txt", "empty.txt"])
        mods = "".join(f[1] for f in flags if f != "-g") + ("g" if "-g" in flags else "") + ("m" if whole else "")
        # perl: the line without its line feed is the subject, as for vkpch.
        code = (f"s/(?:$ENV{{P}})/{tmpl}/{mods}" if whole else
                f"my $nl = chomp; s/(?:$ENV{{P}})/{tmpl}/{mods}; $_ .= \"\\n\" x $nl")
        theirs = ["perl"] + (["-0777"] if whole else []) + ["-pe", code, name]
        ours = vkpch + ["replace"] + flags + (["--multiline"] if whole else []) + [pat, tmpl, name]
        a, b = run(ours), run(theirs, env=dict(os.environ, P=pat))
        if a[1] != b[1] or a[0] == 2:
            bad += 1
            print(f"replace seed {seed} case {k}: {' '.join(ours[len(vkpch):])}\n  ours:   {a[1][:300]!r} {a[2][:200]!r}"
                  f"\n  theirs: {b[1][:300]!r}")
    return bad


def utf8_text(rng, n):
    pool = ["a", "Z", " ", "\n", "é", "€", "😀", "中", "\u00ff", "\U0010fffd", "\ufeff"]
    return "".join(rng.choice(pool) for _ in range(n)).encode()


def convert_suite(vkpch, seed, cases, d):
    rng = random.Random(seed)
    names = {"UTF-8": ["UTF-8", "utf8", "Utf-8"], "UTF-16LE": ["UTF-16LE", "utf16le"], "UTF-16BE": ["UTF-16BE"],
             "UTF-16": ["UTF-16", "utf-16"]}
    bad = 0
    for k in range(cases):
        src = os.path.join(d, f"in{k % 4}.txt")
        data = utf8_text(rng, rng.choice([0, 1, 5, 200, 70000]))
        frm, to = rng.choice(list(names)), rng.choice(list(names))
        with open(src, "wb") as f:
            f.write(data)
        if frm != "UTF-8":  # the input in that form, made by iconv
            conv = os.path.join(d, f"conv{k % 4}.bin")
            with open(conv, "wb") as f:
                f.write(subprocess.run(["iconv", "-f", "UTF-8", "-t", frm, src], stdout=subprocess.PIPE).stdout)
            src = conv
        strict = False
        if rng.random() < 0.2 and frm == "UTF-8":  # ill-formed input: --strict and iconv stop at the same byte
            cut = rng.randint(0, len(data))
            with open(src, "wb") as f:
                f.write(data[:cut] + rng.choice([b"\xff", b"\xc0\xaf", b"\xed\xa0\x80", b"\xe2\x82"]) + data[cut:])
            strict = True
        out = os.path.join(d, "out.bin")
        ours = vkpch + ["convert", "-f", rng.choice(names[frm]), "--to-code=" + rng.choice(names[to])] + \
            (["--strict"] if strict else []) + ["-o", out, src]
        a = run(ours)
        got = open(out, "rb").read() if os.path.exists(out) else b""
        b = run(["iconv", "-f", frm, "-t", to, src])
        same = a[0] == b[0] and got == b[1]
        if strict:
            at = re.search(rb"position (\d+)", b[2])  # none for a sequence cut off by the end
            mine = re.search(rb"byte offset (\d+)", a[2])
            same = a[0] == 1 and b[0] == 1 and mine and (not at or at.group(1) == mine.group(1)) and got == b[1]
        if not same:
            bad += 1
            print(f"convert seed {seed} case {k}: {frm} -> {to} strict={strict} size {len(data)}: exit {a[0]} vs {b[0]}"
                  f"\n  ours {got[:60]!r} {a[2][:200]!r}\n  iconv {b[1][:60]!r} {b[2][:200]!r}")
    return bad


def recursive_suite(vkpch, seed, cases, d):
    # A tree with nested directories, links (followed by -R only), a binary
    # file; GNU grep walks in directory order, vkpch in sorted order, so the
    # lines are compared sorted, and vkpch's own output for any -j exactly.
    rng = random.Random(seed)
    for k in range(30):
        sub = os.path.join(*rng.sample(["src", "doc", "lib", "x"], rng.randint(0, 2)) or ["."])
        os.makedirs(sub, exist_ok=True)
        with open(os.path.join(sub, f"f{k}." + rng.choice(["txt", "c", "md"])), "wb") as f:
            f.write(text_lines(rng, rng.randint(0, 15)).encode() + (b"the\0" if k % 9 == 0 else b""))
    os.symlink("src", "linkdir")
    bad = 0
    for k in range(cases):
        opts = rng.sample(["-n", "-c", "-l", "-i", "-h", "-o", "-w"], rng.randint(0, 2))
        opts += rng.sample(["--include=*.c", "--exclude=*.md", "--exclude-dir=doc", "--include=f1*"], rng.randint(0, 2))
        opts.append(rng.choice(["-r", "-R"]))
        where = rng.sample(["src", ".", "doc", "linkdir", "lib/"], rng.randint(0, 2))
        pat = rng.choice(PATTERNS[:12])
        outs = [run(vkpch + ["grep", f"-j{j}"] + opts + [pat] + where) for j in (1, 3)]
        theirs = run(["grep", "-P"] + opts + [pat] + where, env=dict(os.environ, LC_ALL="C"))
        same = outs[0] == outs[1] and outs[0][0] == theirs[0] and \
            sorted(outs[0][1].splitlines()) == sorted(theirs[1].splitlines())
        if not same:
            bad += 1
            print(f"recursive seed {seed} case {k}: {' '.join(opts + [pat] + where)}: exit {outs[0][0]} {outs[1][0]} vs "
                  f"{theirs[0]}\n  ours:   {outs[0][1][:300]!r}\n  theirs: {theirs[1][:300]!r}")
    return bad


def main():
    vkpch = [os.path.abspath(a) if os.path.exists(a) else a for a in sys.argv[1].split()]
    suite = {"grep": grep_suite, "replace": replace_suite, "convert": convert_suite,
             "recursive": recursive_suite}[sys.argv[2]]
    seeds = [int(s) for s in (sys.argv[3] if len(sys.argv) > 3 else "1,2,3").split(",")]
    cases = int(sys.argv[4]) if len(sys.argv) > 4 else 150
    bad = 0
    for seed in seeds:
        d = tempfile.mkdtemp(prefix="vkpch-diff-")
        cwd = os.getcwd()
        os.chdir(d)
        try:
            bad += suite(vkpch, seed, cases, d)
        finally:
            os.chdir(cwd)
            shutil.rmtree(d)
    print(f"{sys.argv[2]}: {bad} differences over seeds {seeds}, {cases} cases each")
    return 1 if bad else 0


if __name__ == "__main__":
    sys.exit(main())
