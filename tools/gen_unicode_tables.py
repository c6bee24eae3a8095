#!/usr/bin/env python3
"""Write the library's Unicode tables as C++ sources.

Usage: gen_unicode_tables.py [UCD_DIR] [--out DIR]

UCD_DIR holds UnicodeData.txt, Scripts.txt, Blocks.txt and DerivedAge.txt
(default: ../shared/ucd-5.1.0 next to the repository).  The sources are
written below DIR (default: the repository root) at the paths in OUTPUTS.
The output depends on the input files only, so it is byte-for-byte
reproducible and can be compared with the committed copies.
"""

import argparse
import os
import sys

REPO = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
DEFAULT_UCD = os.path.join(REPO, "..", "shared", "ucd-5.1.0")
UCD_VERSION = "5.1.0"

OUT_BLOCKS = "src/floor/unicode_blocks_table.cpp"
OUT_SCRIPTS = "src/floor/unicode_scripts_table.cpp"
OUT_CHARS = "src/floor/unicode_chars_table.cpp"
OUT_CASEMAP = "src/floor/case_map_table.cpp"
OUTPUTS = (OUT_BLOCKS, OUT_SCRIPTS, OUT_CHARS, OUT_CASEMAP)

# General category -> category bits (major-class bit | minor bit).
MAJOR = {"L": 0x80, "M": 0x100, "Z": 0x200, "S": 0x400, "N": 0x800,
         "P": 0x1000, "C": 0x2000}
MINOR = {"Ll": 1, "Lu": 2, "Lt": 4, "Lm": 8, "Lo": 16,
         "Mn": 1, "Mc": 2, "Me": 4,
         "Zs": 1, "Zl": 2, "Zp": 4,
         "Sm": 1, "Sc": 2, "Sk": 4, "So": 8,
         "Nd": 1, "Nl": 2, "No": 4,
         "Pd": 1, "Ps": 2, "Pe": 4, "Pi": 8, "Pf": 16, "Pc": 32, "Po": 64,
         "Cc": 1, "Cf": 2, "Co": 4, "Cs": 8, "Cn": 16}

BLOCK_NAME_SIZE = 40    # char array per block name, terminator included
SCRIPT_NAME_SIZE = 24   # char array per script name, terminator included

# Two-stage code point table: stage 1 per 128 code points.
STAGE_SHIFT = 7
MAX_CODE_POINT = 0x10FFFF

# UTF-16 case map: the stretches whose simple mappings are kept, the units
# whose mappings are dropped, and the signed width of the delta field.
CASE_STRETCHES = ((0x0041, 0x007A), (0x00C0, 0x0217), (0x0253, 0x0272),
                  (0x0283, 0x0292), (0x0386, 0x03F6), (0x0400, 0x04F9),
                  (0x0531, 0x0586), (0x1E00, 0x1FFC), (0x2160, 0x217F),
                  (0x24B6, 0x24E9), (0xFF21, 0xFF5A))
CASE_EXCLUDED = (0x00B5, 0x03C2, 0x024F, 0x0370, 0x037B)
CASE_AGE = "1.1"
GEORGIAN_CAPITALS = (0x10A0, 0x10C5)   # lower = c + 48; small letters: none
GEORGIAN_DELTA = 48
DELTA_BITS = 10
CASE_BLOCK_SHIFT = 6
CASE_WORDS = 128
CASE_DIRECT_UNITS = 0x600   # units below this also have flat shift tables


def category_bits(gc):
    return MAJOR[gc[0]] | MINOR[gc]


def data_lines(path):
    """Yield the non-comment fields of a UCD file, split at ';'."""
    with open(path, encoding="utf-8") as f:
        for line in f:
            line = line.split("#", 1)[0].strip()
            if line:
                yield [x.strip() for x in line.split(";")]


def parse_range(text):
    first, _, last = text.partition("..")
    return int(first, 16), int(last or first, 16)


