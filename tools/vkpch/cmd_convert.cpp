// vkpch convert: iconv's options over the library's UTF-8/UTF-16
// conversion, streaming the inputs in fixed-size chunks.
//
// A UTF-8 sequence cut by a chunk boundary stays unconsumed and is carried
// into the next chunk; at the end of the input such a cut sequence is
// ill-formed and its lead byte stands for itself, as the converter's rules
// have it. A high surrogate at the end of a chunk waits for the next chunk
// so that a pair split across chunks still joins. Same-form conversions run
// through the other form (UTF-8 to UTF-8 applies the lenient rules; UTF-16
// to UTF-16 only changes the byte order). UTF-16 without a byte order is
// read by its byte-order mark (little-endian without one) and written
// little-endian after a mark.
#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <vector>

#if defined(_WIN32)
#include <io.h>
#define VKPCH_DUP2 _dup2
#define VKPCH_CLOSE _close
#define VKPCH_CREATE(p) _open(p, _O_WRONLY | _O_CREAT | _O_TRUNC | _O_BINARY, 0666)
#else
#include <unistd.h>
#define VKPCH_DUP2 dup2
#define VKPCH_CLOSE close
#define VKPCH_CREATE(p) open(p, O_WRONLY | O_CREAT | O_TRUNC, 0666)
#endif

#include "commands.h"
#include "help.h"
#include "io.h"
#include "options.h"
#include "vkpch.h"

namespace {

enum class Enc { Utf8, Utf16LE, Utf16BE, Utf16 };

constexpr size_t kChunk = 1 << 16;

bool ParseEnc(const std::string& text, Enc* enc) {
    std::string name;
    for (char c : text)
        if (c != '-' && c != '_') name += char(std::toupper((unsigned char)c));
    if (name.size() > 2 && name.compare(name.size() - 2, 2, "//") == 0) name.resize(name.size() - 2);
    if (name == "UTF8") *enc = Enc::Utf8;
    else if (name == "UTF16LE") *enc = Enc::Utf16LE;
    else if (name == "UTF16BE") *enc = Enc::Utf16BE;
    else if (name == "UTF16") *enc = Enc::Utf16;
    else return false;
    return true;
}

vkp16u Swap(vkp16u u) { return vkp16u((u >> 8) | (u << 8)); }

// Length of the well-formed UTF-8 sequence at p (n bytes available), 0 when
// it is ill-formed, -1 when the bytes end inside it.
int Utf8Sequence(const unsigned char* p, size_t n) {
    const unsigned char b = p[0];
    if (b < 0x80) return 1;
    int len;
    unsigned low = 0x80, high = 0xBF;
    if (b >= 0xC2 && b <= 0xDF) len = 2;
    else if (b >= 0xE0 && b <= 0xEF) len = 3, low = b == 0xE0 ? 0xA0 : 0x80, high = b == 0xED ? 0x9F : 0xBF;
    else if (b >= 0xF0 && b <= 0xF4) len = 4, low = b == 0xF0 ? 0x90 : 0x80, high = b == 0xF4 ? 0x8F : 0xBF;
    else return 0;
    for (int k = 1; k < len; ++k) {
        if (size_t(k) >= n) return -1;
        if (p[k] < (k == 1 ? low : 0x80) || p[k] > (k == 1 ? high : 0xBF)) return 0;
    }
    return len;
}

class Converter {
public:
    Converter(Enc from, Enc to, bool strict) : from_(from), to_(to), strict_(strict) {}

