// Differential test of the regexp engine against the Perl-compatible engine
// of libpcre2 (8-bit, no UTF): seeded random patterns over random subjects,
// single and global searches, identical records required (whole match and
// every group).
//
// The generator keeps to constructs whose documented semantics agree with
// Perl's and leaves out the engine's deliberate departures:
//  - no byte 11 anywhere (\s excludes it here, Perl includes it);
//  - a back-reference names an earlier group that cannot be empty (an empty
//    one never matches at the very end of the subject here);
//  - a group is repeated only when every iteration consumes a byte;
//  - no anchor inside a look-behind (no fixed length);
//  - subjects hold no valid UTF-8 multi-byte sequence (dot and \D take whole
//    characters), and the byte behind the subject is not a word byte;
//  - \p{Lu} and \p{Ll} never under case folding; no `{` as a literal, no
//    `{,n}`, no octal escapes, no \G in global searches;
//  - a leading literal under a lazy repeat is taken as documented (the
//    search still starts at its first occurrence): left out after compiling;
//  - global searches are compared only when no match is empty (the retry
//    after an empty match sees a one-byte subject here), and not for patterns
//    that begin with .* or .+ (their implicit anchor lets a later match start
//    only at a line start).
//
// The driver cuts the subject behind the last occurrence of the pattern's
// last literal, and the cut end is the subject's end for every later step
// ((?>AyB|A)y finds "Ay" in "AyB", (?!ab)a finds the a of "ab"). The model
// does the same: libpcre2 searches the subject cut as the driver cuts it.
// Only \b and \B at the cut differ: they read the byte behind it, which
// libpcre2 cannot see, so a subject cut before a word byte is not compared
// for a pattern that holds \b or \B.
//
// A search that ends with VKP_ERR_MATCH_LIMIT ran into the bound on its
// steps (a multiple of the match limit) where libpcre2 may still finish: it
// is run again under a limit that loosens the bound.
//
// VKPCH_PEER_SEED and VKPCH_PEER_PATTERNS change the seed and the number of
// patterns; every mismatch prints the pattern, options and subject.
#define PCRE2_CODE_UNIT_WIDTH 8
#include <pcre2.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "regexp/compile/program.h"
#include "vkpch.h"

namespace {

using Rng = std::mt19937;

int Pick(Rng& rng, int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); }
bool Chance(Rng& rng, int percent) { return Pick(rng, 0, 99) < percent; }
template <class T> const T& OneOf(Rng& rng, const std::vector<T>& v) { return v[size_t(Pick(rng, 0, int(v.size()) - 1))]; }

constexpr int kUnbounded = -1;

// A generated piece of pattern with what the rules above need to know.
struct Piece {
    std::string text;
    int minLen = 0;
    int maxLen = 0;       // kUnbounded or the longest match
    bool single = false;  // one item a quantifier may follow directly

    // The lengths of `other` as an alternative to this.
    void Or(const Piece& other) {
        minLen = std::min(minLen, other.minLen);
        maxLen = maxLen < 0 || other.maxLen < 0 ? kUnbounded : std::max(maxLen, other.maxLen);
    }
};

Piece Fixed(std::string text) { return {std::move(text), 1, 1, true}; }

class Generator {
public:
    Generator(Rng& rng, bool extended, bool caseless, bool captures)
        : rng_(rng), extended_(extended), caseless_(caseless), captures_(captures) {}

