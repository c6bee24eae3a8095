// Lookup of category, block and script names for \p and \P.
#include "regexp/compile/unicode_names.h"

namespace vkp {

namespace {

struct CategoryEntry {
    char name[3];
    u32 bits;
};

constexpr CategoryEntry kCategoryNames[] = {
    {"Ll", kCatLl}, {"Lu", kCatLu}, {"Lt", kCatLt}, {"Lm", kCatLm},
    {"Lo", kCatLo}, {"L&", kCatLCased},
    {"Mn", kCatMn}, {"Mc", kCatMc}, {"Me", kCatMe},
    {"Zs", kCatZs}, {"Zl", kCatZl}, {"Zp", kCatZp},
    {"Sm", kCatSm}, {"Sc", kCatSc}, {"Sk", kCatSk}, {"So", kCatSo},
    {"Nd", kCatNd}, {"Nl", kCatNl}, {"No", kCatNo},
    {"Pd", kCatPd}, {"Ps", kCatPs}, {"Pe", kCatPe}, {"Pi", kCatPi},
    {"Pf", kCatPf}, {"Pc", kCatPc}, {"Po", kCatPo},
    {"Cc", kCatCc}, {"Cf", kCatCf}, {"Co", kCatCo}, {"Cs", kCatCs},
    {"Cn", kCatCn},
};

// True when the `n` bytes of `text` equal the zero-terminated `word`.
bool SameBytes(const char* text, const char* word, size_t n) {
    for (size_t i = 0; i < n; ++i) {
        if (word[i] == 0 || text[i] != word[i]) return false;
    }
    return word[n] == 0;
}

size_t Length(const char* s) {
    size_t n = 0;
    while (s[n]) ++n;
    return n;
}

// True when the pattern holds `word` followed by '}' at `name`.
bool NameWithBrace(const char* name, size_t avail, const char* word, size_t n) {
    return n < avail && name[n] == '}' && SameBytes(name, word, n);
}

}  // namespace

const char* CategoryName(u32 bits) {
    static constexpr const char* kMajors[] = {"L", "M", "Z", "S", "N", "P", "C"};
    for (const CategoryEntry& c : kCategoryNames)
        if (c.bits == bits) return c.name;
    for (int i = 0; i < 7; ++i)
        if (bits == (kCatL << i)) return kMajors[i];
    return nullptr;
}

u32 MajorCategory(char letter) {
    switch (letter) {
        case 'L': return kCatL;
        case 'M': return kCatM;
        case 'Z': return kCatZ;
        case 'S': return kCatS;
        case 'N': return kCatN;
        case 'P': return kCatP;
        case 'C': return kCatC;
        default: return 0;
    }
}

u32 FindCategory(const char* name, size_t avail, int* length) {
    if (avail >= 2 && name[1] == '}') {
        *length = 1;
        return MajorCategory(name[0]);
    }
    if (avail < 2) return 0;
    for (const CategoryEntry& cat : kCategoryNames) {
        if (name[0] != cat.name[0] || name[1] != cat.name[1]) continue;
        if (cat.bits == kCatCo && !(avail > 2 && name[2] == '}')) return 0;
        *length = 2;
        return cat.bits;
    }
    return 0;
}

int FindBlock(const char* name, size_t avail, int* length) {
    size_t n = 0;
    while (n < avail && name[n] != '}') ++n;
    *length = static_cast<int>(n);
    if (n >= static_cast<size_t>(kBlockNameSize)) return -1;
    for (int i = 0; i < kBlockCount; ++i) {
        const char* block = kBlocks[i].name;
        size_t k = 0;
        while (k < n && block[k] == name[k]) ++k;
        if (k == n) return i;
    }
    return -1;
}

int FindScript(const char* name, size_t avail, int* length) {
    for (int i = 0; i < kScriptCount; ++i) {
        size_t n = Length(kScripts[i].name);
        if (NameWithBrace(name, avail, kScripts[i].name, n)) {
            *length = static_cast<int>(n);
            return i;
        }
    }
    return -1;
}

bool EncodeProperty(const char* name, size_t avail, bool negated,
                    Instruction* out, int* length) {
    const int neg = negated ? -1 : 0;
    if (u32 bits = FindCategory(name, avail, length)) {
        out->op = OP_CATEGORY;
        out->a = static_cast<int>(bits);
        out->b = neg;
        return true;
    }
    if (NameWithBrace(name, avail, "Any", 3)) {
        *length = 3;
        out->op = OP_BLOCK;
        out->a = 0;
        out->b = 0x10FFFF;
        out->c = neg;
        return true;
    }
    if (avail > 0 && name[0] == 'I') {
        int block = FindBlock(name, avail, length);
        if (block >= 0) {
            out->op = OP_BLOCK;
            out->a = static_cast<int>(kBlocks[block].first);
            out->b = static_cast<int>(kBlocks[block].last);
            out->c = neg;
            return true;
        }
    }
    int script = FindScript(name, avail, length);
    if (script < 0) return false;
    out->op = OP_SCRIPT;
    out->a = 1;
    out->b = neg;
    out->c = kScripts[script].rangeCount;
    out->d = kScriptRanges + kScripts[script].firstRange;
    return true;
}

}  // namespace vkp