    // Converts what is pending plus data; with `final` nothing may stay
    // behind. Returns false at the first ill-formed input with --strict, or
    // an odd UTF-16 byte count at the end (badOffset() then tells where).
    bool Feed(const unsigned char* data, size_t n, bool final) {
        pending_.insert(pending_.end(), data, data + n);
        if (from_ == Enc::Utf16 && pending_.size() >= 2 && offset_ == 0 && !bomSeen_) {
            bomSeen_ = true;
            from_ = Enc::Utf16LE;
            if (pending_[0] == 0xFE && pending_[1] == 0xFF) from_ = Enc::Utf16BE;
            if ((pending_[0] == 0xFE && pending_[1] == 0xFF) || (pending_[0] == 0xFF && pending_[1] == 0xFE)) Drop(2);
        }
        if (from_ == Enc::Utf16 && !final) return true;  // not two bytes yet
        if (from_ == Enc::Utf16) from_ = Enc::Utf16LE;
        const bool mark = to_ == Enc::Utf16;  // written before the first unit
        if (mark) to_ = Enc::Utf16LE;
        size_t usable = pending_.size();
        bool ok = true;
        if (from_ == Enc::Utf8) {
            if (strict_) ok = CheckUtf8(final, &usable);
            DecodeUtf8(final, usable);
        } else {
            usable = usable / 2 * 2;
            if (strict_) ok = CheckUtf16(final, &usable);
            if (final && usable != pending_.size() && ok) {
                bad_ = offset_ + usable;
                ok = false;
            }
            const size_t at = units_.size();
            units_.resize(at + usable / 2);
            if (usable) std::memcpy(units_.data() + at, pending_.data(), usable);
            Drop(usable);
        }
        if (to_ == Enc::Utf8) {
            EncodeUtf8(final || !ok);
        } else {
            if (from_ != Enc::Utf8 && from_ != to_)
                for (vkp16u& u : units_) u = Swap(u);
            if (mark && !units_.empty()) {
                static const unsigned char kMark[2] = {0xFF, 0xFE};
                Output::Stdout().Write(reinterpret_cast<const char*>(kMark), 2);
            } else if (mark) {
                to_ = Enc::Utf16;
            }
            Output::Stdout().Write(reinterpret_cast<const char*>(units_.data()), units_.size() * 2);
            units_.clear();
        }
        return ok;
    }
    size_t badOffset() const { return bad_; }

private:
    void Drop(size_t n) {
        pending_.erase(pending_.begin(), pending_.begin() + std::ptrdiff_t(n));
        offset_ += n;
    }

    // Limits *usable to the bytes before the first ill-formed sequence.
    bool CheckUtf8(bool final, size_t* usable) {
        for (size_t i = 0; i < pending_.size();) {
            const int len = Utf8Sequence(pending_.data() + i, pending_.size() - i);
            if (len > 0) {
                i += size_t(len);
                continue;
            }
            *usable = i;
            if (len < 0 && !final) return true;  // completed by the next chunk
            bad_ = offset_ + i;
            return false;
        }
        return true;
    }

    bool CheckUtf16(bool final, size_t* usable) {
        const bool big = from_ == Enc::Utf16BE;
        for (size_t i = 0; i + 1 < *usable; i += 2) {
            const unsigned u = big ? pending_[i] << 8 | pending_[i + 1] : pending_[i + 1] << 8 | pending_[i];
            if (u >= 0xDC00 && u <= 0xDFFF) return Bad(i, usable);
            if (u >= 0xD800 && u <= 0xDBFF) {
                if (i + 3 >= *usable) {
                    if (!final) return *usable = i, true;
                    return Bad(i, usable);
                }
                const unsigned v = big ? pending_[i + 2] << 8 | pending_[i + 3] : pending_[i + 3] << 8 | pending_[i + 2];
                if (v < 0xDC00 || v > 0xDFFF) return Bad(i, usable);
                i += 2;
            }
        }
        return true;
    }
    bool Bad(size_t i, size_t* usable) {
        bad_ = offset_ + i;
        *usable = i;
        return false;
    }

    // UTF-8 in pending_[0, usable) to units in the byte order of the target
    // (machine order when the target is UTF-8).
    void DecodeUtf8(bool final, size_t usable) {
        const int bigEndian = to_ == Enc::Utf16BE;
        size_t pos = 0;
        while (pos < usable) {
            const size_t at = units_.size();
            units_.resize(at + (usable - pos));
            int srcLen = int(usable - pos), dstLen = int(usable - pos);
            vkpsConvertUTF_8u16u(pending_.data() + pos, &srcLen, units_.data() + at, &dstLen, bigEndian);
            units_.resize(at + size_t(dstLen));
            pos += size_t(srcLen);
            if (srcLen == 0) {  // a sequence cut off by the end of what we have
                if (!final || strict_) break;
                const vkp16u lead = pending_[pos++];
                units_.push_back(bigEndian ? Swap(lead) : lead);
            }
        }
        Drop(pos);
    }