    std::string Pattern() {
        std::string text;
        const int alternatives = Pick(rng_, 1, 3);
        for (int i = 0; i < alternatives; ++i) {
            if (i) text += Sep() + "|" + Sep();
            Piece p = Sequence(0, false, Pick(rng_, 1, 5));
            text += p.text;
        }
        return text;
    }

private:
    // A sequence of items; fixedOnly keeps to fixed-length items (look-behind).
    Piece Sequence(int depth, bool fixedOnly, int items) {
        Piece seq;
        for (int i = 0; i < items; ++i) {
            Piece item = Quantified(depth, fixedOnly);
            if (i && !item.text.empty()) seq.text += Sep();
            // A back-reference followed by a digit would read as a longer number.
            if (endsWithBackref_ && !seq.text.empty() && !item.text.empty() && IsDigit(seq.text.back()) &&
                IsDigit(item.text[0]))
                seq.text += "(?:)";
            endsWithBackref_ = item.text.size() == 2 && item.text[0] == '\\' && item.text[1] >= '1' && item.text[1] <= '9';
            seq.text += item.text;
            seq.minLen += item.minLen;
            seq.maxLen = seq.maxLen < 0 || item.maxLen < 0 ? kUnbounded : seq.maxLen + item.maxLen;
        }
        return seq;
    }

    std::string Sep() { return extended_ && Chance(rng_, 30) ? (Chance(rng_, 80) ? " " : "\t") : ""; }

    Piece Quantified(int depth, bool fixedOnly) {
        Piece p = Item(depth, fixedOnly);
        if (!p.single || Chance(rng_, 60)) return p;
        int lo, hi;
        std::string q;
        switch (fixedOnly ? 4 : Pick(rng_, 0, 5)) {
        case 0: lo = 0, hi = kUnbounded, q = "*"; break;
        case 1: lo = 1, hi = kUnbounded, q = "+"; break;
        case 2: lo = 0, hi = 1, q = "?"; break;
        case 3: lo = Pick(rng_, 0, 2), hi = kUnbounded, q = "{" + std::to_string(lo) + ",}"; break;
        case 4: lo = hi = Pick(rng_, 1, 3), q = "{" + std::to_string(lo) + "}"; break;
        default:
            lo = Pick(rng_, 0, 2), hi = lo + Pick(rng_, 0, 2);
            q = "{" + std::to_string(lo) + "," + std::to_string(hi) + "}";
        }
        // A repeated group must consume something in every iteration.
        if (p.minLen == 0 && p.text[0] == '(') return p;
        if (!fixedOnly && Chance(rng_, 35)) q += "?";
        p.text += q;
        p.minLen *= lo;
        if (hi == kUnbounded) p.maxLen = p.maxLen == 0 ? 0 : kUnbounded;
        else if (p.maxLen != kUnbounded) p.maxLen *= hi;
        p.single = false;
        return p;
    }

    Piece Class() {
        static const std::vector<std::string> kMembers = {
            "a", "b", "c", "x", "A", "1", "_", "a-c", "A-C", "0-9", "\\d", "\\w", "\\s", "\\W", "[:alpha:]",
            "[:digit:]", "[:alnum:]", "[:space:]", "[:upper:]", "[:lower:]", "[:xdigit:]", "\\xff", "\\n", "\\.",
            "\\-", "\\]"};
        std::string t = Chance(rng_, 30) ? "[^" : "[";
        for (int n = Pick(rng_, 1, 3); n > 0; --n) {
            const std::string& m = OneOf(rng_, kMembers);
            // Case folding of the POSIX upper/lower ranges is left out.
            t += caseless_ && (m == "[:upper:]" || m == "[:lower:]") ? "[:alpha:]" : m;
        }
        return Fixed(t + "]");
    }

    Piece Property() {
        static const std::vector<std::string> kNames = {"L",  "Lu",    "Ll",     "N",   "Nd", "P",  "Po", "Pd",
                                                        "Pc", "Zs",    "Latin",  "Common", "Any", "Cc", "S"};
        std::string name = OneOf(rng_, kNames);
        if (caseless_ && (name == "Lu" || name == "Ll")) name = "L";
        const std::string p = Chance(rng_, 30) ? "\\P" : "\\p";
        return Fixed(name.size() == 1 && Chance(rng_, 50) ? p + name : p + "{" + name + "}");
    }

