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
//    characters), and the byte behind the subject is not a word byte (the
//    word-boundary test reads it);
//  - \p{Lu} and \p{Ll} never under case folding; no `{` as a literal, no
//    `{,n}`, no octal escapes, no \G in global searches;
//  - a leading literal under a lazy repeat is taken as documented (the
//    search still starts at its first occurrence), so such patterns are
//    left out after compiling;
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

#include "vkpch.h"

namespace {

using Rng = std::mt19937;

int Pick(Rng& rng, int lo, int hi) { return std::uniform_int_distribution<int>(lo, hi)(rng); }
bool Chance(Rng& rng, int percent) { return Pick(rng, 0, 99) < percent; }

// A generated piece of pattern with what the rules above need to know.
struct Piece {
    std::string text;
    int minLen = 0;
    int maxLen = 0;       // -1: unbounded
    bool single = false;  // one item a quantifier may follow directly
};

constexpr int kUnbounded = -1;

int AddLen(int a, int b) { return a < 0 || b < 0 ? kUnbounded : a + b; }

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

    // A sequence of items; fixedOnly keeps to fixed-length items (look-behind).
    Piece Sequence(int depth, bool fixedOnly, int items) {
        Piece seq;
        for (int i = 0; i < items; ++i) {
            Piece item = Quantified(depth, fixedOnly);
            if (i && !item.text.empty()) seq.text += Sep();
            // A back-reference followed by a digit would read as a longer number.
            if (!seq.text.empty() && seq.text.back() >= '0' && seq.text.back() <= '9' && endsWithBackref_ &&
                !item.text.empty() && item.text[0] >= '0' && item.text[0] <= '9')
                seq.text += "(?:)";
            endsWithBackref_ = item.text.size() == 2 && item.text[0] == '\\' && item.text[1] >= '1' && item.text[1] <= '9';
            seq.text += item.text;
            seq.minLen += item.minLen;
            seq.maxLen = AddLen(seq.maxLen, item.maxLen);
        }
        return seq;
    }

private:
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

    Piece Literal() {
        static const char kBytes[] = "abcabcABxyz1_-";
        Piece p;
        const char c = kBytes[Pick(rng_, 0, int(sizeof kBytes) - 2)];
        p.text = c == '-' ? "-" : std::string(1, c);
        p.minLen = p.maxLen = 1;
        p.single = true;
        return p;
    }

    Piece Fixed(std::string text) {
        Piece p;
        p.text = std::move(text);
        p.minLen = p.maxLen = 1;
        p.single = true;
        return p;
    }

    Piece ZeroWidth(std::string text) {
        Piece p;
        p.text = std::move(text);
        return p;
    }

    Piece Class() {
        static const char* const kMembers[] = {"a", "b", "c", "x", "A", "1", "_", "a-c", "A-C", "0-9", "\\d",
                                               "\\w", "\\s", "\\W", "[:alpha:]", "[:digit:]", "[:alnum:]",
                                               "[:space:]", "[:upper:]", "[:lower:]", "[:xdigit:]", "\\xff",
                                               "\\n", "\\.", "\\-", "\\]"};
        std::string t = Chance(rng_, 30) ? "[^" : "[";
        const int n = Pick(rng_, 1, 3);
        for (int i = 0; i < n; ++i) {
            std::string m = kMembers[Pick(rng_, 0, int(sizeof kMembers / sizeof kMembers[0]) - 1)];
            // Case folding of the POSIX upper/lower ranges is left out.
            if (caseless_ && (m == "[:upper:]" || m == "[:lower:]")) m = "[:alpha:]";
            t += m;
        }
        return Fixed(t + "]");
    }

    Piece Property() {
        static const char* const kNames[] = {"L", "Lu", "Ll", "N", "Nd", "P", "Po", "Pd", "Pc", "Zs",
                                             "Latin", "Common", "Any", "Cc", "S"};
        std::string name = kNames[Pick(rng_, 0, int(sizeof kNames / sizeof kNames[0]) - 1)];
        if (caseless_ && (name == "Lu" || name == "Ll")) name = "L";
        const std::string p = Chance(rng_, 30) ? "\\P" : "\\p";
        return Fixed(name.size() == 1 && Chance(rng_, 50) ? p + name : p + "{" + name + "}");
    }