    void EncodeUtf8(bool final) {
        const int bigEndian = from_ == Enc::Utf16BE;
        size_t n = units_.size();
        if (n == 0) return;
        if (!final) {
            const vkp16u last = bigEndian ? Swap(units_[n - 1]) : units_[n - 1];
            if (last >= 0xD800 && last <= 0xDBFF) --n;  // may pair with the next chunk's first unit
        }
        std::vector<vkp8u> out(3 * n + 1);
        int srcLen = int(n), dstLen = int(out.size());
        vkpsConvertUTF_16u8u(units_.data(), &srcLen, out.data(), &dstLen, bigEndian);
        Output::Stdout().Write(reinterpret_cast<const char*>(out.data()), size_t(dstLen));
        units_.erase(units_.begin(), units_.begin() + srcLen);
    }

    Enc from_, to_;
    bool strict_, bomSeen_ = false;
    size_t offset_ = 0, bad_ = 0;  // input bytes dropped from pending_; the first bad one
    std::vector<unsigned char> pending_;
    std::vector<vkp16u> units_;
};

enum Id { kFrom, kTo, kOutput, kStrict, kList, kHelp };
const std::vector<OptionSpec> kSpecs = {
    {'f', "from-code", OptionSpec::kRequired, kFrom}, {'t', "to-code", OptionSpec::kRequired, kTo},
    {0, "from", OptionSpec::kRequired, kFrom},        {0, "to", OptionSpec::kRequired, kTo},
    {'o', "output", OptionSpec::kRequired, kOutput},  {0, "strict", OptionSpec::kNone, kStrict},
    {'l', "list", OptionSpec::kNone, kList},          {0, "help", OptionSpec::kNone, kHelp},
};

}  // namespace

int CmdConvert(const Args& args) {
    std::vector<ParsedOption> options;
    std::vector<std::string> files;
    std::string error, output;
    if (!ParseArgs(args, kSpecs, &options, &files, &error)) return Report("convert: " + error);
    Enc from = Enc::Utf8, to = Enc::Utf8;
    bool strict = false;
    for (const ParsedOption& o : options) {
        if ((o.id == kFrom || o.id == kTo) && !ParseEnc(o.value, o.id == kFrom ? &from : &to))
            return Report("convert: conversion " + std::string(o.id == kFrom ? "from" : "to") + " '" + o.value +
                          "' is not supported (UTF-8, UTF-16LE, UTF-16BE, UTF-16)");
        if (o.id == kOutput) output = o.value;
        if (o.id == kStrict) strict = true;
        if (o.id == kList) {
            std::puts("UTF-8 UTF8\nUTF-16LE UTF16LE\nUTF-16BE UTF16BE\nUTF-16 UTF16");
            return std::fflush(stdout) == 0 ? 0 : 2;
        }
        if (o.id == kHelp) return PrintCommandHelp("convert", stdout), 0;
    }
    if (files.empty()) files.push_back("-");
    if (!output.empty()) {
        const int fd = VKPCH_CREATE(output.c_str());
        if (fd < 0) return Report("convert: " + output + ": " + ErrorText(errno));
        VKPCH_DUP2(fd, 1);
        VKPCH_CLOSE(fd);
    }
    bool failed = false, illFormed = false;
    for (const std::string& path : files) {
        LineReader in;
        in.AnyBytes();
        if (!in.Open(path, &error)) {
            failed = Report("convert: " + error);
            continue;
        }
        Converter conv(from, to, strict);
        const std::string name = path == "-" ? "(standard input)" : path;
        bool ok = true;
        while (ok && in.Next()) ok = conv.Feed(reinterpret_cast<const unsigned char*>(in.data()), in.size(), false);
        if (in.error()) failed = Report("convert: " + name + ": " + ErrorText(in.error()));
        if (ok) ok = conv.Feed(nullptr, 0, true);
        if (!ok) {
            Report("convert: " + name + ": " + (strict ? "ill-formed input" : "odd number of bytes in UTF-16 input") +
                   " at byte offset " + std::to_string(conv.badOffset()));
            if (strict) illFormed = true;
            else failed = true;
            if (strict) break;
        }
        if (Output::Stdout().failed()) break;
    }
    if (!FinishOutput()) return 2;
    return failed ? 2 : illFormed ? 1 : 0;
}