    Piece Group(int depth, bool fixedOnly) {
        const int kind = fixedOnly ? Pick(rng_, 0, 2) : Pick(rng_, 0, 9);
        if (kind == 9) return Conditional(depth);
        // Kinds 1 and 8 capture where captures are allowed.
        static const char* const kOpen[] = {"(?:", "(?:", "", "(?>", "(?=", "(?!", "(?<=", "(?<!", "(?>"};
        std::string open = kind == 2 ? (Chance(rng_, 50) ? "(?i:" : "(?-i:") : kOpen[kind];
        int capture = 0;
        if ((kind == 1 || kind == 8) && captures_ && !lookaround_) open = "(", capture = ++captureCount_;
        const bool lookahead = open == "(?=" || open == "(?!", lookbehind = open == "(?<=" || open == "(?<!";
        const bool saved = lookaround_;
        lookaround_ = lookaround_ || lookahead || lookbehind;
        const bool fixed = fixedOnly || lookbehind;
        // Alternatives of a fixed-length body must all have the same length:
        // the first decides, others are dropped.
        const int alternatives = Pick(rng_, 1, 3);
        Piece body = Sequence(depth + 1, fixed, Pick(rng_, 1, 3));
        for (int i = 1; i < alternatives; ++i) {
            Piece alt = Sequence(depth + 1, fixed, Pick(rng_, 1, 3));
            if (fixed && (alt.minLen != body.minLen || alt.maxLen != body.maxLen)) continue;
            body.text += "|" + alt.text;
            body.Or(alt);
        }
        lookaround_ = saved;
        if (lookahead || lookbehind) return {open + body.text + ")"};  // zero width, never repeated
        if (capture && body.minLen > 0 && !fixedOnly) closedNonEmpty_.push_back(capture);
        return {open + body.text + ")", body.minLen, body.maxLen, true};
    }

    // (?(N)yes|no) on a group that is already closed.
    Piece Conditional(int depth) {
        if (closedNonEmpty_.empty()) return Group(depth, false);
        const int n = OneOf(rng_, closedNonEmpty_);
        Piece p = Sequence(depth + 1, false, Pick(rng_, 1, 2));
        p.text = "(?(" + std::to_string(n) + ")" + p.text;
        if (Chance(rng_, 60)) {
            Piece no = Sequence(depth + 1, false, Pick(rng_, 1, 2));
            p.text += "|" + no.text;
            p.Or(no);
        } else {
            p.minLen = 0;
        }
        p.text += ")";
        p.single = false;
        return p;
    }

    Piece Item(int depth, bool fixedOnly) {
        const int roll = Pick(rng_, 0, 99);
        if (roll < 38) return Literal();
        if (roll < 46) return Fixed(".");
        if (roll < 56) return Fixed(OneOf(rng_, std::vector<std::string>{"\\d", "\\D", "\\w", "\\W", "\\s", "\\S"}));
        if (roll < 66) return Class();
        if (roll < 70) return Property();
        if (roll < 73) return Fixed(Chance(rng_, 50) ? "\\xff" : "\\n");
        if (roll < 82 && !fixedOnly)
            return {OneOf(rng_, std::vector<std::string>{"^", "$", "\\b", "\\B", "\\A", "\\z", "\\Z"})};
        if (roll < 86 && !fixedOnly && !lookaround_ && !closedNonEmpty_.empty())
            return {"\\" + std::to_string(OneOf(rng_, closedNonEmpty_)), 1, kUnbounded, true};
        if (depth < 3) return Group(depth, fixedOnly);
        return Literal();
    }

    Piece Literal() {
        static const char kBytes[] = "abcabcABxyz1_-";
        return Fixed(std::string(1, kBytes[Pick(rng_, 0, int(sizeof kBytes) - 2)]));
    }

    static bool IsDigit(char c) { return c >= '0' && c <= '9'; }

    Rng& rng_;
    bool extended_, caseless_, captures_;
    bool lookaround_ = false;
    bool endsWithBackref_ = false;
    int captureCount_ = 0;
    std::vector<int> closedNonEmpty_;
};