def read_unicode_data(path):
    """Return (records, ranges): records maps code point -> (bits, upper,
    lower) for single lines; ranges lists (first, last, bits) for the
    <..., First>/<..., Last> pairs."""
    records, ranges, open_range = {}, [], None
    with open(path, encoding="utf-8") as f:
        for line in f:
            fields = line.rstrip("\n").split(";")
            if len(fields) != 15:
                raise SystemExit("UnicodeData.txt: bad line %r" % line)
            cp = int(fields[0], 16)
            bits = category_bits(fields[2])
            if fields[1].endswith(", First>"):
                open_range = (cp, bits)
            elif fields[1].endswith(", Last>"):
                if open_range is None or open_range[1] != bits:
                    raise SystemExit("UnicodeData.txt: unpaired range at %X" % cp)
                ranges.append((open_range[0], cp, bits))
                open_range = None
            else:
                upper = int(fields[12], 16) if fields[12] else 0
                lower = int(fields[13], 16) if fields[13] else 0
                records[cp] = (bits, upper, lower)
    for first, last, _ in ranges:
        if any(first <= cp <= last for cp in records):
            raise SystemExit("UnicodeData.txt: record inside a range")
    return records, ranges


def read_blocks(path):
    blocks = []
    for fields in data_lines(path):
        first, last = parse_range(fields[0])
        name = "In" + "".join(ch for ch in fields[1] if ch not in " -_")
        if len(name) >= BLOCK_NAME_SIZE:
            raise SystemExit("block name too long: " + name)
        blocks.append((name, first, last))
    if [b[1] for b in blocks] != sorted(b[1] for b in blocks):
        raise SystemExit("Blocks.txt is not in code point order")
    return blocks


def read_scripts(path):
    """Return [(name, [(first, last), ...])] in order of first appearance,
    one range per line of the file, each list ascending."""
    order, lines = [], {}
    for fields in data_lines(path):
        name = fields[1]
        if name not in lines:
            if len(name) >= SCRIPT_NAME_SIZE:
                raise SystemExit("script name too long: " + name)
            order.append(name)
            lines[name] = []
        lines[name].append(parse_range(fields[0]))
    scripts = []
    for name in order:
        ranges = sorted(lines[name])
        for (_, last), (first, _) in zip(ranges, ranges[1:]):
            if first <= last:
                raise SystemExit("Scripts.txt: overlap in " + name)
        scripts.append((name, ranges))
    return scripts


def read_ages(path):
    ages = {}
    for fields in data_lines(path):
        first, last = parse_range(fields[0])
        for cp in range(first, last + 1):
            ages[cp] = fields[1]
    return ages


def header(source_files):
    return ("// generated by tools/gen_unicode_tables.py from Unicode %s %s"
            " -- do not edit\n" % (UCD_VERSION, ", ".join(source_files)))


def wrap(items, per_line, indent="    "):
    """Lay out C initialiser items several to a line."""
    rows = []
    for i in range(0, len(items), per_line):
        rows.append(indent + ",".join(items[i:i + per_line]) + ",")
    return "\n".join(rows)


def c_string(text):
    return '"' + text + '"'


def emit_blocks(blocks):
    items = ["{%s,0x%X,0x%X}" % (c_string(n), a, b) for n, a, b in blocks]
    return (header(["Blocks.txt"]) +
            '#include "floor/unicode_data.h"\n\n'
            "namespace vkp {\n\n"
            "static_assert(kBlockNameSize == %d);\n\n"
            "const BlockRecord kBlocks[kBlockCount] = {\n%s\n};\n\n"
            "}  // namespace vkp\n"
            % (BLOCK_NAME_SIZE, wrap(items, 3)))


def emit_scripts(scripts):
    ranges, records = [], []
    for name, lines in scripts:
        records.append("{%s,%d,%d}" % (c_string(name), len(ranges), len(lines)))
        ranges.extend("{0x%X,0x%X}" % r for r in lines)
    return (header(["Scripts.txt"]) +
            '#include "floor/unicode_data.h"\n\n'
            "namespace vkp {\n\n"
            "static_assert(kScriptNameSize == %d);\n"
            "static_assert(kScriptCount == %d);\n"
            "static_assert(kScriptRangeCount == %d);\n\n"
            "const CodeRange kScriptRanges[kScriptRangeCount] = {\n%s\n};\n\n"
            "const ScriptRecord kScripts[kScriptCount] = {\n%s\n};\n\n"
            "}  // namespace vkp\n"
            % (SCRIPT_NAME_SIZE, len(scripts), len(ranges),
               wrap(ranges, 6), wrap(records, 3)))