    Piece Group(int depth, bool fixedOnly) {
        int kind = fixedOnly ? Pick(rng_, 0, 2) : Pick(rng_, 0, 9);
        std::string open;
        int capture = 0;
        switch (kind) {
        case 0: open = "(?:"; break;
        case 1:
            if (captures_ && !lookaround_) { open = "("; capture = ++captureCount_; break; }
            open = "(?:";
            break;
        case 2: open = Chance(rng_, 50) ? "(?i:" : "(?-i:"; break;
        case 3: open = "(?>"; break;
        case 4: open = "(?="; break;
        case 5: open = "(?!"; break;
        case 6: open = "(?<="; break;
        case 7: open = "(?<!"; break;
        case 8:
            if (captures_ && !lookaround_) { open = "("; capture = ++captureCount_; break; }
            open = "(?>";
            break;
        default: return Conditional(depth);
        }
        const bool lookahead = open == "(?=" || open == "(?!";
        const bool lookbehind = open == "(?<=" || open == "(?<!";
        const bool saved = lookaround_;
        lookaround_ = lookaround_ || lookahead || lookbehind;
        const bool fixed = fixedOnly || lookbehind;
        // Alternatives of a fixed-length body must all have the same length;
        // the first decides, others are dropped.
        Piece body;
        std::string text;
        const int alternatives = Pick(rng_, 1, 3);
        for (int i = 0; i < alternatives; ++i) {
            Piece alt = Sequence(depth + 1, fixed, Pick(rng_, 1, 3));
            if (i == 0) {
                body = alt;
                text = alt.text;
                continue;
            }
            if (fixed && (alt.minLen != body.minLen || alt.maxLen != body.maxLen)) continue;
            text += "|" + alt.text;
            body.minLen = std::min(body.minLen, alt.minLen);
            body.maxLen = alt.maxLen < 0 || body.maxLen < 0 ? kUnbounded : std::max(body.maxLen, alt.maxLen);
        }
        lookaround_ = saved;
        Piece p;
        p.text = open + text + ")";
        if (lookahead || lookbehind) return p;  // zero width, never repeated
        p.minLen = body.minLen;
        p.maxLen = body.maxLen;
        p.single = true;
        if (capture && body.minLen > 0 && !fixedOnly) closedNonEmpty_.push_back(capture);
        return p;
    }

    // (?(N)yes|no) on a group that is already closed.
    Piece Conditional(int depth) {
        if (closedNonEmpty_.empty()) return Group(depth, false);
        const int n = closedNonEmpty_[size_t(Pick(rng_, 0, int(closedNonEmpty_.size()) - 1))];
        Piece yes = Sequence(depth + 1, false, Pick(rng_, 1, 2));
        Piece p;
        p.text = "(?(" + std::to_string(n) + ")" + yes.text;
        p.minLen = yes.minLen;
        p.maxLen = yes.maxLen;
        if (Chance(rng_, 60)) {
            Piece no = Sequence(depth + 1, false, Pick(rng_, 1, 2));
            p.text += "|" + no.text;
            p.minLen = std::min(p.minLen, no.minLen);
            p.maxLen = p.maxLen < 0 || no.maxLen < 0 ? kUnbounded : std::max(p.maxLen, no.maxLen);
        } else {
            p.minLen = 0;
        }
        p.text += ")";
        return p;
    }

