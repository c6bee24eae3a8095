// Global replace over 4 MiB of mixed text (corpus.h): vkpsRegExpReplace_8u
// against pcre2_substitute with PCRE2_SUBSTITUTE_GLOBAL (without and with
// JIT) and RE2::GlobalReplace, for a word -> "<$&>" and a date with its
// fields reordered. Every engine's output is checked against libpcre2's; a
// benchmark whose output differs reports an error instead of a rate.
#define PCRE2_CODE_UNIT_WIDTH 8
#include <benchmark/benchmark.h>
#include <pcre2.h>
#include <re2/re2.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "corpus.h"
#include "ratio_table.h"
#include "vkpch.h"

namespace vkpbench {
namespace {

struct ReplaceCase {
    const char* name;
    const char* pattern;
    const char* ours;  // template syntax of each engine
    const char* pcre2;
    const char* re2;
};

const ReplaceCase kCases[] = {
    {"word -> <$&>", "keeper", "<$&>", "<$0>", "<\\0>"},
    {"date -> $3/$2/$1", R"((\d{4})-(\d{2})-(\d{2}))", "$3/$2/$1", "$3/$2/$1", "\\3/\\2/\\1"},
};

const std::string& Text() {
    static const std::string text = MixedText(4 << 20);
    return text;
}

class Replacer {
public:
    virtual ~Replacer() = default;
    virtual bool Replace(const std::string& text, std::string& out) = 0;
};

class Ours : public Replacer {
public:
    explicit Ours(const ReplaceCase& c) {
        int size = 0, offset = 0;
        vkpsRegExpGetSize(c.pattern, &size);
        block_.resize((size_t(size) + 7) / 8);
        ok_ = vkpsRegExpInit(c.pattern, "g", State(), &offset) == 0;
        const auto* t = reinterpret_cast<const vkp8u*>(c.ours);
        vkpsRegExpReplaceGetSize(t, &size);
        tmpl_.resize((size_t(size) + 7) / 8);
        ok_ = ok_ && vkpsRegExpReplaceInit(t, Template()) == 0;
        // Records for every match: the text holds far fewer matches than
        // one in eight bytes.
        records_.resize(Text().size() / 8 * size_t(State()->groupCount));
    }
    bool ok() const { return ok_; }

    bool Replace(const std::string& text, std::string& out) override {
        int srcLen = int(text.size()), dstLen = int(out.size()), n = int(records_.size());
        const vkpStatus st = vkpsRegExpReplace_8u(reinterpret_cast<const vkp8u*>(text.data()), &srcLen,
                                                  reinterpret_cast<vkp8u*>(&out[0]), &dstLen, records_.data(), &n,
                                                  State(), Template());
        out.resize(size_t(dstLen));
        return st >= 0 && srcLen == int(text.size()) && size_t(n) < records_.size();
    }

private:
    vkpRegExpState* State() { return reinterpret_cast<vkpRegExpState*>(block_.data()); }
    vkpRegExpReplaceState* Template() { return reinterpret_cast<vkpRegExpReplaceState*>(tmpl_.data()); }
    bool ok_ = false;
    std::vector<uint64_t> block_, tmpl_;
    std::vector<vkpRegExpFind> records_;
};

class Pcre2 : public Replacer {
public:
    Pcre2(const ReplaceCase& c, bool jit) : template_(c.pcre2) {
        int err;
        PCRE2_SIZE off;
        code_ = pcre2_compile(reinterpret_cast<PCRE2_SPTR>(c.pattern), PCRE2_ZERO_TERMINATED, PCRE2_UTF, &err, &off,
                              nullptr);
        if (code_ && jit && pcre2_jit_compile(code_, PCRE2_JIT_COMPLETE) != 0) {
            pcre2_code_free(code_);
            code_ = nullptr;
        }
        if (code_) data_ = pcre2_match_data_create_from_pattern(code_, nullptr);
        options_ = PCRE2_SUBSTITUTE_GLOBAL | PCRE2_NO_UTF_CHECK | (jit ? 0 : PCRE2_NO_JIT);
    }
    ~Pcre2() override {
        pcre2_match_data_free(data_);
        pcre2_code_free(code_);
    }
    bool ok() const { return code_ != nullptr; }

    bool Replace(const std::string& text, std::string& out) override {
        PCRE2_SIZE len = out.size();
        const int rc = pcre2_substitute(code_, reinterpret_cast<PCRE2_SPTR>(text.data()), text.size(), 0, options_,
                                        data_, nullptr, reinterpret_cast<PCRE2_SPTR>(template_), PCRE2_ZERO_TERMINATED,
                                        reinterpret_cast<PCRE2_UCHAR*>(&out[0]), &len);
        out.resize(len);
        return rc >= 0;
    }

private:
    const char* template_;
    uint32_t options_ = 0;
    pcre2_code* code_ = nullptr;
    pcre2_match_data* data_ = nullptr;
};

// GlobalReplace rewrites a string in place: each round starts from a copy
// of the text (a 4 MiB copy, included in its time).
class Re2 : public Replacer {
public:
    explicit Re2(const ReplaceCase& c) : re_(c.pattern), rewrite_(c.re2) {}
    bool ok() const { return re_.ok(); }

    bool Replace(const std::string& text, std::string& out) override {
        out.assign(text);
        re2::RE2::GlobalReplace(&out, re_, rewrite_);
        return true;
    }

private:
    re2::RE2 re_;
    const char* rewrite_;
};

void Run(benchmark::State& st, Replacer* r, const std::string* expected) {
    const std::string& text = Text();
    std::string out;
    bool ok = true;
    for (auto _ : st) {
        out.resize(text.size() * 2);
        ok &= r->Replace(text, out);
    }
    st.SetBytesProcessed(int64_t(st.iterations()) * int64_t(text.size()));
    if (!ok || out != *expected) st.SkipWithError("output differs from pcre2_substitute's");
}

void Register() {
    static std::vector<std::unique_ptr<Replacer>> replacers;
    static std::vector<std::unique_ptr<std::string>> outputs;
    for (const ReplaceCase& c : kCases) {
        auto reference = std::make_unique<Pcre2>(c, false);
        auto jit = std::make_unique<Pcre2>(c, true);
        auto re2 = std::make_unique<Re2>(c);
        auto ours = std::make_unique<Ours>(c);
        auto expected = std::make_unique<std::string>(Text().size() * 2, '\0');
        if (!reference->ok() || !reference->Replace(Text(), *expected)) continue;
        const std::string base = std::string("RegExpReplace/") + c.name + "/";
        struct Entry {
            const char* impl;
            Replacer* r;
            bool ok;
        } entries[] = {{"vkp", ours.get(), ours->ok()},
                       {"pcre2", reference.get(), true},
                       {"pcre2_jit", jit.get(), jit->ok()},
                       {"re2", re2.get(), re2->ok()}};
        for (const Entry& e : entries)
            if (e.ok) benchmark::RegisterBenchmark((base + e.impl).c_str(), Run, e.r, expected.get())->MinTime(0.2);
        const std::string row = std::string("RegExpReplace_8u ") + c.name;
        AddRatio(row + " / pcre2", base + "vkp", base + "pcre2");
        AddRatio(row + " / pcre2 JIT", base + "vkp", base + "pcre2_jit");
        AddRatio(row + " / RE2", base + "vkp", base + "re2");
        replacers.push_back(std::move(reference));
        replacers.push_back(std::move(jit));
        replacers.push_back(std::move(re2));
        replacers.push_back(std::move(ours));
        outputs.push_back(std::move(expected));
    }
}

const int registered = (Register(), 0);

}  // namespace
}  // namespace vkpbench