def char_classes(records, ranges):
    """Split 0..MAX_CODE_POINT into classes of code points that every
    lookup treats alike and lay them out as a two-stage table."""
    last_record = max(records)
    range_bits = {}
    for first, last, bits in ranges:
        for cp in range(first, last + 1):
            range_bits[cp] = bits
    # kind: 0 = no record, 1 = record, 2 = past the last record.
    unassigned = (0, 0, 0, 0, 0)
    beyond = (0, 0, 0, 0, 2)
    classes = {unassigned: 0, beyond: 1}
    per_cp = []
    for cp in range(MAX_CODE_POINT + 1):
        rec = records.get(cp)
        if rec is not None:
            bits, upper, lower = rec
            key = (0, bits, upper - cp if upper else 0,
                   lower - cp if lower else 0, 1)
        else:
            key = (range_bits.get(cp, 0), 0, 0, 0, 2 if cp > last_record else 0)
        per_cp.append(classes.setdefault(key, len(classes)))
    if len(classes) > 256:
        raise SystemExit("too many character classes for one byte")
    size = 1 << STAGE_SHIFT
    blocks, stage1, stage2 = {}, [], []
    for start in range(0, MAX_CODE_POINT + 1, size):
        block = tuple(per_cp[start:start + size])
        if block not in blocks:
            blocks[block] = len(blocks)
            stage2.extend(block)
        stage1.append(blocks[block])
    if len(blocks) > 256:
        raise SystemExit("too many stage-2 blocks for one byte")
    ordered = sorted(classes.items(), key=lambda kv: kv[1])
    return [k for k, _ in ordered], stage1, stage2, last_record


def emit_chars(records, ranges):
    rec_items = ["{0x%X,0x%X,0x%X,0x%X}" % ((cp,) + records[cp])
                 for cp in sorted(records)]
    range_items = ["{0x%X,0x%X,0x%X}" % r for r in ranges]
    classes, stage1, stage2, last_record = char_classes(records, ranges)
    class_items = ["{%d,%d,0x%X,0x%X,%d}" % (up, low, rb, bits, kind)
                   for rb, bits, up, low, kind in classes]
    return (header(["UnicodeData.txt"]) +
            '#include "floor/unicode_data.h"\n\n'
            "namespace vkp {\n\n"
            "static_assert(kCharRecordCount == %d);\n"
            "static_assert(kLastCharCodePoint == 0x%X);\n"
            "static_assert(kCharRangeCount == %d);\n"
            "static_assert(kCharStageShift == %d);\n\n"
            "const CharRange kCharRanges[kCharRangeCount] = {\n%s\n};\n\n"
            "const CharRecord kCharRecords[kCharRecordCount] = {\n%s\n};\n\n"
            "// Classes of code points that every lookup treats alike:\n"
            "// {upper delta, lower delta, range bits, record bits, kind}.\n"
            "const CharClass kCharClasses[] = {\n%s\n};\n\n"
            "// Stage 1: one stage-2 block (of 128 class numbers) per 128 code points.\n"
            "const u8 kCharStage1[kCharStage1Size] = {\n%s\n};\n\n"
            "const u8 kCharStage2[] = {\n%s\n};\n\n"
            "}  // namespace vkp\n"
            % (len(records), last_record, len(ranges), STAGE_SHIFT,
               wrap(range_items, 3), wrap(rec_items, 5),
               wrap(class_items, 6), wrap([str(x) for x in stage1], 32),
               wrap([str(x) for x in stage2], 32)))