// Subjects over the pattern's alphabet and a few more bytes; high bytes that
// never form a valid UTF-8 sequence (0xE9 lacks its continuation bytes).
std::string Subject(Rng& rng) {
    static const char kBytes[] = "aaabbbcccxyzABCX1_- .\n\n\xff\xe9";
    std::string s;
    for (int n = Pick(rng, 0, 14); n > 0; --n) s += kBytes[Pick(rng, 0, int(sizeof kBytes) - 2)];
    return s;
}

std::string Escaped(const std::string& s) {
    std::string out;
    for (unsigned char c : s) {
        char buf[8];
        std::snprintf(buf, sizeof buf, c >= 32 && c < 127 ? "%c" : "\\x%02x", c);
        out += buf;
    }
    return out;
}

// One match: its records as (offset, length) pairs, -1/-1 when unset.
using Records = std::vector<std::pair<int, int>>;

std::string Show(const std::vector<Records>& matches) {
    std::string out = matches.empty() ? "no match" : "";
    for (const Records& r : matches) {
        out += "{";
        for (size_t i = 0; i < r.size(); ++i) out += (i ? " " : "") + std::to_string(r[i].first) + "+" + std::to_string(r[i].second);
        out += "}";
    }
    return out;
}

class Pcre2 {
public:
    Pcre2(const std::string& pattern, uint32_t options) {
        int err;
        PCRE2_SIZE off;
        // Without auto-possessification: 10.42 makes \P{Lu}? possessive before
        // \P{Ll}, so that \P{Lu}?\P{Ll} does not match "1".
        code_ = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(pattern.c_str()), pattern.size(),
                              options | PCRE2_NO_AUTO_POSSESS, &err, &off, nullptr);
        if (code_) data_ = pcre2_match_data_create_from_pattern(code_, nullptr);
    }
    ~Pcre2() {
        pcre2_match_data_free(data_);
        pcre2_code_free(code_);
    }
    bool ok() const { return code_ != nullptr; }

    // 1 match, 0 none, -1 an error (match limit and such).
    int Match(const std::string& s, size_t start, Records& out, int groups) {
        const int rc = pcre2_match(code_, reinterpret_cast<PCRE2_SPTR>(s.data()), s.size(), start, 0, data_, nullptr);
        if (rc < 0) return rc == PCRE2_ERROR_NOMATCH ? 0 : -1;
        const PCRE2_SIZE* ov = pcre2_get_ovector_pointer(data_);
        out.assign(size_t(groups), {-1, -1});
        for (int i = 0; i < groups && i < rc; ++i)
            if (ov[2 * i] != PCRE2_UNSET) out[size_t(i)] = {int(ov[2 * i]), int(ov[2 * i + 1] - ov[2 * i])};
        return 1;
    }

    // Every match, each searched from the end of the one before; -1 on an
    // error or at the first empty match (such searches are not compared).
    int MatchAll(const std::string& s, int groups, std::vector<Records>& all) {
        for (size_t pos = 0; pos <= s.size();) {
            Records r;
            const int rc = Match(s, pos, r, groups);
            if (rc <= 0) return rc;
            if (r[0].second == 0) return -1;
            all.push_back(r);
            pos = size_t(r[0].first + r[0].second);
        }
        return 0;
    }

private:
    pcre2_code* code_ = nullptr;
    pcre2_match_data* data_ = nullptr;
};

class Ours {
public:
    Ours(const std::string& pattern, const std::string& options) {
        int size = 0, off = 0;
        vkpsRegExpGetSize(pattern.c_str(), &size);
        block_.assign((size_t(size) + 7) / 8, 0);
        status_ = vkpsRegExpInit(pattern.c_str(), options.c_str(), state(), &off);
        if (status_ == 0) vkpsRegExpSetFormat(vkp::kFormatBytes, state());
    }
    int status() const { return status_; }
    vkpRegExpState* state() { return reinterpret_cast<vkpRegExpState*>(block_.data()); }