    Piece Item(int depth, bool fixedOnly) {
        const int roll = Pick(rng_, 0, 99);
        if (roll < 38) return Literal();
        if (roll < 46) return Fixed(".");
        if (roll < 56) {
            static const char* const kTypes[] = {"\\d", "\\D", "\\w", "\\W", "\\s", "\\S"};
            return Fixed(kTypes[Pick(rng_, 0, 5)]);
        }
        if (roll < 66) return Class();
        if (roll < 70) return Property();
        if (roll < 73) return Fixed(Chance(rng_, 50) ? "\\xff" : "\\n");
        if (roll < 82 && !fixedOnly) {
            static const char* const kAnchors[] = {"^", "$", "\\b", "\\B", "\\A", "\\z", "\\Z"};
            return ZeroWidth(kAnchors[Pick(rng_, 0, 6)]);
        }
        if (roll < 86 && !fixedOnly && !lookaround_ && !closedNonEmpty_.empty()) {
            Piece p;
            p.text = "\\";
            p.text += std::to_string(closedNonEmpty_[size_t(Pick(rng_, 0, int(closedNonEmpty_.size()) - 1))]);
            p.minLen = 1;
            p.maxLen = kUnbounded;
            p.single = true;
            return p;
        }
        if (depth < 3) return Group(depth, fixedOnly);
        return Literal();
    }

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
    const int n = Pick(rng, 0, 14);
    for (int i = 0; i < n; ++i) s += kBytes[Pick(rng, 0, int(sizeof kBytes) - 2)];
    return s;
}

std::string Escaped(const std::string& s) {
    std::string out;
    for (unsigned char c : s) {
        if (c >= 32 && c < 127) out += char(c);
        else {
            char buf[8];
            std::snprintf(buf, sizeof buf, "\\x%02x", c);
            out += buf;
        }
    }
    return out;
}

// One match: its records as (offset, length) pairs, -1/-1 when unset.
using Records = std::vector<std::pair<int, int>>;