def case_mappings(records, ages):
    """Return {unit: (has_upper, has_lower, delta)} for the 16-bit range."""
    def listed(cp):
        return any(a <= cp <= b for a, b in CASE_STRETCHES)

    lim = 1 << (DELTA_BITS - 1)
    maps = {}
    for cp in range(0x10000):
        rec = records.get(cp)
        if rec is None or cp in CASE_EXCLUDED:
            continue
        _, upper, lower = rec
        entry = [False, False, None]
        for partner, slot, delta in ((upper, 0, cp - upper), (lower, 1, lower - cp)):
            if (partner and listed(cp) and listed(partner)
                    and ages.get(cp) == CASE_AGE and ages.get(partner) == CASE_AGE
                    and -lim <= delta < lim):
                if entry[2] is not None and entry[2] != delta:
                    raise SystemExit("unit %04X needs two deltas" % cp)
                entry[slot], entry[2] = True, delta
        if entry[2] is not None:
            maps[cp] = tuple(entry)
    for cp in range(GEORGIAN_CAPITALS[0], GEORGIAN_CAPITALS[1] + 1):
        maps[cp] = (False, True, GEORGIAN_DELTA)
    return maps


def emit_casemap(records, ages):
    maps = case_mappings(records, ages)
    mask = (1 << DELTA_BITS) - 1

    def word(cp):
        m = maps.get(cp)
        if m is None:
            return 0
        return ((m[2] & mask) << 22) | (m[1] << 21) | (m[0] << 20)

    words = {0: 0}
    units = [words.setdefault(word(cp), len(words)) for cp in range(0x10000)]
    if len(words) > CASE_WORDS:
        raise SystemExit("too many case property words")
    size = 1 << CASE_BLOCK_SHIFT
    rows, index, contents = {}, [], []
    for start in range(0, 0x10000, size):
        row = tuple(units[start:start + size])
        if row not in rows:
            rows[row] = len(rows) * size
            contents.extend(row)
        index.append(rows[row])
    word_list = [w for w, _ in sorted(words.items(), key=lambda kv: kv[1])]
    word_list += [0] * (CASE_WORDS - len(word_list))

    def shifts(slot, sign):
        out = []
        for cp in range(CASE_DIRECT_UNITS):
            m = maps.get(cp)
            out.append(str(sign * m[2] if m and m[slot] else 0))
        return wrap(out, 32)
    return (header(["UnicodeData.txt", "DerivedAge.txt"]) +
            '#include "floor/case_map.h"\n\n'
            "namespace vkp {\n\n"
            "const u16 kCaseMapIndex[kCaseMapIndexSize] = {\n%s\n};\n\n"
            "const u8 kCaseMapContents[] = {\n%s\n};\n\n"
            "const u32 kCaseMapWords[kCaseMapWordCount] = {\n%s\n};\n\n"
            "const int16_t kCaseLowerShift[kCaseDirectUnits] = {\n%s\n};\n\n"
            "const int16_t kCaseUpperShift[kCaseDirectUnits] = {\n%s\n};\n\n"
            "}  // namespace vkp\n"
            % (wrap([str(x) for x in index], 24),
               wrap([str(x) for x in contents], 32),
               wrap(["0x%08X" % w for w in word_list], 8),
               shifts(1, 1), shifts(0, -1)))


def main(argv):
    ap = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    ap.add_argument("ucd", nargs="?", default=DEFAULT_UCD)
    ap.add_argument("--out", default=REPO)
    args = ap.parse_args(argv)

    def src(name):
        return os.path.join(args.ucd, name)

    records, ranges = read_unicode_data(src("UnicodeData.txt"))
    ages = read_ages(src("DerivedAge.txt"))
    texts = {
        OUT_BLOCKS: emit_blocks(read_blocks(src("Blocks.txt"))),
        OUT_SCRIPTS: emit_scripts(read_scripts(src("Scripts.txt"))),
        OUT_CHARS: emit_chars(records, ranges),
        OUT_CASEMAP: emit_casemap(records, ages),
    }
    for rel in OUTPUTS:
        path = os.path.join(args.out, rel)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8", newline="\n") as f:
            f.write(texts[rel])
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