    // Status of the search, the records as offsets, perMatch per match; a
    // search that hits the step bound runs again under a looser one.
    int Find(const std::string& s, std::vector<Records>& matches, int perMatch, int& bounded) {
        int st = FindUnder(kDefaultMatchLimit, s, matches, perMatch);
        if (st == VKP_ERR_MATCH_LIMIT) {
            ++bounded;
            matches.clear();
            st = FindUnder(1000000, s, matches, perMatch);
        }
        return st;
    }

private:
    static constexpr int kDefaultMatchLimit = 10000;

    int FindUnder(int limit, const std::string& s, std::vector<Records>& matches, int perMatch) {
        vkpsRegExpSetMatchLimit(limit, state());
        std::vector<vkpRegExpFind> rec(size_t(perMatch) * (2 * s.size() + 2) + 1);
        int n = int(rec.size());
        const auto* src = reinterpret_cast<const vkp8u*>(s.c_str());  // a zero byte stands behind
        const int st = vkpsRegExpFind_8u(src, int(s.size()), state(), rec.data(), &n);
        for (int i = 0; st >= 0 && i + perMatch <= n; i += perMatch) {
            matches.emplace_back();
            for (int k = 0; k < perMatch; ++k) {
                const vkpRegExpFind& f = rec[size_t(i + k)];
                matches.back().push_back(f.pMatch ? std::make_pair(int(f.pMatch - src), f.matchLen) : std::make_pair(-1, -1));
            }
        }
        return st;
    }

    std::vector<uint64_t> block_;
    int status_;
};

const vkpRegExpInstruction* Program(const vkpRegExpState* st) {
    return reinterpret_cast<const vkpRegExpInstruction*>(reinterpret_cast<const unsigned char*>(st) +
                                                         VKP_REGEXP_HEAD_SIZE);
}

// The compiler's implicit anchor (a program that begins with .* or .+).
bool ImplicitAnchor(const vkpRegExpState* st) {
    return st->instructionCount > 0 && Program(st)[0].op == vkp::OP_ANCHOR && Program(st)[0].a == vkp::kImplicitAnchor;
}

// A leading literal under a lazy repeat (see the list above).
bool LazyLeadingLiteral(const vkpRegExpState* st) {
    return st->patternKind == vkp::kKindLeadingLiteral && st->instructionCount > 1 &&
           Program(st)[1].op == vkp::OP_LAZY_REPEAT && Program(st)[1].a == 0;
}

char Upper(char c) { return c >= 'a' && c <= 'z' ? char(c - 32) : c; }
bool IsWordByte(char c) { return (Upper(c) >= 'A' && Upper(c) <= 'Z') || (c >= '0' && c <= '9') || c == '_'; }

// The subject length the driver searches: up to the end of the last
// occurrence of the last literal, 0 when it does not occur.
size_t CutLength(const vkpRegExpState* st, const std::string& s) {
    if (st->lastLiteralIndex < 0 || st->lastLiteralIndex >= st->instructionCount) return s.size();
    const vkpRegExpInstruction& ins = Program(st)[st->lastLiteralIndex];
    std::string lit;
    if (ins.op == vkp::OP_CHAR) lit = std::string(1, char(ins.a));
    else if (ins.op == vkp::OP_STRING) lit.assign(static_cast<const char*>(ins.d), size_t(ins.b));
    else return s.size();
    const bool caseless = (ins.c & VKP_REGEXP_IGNORECASE) != 0;
    for (size_t i = s.size() >= lit.size() ? s.size() - lit.size() + 1 : 0; i-- > 0;) {
        size_t k = 0;
        while (k < lit.size() && (caseless ? Upper(s[i + k]) == Upper(lit[k]) : s[i + k] == lit[k])) ++k;
        if (k == lit.size()) return i + lit.size();
    }
    return 0;
}