std::string Show(const std::vector<Records>& matches) {
    if (matches.empty()) return "no match";
    std::string out;
    for (const Records& r : matches) {
        out += "{";
        for (size_t i = 0; i < r.size(); ++i)
            out.append(i ? " " : "").append(std::to_string(r[i].first)).append("+").append(std::to_string(r[i].second));
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
    int Match(const std::string& s, size_t start, uint32_t options, Records& out, int groups) {
        const int rc = pcre2_match(code_, reinterpret_cast<PCRE2_SPTR>(s.data()), s.size(), start, options, data_,
                                   nullptr);
        if (rc == PCRE2_ERROR_NOMATCH) return 0;
        if (rc < 0) return -1;
        const PCRE2_SIZE* ov = pcre2_get_ovector_pointer(data_);
        out.assign(size_t(groups), {-1, -1});
        for (int i = 0; i < groups && i < rc; ++i)
            if (ov[2 * i] != PCRE2_UNSET) out[size_t(i)] = {int(ov[2 * i]), int(ov[2 * i + 1] - ov[2 * i])};
        return 1;
    }

private:
    pcre2_code* code_ = nullptr;
    pcre2_match_data* data_ = nullptr;
};

// Perl's global loop: after an empty match, retry at the same place for a
// non-empty anchored match, else move one byte on.
int Pcre2All(Pcre2& re, const std::string& s, int groups, std::vector<Records>& all, bool& sawEmpty) {
    size_t pos = 0;
    uint32_t flags = 0;
    sawEmpty = false;
    while (pos <= s.size()) {
        Records r;
        const int rc = re.Match(s, pos, flags, r, groups);
        if (rc < 0) return -1;
        if (rc == 0) {
            if (flags == 0) break;
            flags = 0;
            ++pos;
            continue;
        }
        all.push_back(r);
        const size_t end = size_t(r[0].first + r[0].second);
        if (r[0].second == 0) {
            sawEmpty = true;
            flags = PCRE2_NOTEMPTY_ATSTART | PCRE2_ANCHORED;
        } else {
            flags = 0;
        }
        pos = end;
    }
    return 0;
}

// A search that ends with -188 runs into the bound on its steps (a multiple
// of the match limit), where libpcre2 may still finish; it is compared again
// under a limit that loosens the bound.
constexpr int kDefaultMatchLimit = 10000, kLooseMatchLimit = 1000000;

class Ours {
public:
    Ours(const std::string& pattern, const std::string& options) {
        int size = 0;
        vkpsRegExpGetSize(pattern.c_str(), &size);
        block_.assign((size_t(size) + 7) / 8, 0);
        int off = 0;
        status_ = vkpsRegExpInit(pattern.c_str(), options.c_str(), state(), &off);
        if (status_ == 0) vkpsRegExpSetFormat(0, state());
    }
    int status() const { return status_; }
    vkpRegExpState* state() { return reinterpret_cast<vkpRegExpState*>(block_.data()); }

    // The same search under another match limit.
    int FindWithLimit(const std::string& s, std::vector<Records>& matches, int perMatch, int limit) {
        vkpsRegExpSetMatchLimit(limit, state());
        const int st = Find(s, matches, perMatch);
        vkpsRegExpSetMatchLimit(kDefaultMatchLimit, state());
        return st;
    }

    // Status of the search; matches hold the records as offsets.
    int Find(const std::string& s, std::vector<Records>& matches, int perMatch) {
        std::vector<vkpRegExpFind> rec(size_t(perMatch) * (2 * s.size() + 2) + 1);
        int n = int(rec.size());
        const auto* src = reinterpret_cast<const vkp8u*>(s.c_str());  // a zero byte stands behind
        const int st = vkpsRegExpFind_8u(src, int(s.size()), state(), rec.data(), &n);
        if (st < 0) return st;
        for (int i = 0; i + perMatch <= n; i += perMatch) {
            Records r;
            for (int k = 0; k < perMatch; ++k) {
                const vkpRegExpFind& f = rec[size_t(i + k)];
                r.push_back(f.pMatch ? std::make_pair(int(f.pMatch - src), f.matchLen) : std::make_pair(-1, -1));
            }
            matches.push_back(r);
        }
        return st;
    }

private:
    std::vector<uint64_t> block_;
    int status_;
};

constexpr uint32_t kOpChar = 0x10000000u, kOpString = 0x10000001u, kOpAnchor = 0x10000005u,
                   kOpRepeat = 0x10000008u;
constexpr int kKindLeadingLiteral = 1, kImplicitAnchor = 128;

const vkpRegExpInstruction* Program(const vkpRegExpState* st) {
    return reinterpret_cast<const vkpRegExpInstruction*>(reinterpret_cast<const unsigned char*>(st) +
                                                         VKP_REGEXP_HEAD_SIZE);
}

// The compiler's implicit anchor (a program that begins with .* or .+).
bool ImplicitAnchor(const vkpRegExpState* st) {
    return st->instructionCount > 0 && Program(st)[0].op == kOpAnchor && Program(st)[0].a == kImplicitAnchor;
}

int EnvInt(const char* name, int fallback) {
    const char* v = std::getenv(name);
    return v && *v ? std::atoi(v) : fallback;
}

// A leading literal under a lazy repeat (see the list above).
bool LazyLeadingLiteral(const vkpRegExpState* st) {
    return st->patternKind == kKindLeadingLiteral && st->instructionCount > 1 && Program(st)[1].op == kOpRepeat &&
           Program(st)[1].a == 0;
}

char Upper(char c) { return c >= 'a' && c <= 'z' ? char(c - 32) : c; }

// The subject length the driver searches: up to the end of the last
// occurrence of the last literal, 0 when it does not occur.
size_t CutLength(const vkpRegExpState* st, const std::string& s) {
    if (st->lastLiteralIndex < 0 || st->lastLiteralIndex >= st->instructionCount) return s.size();
    const vkpRegExpInstruction& ins = Program(st)[st->lastLiteralIndex];
    std::string lit;
    if (ins.op == kOpChar) lit = std::string(1, char(ins.a));
    else if (ins.op == kOpString) lit.assign(static_cast<const char*>(ins.d), size_t(ins.b));
    else return s.size();
    const bool caseless = (ins.c & VKP_REGEXP_IGNORECASE) != 0;
    for (size_t i = s.size() >= lit.size() ? s.size() - lit.size() + 1 : 0; i-- > 0;) {
        size_t k = 0;
        while (k < lit.size() && (caseless ? Upper(s[i + k]) == Upper(lit[k]) : s[i + k] == lit[k])) ++k;
        if (k == lit.size()) return i + lit.size();
    }
    return 0;
}

bool IsWordByte(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

TEST(RegExpPeer, AgreesWithPcre2) {
    const int seed = EnvInt("VKPCH_PEER_SEED", 20240601);
    const int patterns = EnvInt("VKPCH_PEER_PATTERNS", 3000);
    Rng rng{uint32_t(seed)};
    int compared = 0, skipped = 0, mismatches = 0, globalCompared = 0, bounded = 0;
    for (int k = 0; k < patterns && mismatches < 40; ++k) {
        std::string letters;
        uint32_t peerOptions = 0;
        if (Chance(rng, 25)) letters += 'i', peerOptions |= PCRE2_CASELESS;
        if (Chance(rng, 25)) letters += 'm', peerOptions |= PCRE2_MULTILINE;
        if (Chance(rng, 25)) letters += 's', peerOptions |= PCRE2_DOTALL;
        if (Chance(rng, 15)) letters += 'x', peerOptions |= PCRE2_EXTENDED;
        Generator gen(rng, letters.find('x') != std::string::npos, letters.find('i') != std::string::npos,
                      Chance(rng, 60));
        const std::string pattern = gen.Pattern();
        const std::string where = "pattern \"" + Escaped(pattern) + "\" options \"" + letters + "\"";

        Pcre2 peer(pattern, peerOptions);
        Ours ours(pattern, letters);
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
        Ours oursGlobal(pattern, letters + "g");
        for (int j = 0; j < 24 && mismatches < 40; ++j) {
            const std::string subject = Subject(rng);
            const std::string cut = subject.substr(0, CutLength(ours.state(), subject));
            if (wordAnchor && cut.size() < subject.size() && IsWordByte(subject[cut.size()])) {
                ++skipped;
                continue;
            }
            std::vector<Records> want, got;
            Records r;
            const int rc = peer.Match(cut, 0, 0, r, groups);
            if (rc < 0) {
                ++skipped;
                continue;
            }
            if (rc == 1) want.push_back(r);
            int st = ours.Find(subject, got, groups);
            if (st == VKP_ERR_MATCH_LIMIT) {  // the bound on search time, not a fault, if a looser one agrees
                got.clear();
                st = ours.FindWithLimit(subject, got, groups, kLooseMatchLimit);
                ++bounded;
            }
            ++compared;
            if (st != 0 || got != want) {
                ADD_FAILURE() << where << " subject \"" << Escaped(subject) << "\": status " << st << ", "
                              << Show(got) << ", expected " << Show(want);
                ++mismatches;
                break;  // one report per pattern
            }
            if (!global) continue;
            std::vector<Records> all, allGot;
            bool sawEmpty = false;
            if (Pcre2All(peer, cut, groups, all, sawEmpty) != 0 || sawEmpty) continue;
            // With groups a global search reports records 1 to the last group.
            for (Records& m : all)
                if (groups > 1) m.erase(m.begin());
            const int perMatch = groups > 1 ? groups - 1 : 1;
            int gst = oursGlobal.Find(subject, allGot, perMatch);
            if (gst == VKP_ERR_MATCH_LIMIT) {
                allGot.clear();
                gst = oursGlobal.FindWithLimit(subject, allGot, perMatch, kLooseMatchLimit);
                ++bounded;
            }
            ++globalCompared;
            if (gst != 0 || allGot != all) {
                ADD_FAILURE() << where << " global, subject \"" << Escaped(subject) << "\": status " << gst << ", "
                              << Show(allGot) << ", expected " << Show(all);
                ++mismatches;
                break;
            }
        }
    }
    std::printf("seed %d: %d single and %d global searches compared (%d again under a looser bound), %d skipped\n",
                seed, compared, globalCompared, bounded, skipped);
    EXPECT_GT(compared, patterns * 10);
}

}  // namespace