int EnvInt(const char* name, int fallback) {
    const char* v = std::getenv(name);
    return v && *v ? std::atoi(v) : fallback;
}

// The option letters, how often each is drawn, and the peer's flag.
const struct PeerOption {
    char letter;
    int percent;
    uint32_t bit;
} kPeerOptions[] = {{'i', 25, PCRE2_CASELESS}, {'m', 25, PCRE2_MULTILINE}, {'s', 25, PCRE2_DOTALL}, {'x', 15, PCRE2_EXTENDED}};

TEST(RegExpPeer, AgreesWithPcre2) {
    const int seed = EnvInt("VKPCH_PEER_SEED", 20240601);
    const int patterns = EnvInt("VKPCH_PEER_PATTERNS", 3000);
    Rng rng{uint32_t(seed)};
    int compared = 0, skipped = 0, mismatches = 0, globalCompared = 0, bounded = 0;
    for (int k = 0; k < patterns && mismatches < 40; ++k) {
        std::string letters;
        uint32_t peerOptions = 0;
        for (const PeerOption& o : kPeerOptions)
            if (Chance(rng, o.percent)) letters += o.letter, peerOptions |= o.bit;
        Generator gen(rng, letters.find('x') != std::string::npos, letters.find('i') != std::string::npos,
                      Chance(rng, 60));
        const std::string pattern = gen.Pattern();
        const std::string where = "pattern \"" + Escaped(pattern) + "\" options \"" + letters + "\"";

        Pcre2 peer(pattern, peerOptions);
        Ours ours(pattern, letters), oursGlobal(pattern, letters + "g");
        if (!peer.ok()) {  // outside what the generator means to make
            ++skipped;
            continue;
        }
        if (ours.status() != 0) {
            ADD_FAILURE() << where << ": compile status " << ours.status();
            ++mismatches;
            continue;
        }
        if (LazyLeadingLiteral(ours.state())) {
            ++skipped;
            continue;
        }
        const int groups = ours.state()->groupCount;
        const bool wordAnchor = pattern.find("\\b") != std::string::npos || pattern.find("\\B") != std::string::npos;
        const bool global = pattern.find("\\G") == std::string::npos && !ImplicitAnchor(ours.state());
        // Our search against the peer's records; false (one report) on a difference.
        auto agrees = [&](Ours& re, const std::string& subject, const std::vector<Records>& want, int perMatch,
                          const char* kind) {
            std::vector<Records> got;
            const int st = re.Find(subject, got, perMatch, bounded);
            if (st == 0 && got == want) return true;
            ADD_FAILURE() << where << kind << " subject \"" << Escaped(subject) << "\": status " << st << ", "
                          << Show(got) << ", expected " << Show(want);
            ++mismatches;
            return false;
        };
        for (int j = 0; j < 24 && mismatches < 40; ++j) {
            const std::string subject = Subject(rng);
            const std::string cut = subject.substr(0, CutLength(ours.state(), subject));
            std::vector<Records> want(1);
            const int rc = peer.Match(cut, 0, want[0], groups);
            if (rc < 0 || (wordAnchor && cut.size() < subject.size() && IsWordByte(subject[cut.size()]))) {
                ++skipped;
                continue;
            }
            if (rc == 0) want.clear();
            ++compared;
            if (!agrees(ours, subject, want, groups, "")) break;
            std::vector<Records> all;
            if (!global || peer.MatchAll(cut, groups, all) != 0) continue;
            // With groups a global search reports records 1 to the last group.
            for (Records& m : all)
                if (groups > 1) m.erase(m.begin());
            ++globalCompared;
            if (!agrees(oursGlobal, subject, all, groups > 1 ? groups - 1 : 1, " global,")) break;
        }
    }
    std::printf("seed %d: %d single and %d global searches compared (%d again under a looser bound), %d skipped\n",
                seed, compared, globalCompared, bounded, skipped);
    EXPECT_GT(compared, patterns * 10);
}

}  // namespace
