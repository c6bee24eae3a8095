// vkpch convert [--from ENC] [--to ENC] [FILE...]: converts between UTF-8,
// UTF-16LE and UTF-16BE (default UTF-8 to UTF-16LE), streaming the files or
// standard input in fixed-size chunks to standard output.
//
// A UTF-8 sequence cut by a chunk boundary stays unconsumed and is carried
// into the next chunk; at the end of the input such a cut sequence is
// ill-formed and its lead byte stands for itself, as the converter's rules
// have it. A high surrogate at the end of a chunk waits for the next chunk
// so that a pair split across chunks still joins. Same-form conversions run
// through the other form (UTF-8 to UTF-8 applies the lenient rules; UTF-16
// to UTF-16 only changes the byte order).
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <vector>

#if defined(_WIN32)
#include <fcntl.h>
#include <io.h>
#endif

#include "commands.h"
#include "vkpch.h"

namespace {

enum class Enc { Utf8, Utf16LE, Utf16BE };

constexpr size_t kChunk = 1 << 16;

bool ParseEnc(const std::string& name, Enc& enc) {
    if (name == "utf-8" || name == "UTF-8" || name == "utf8") enc = Enc::Utf8;
    else if (name == "utf-16le" || name == "UTF-16LE") enc = Enc::Utf16LE;
    else if (name == "utf-16be" || name == "UTF-16BE") enc = Enc::Utf16BE;
    else return false;
    return true;
}

vkp16u Swap(vkp16u u) { return vkp16u((u >> 8) | (u << 8)); }

class Converter {
public:
    Converter(Enc from, Enc to) : from_(from), to_(to) {}

    // Converts what `pending_` holds plus `data`; with `final` nothing may
    // stay behind. Returns false on an odd UTF-16 byte count at the end.
    bool Feed(const unsigned char* data, size_t n, bool final) {
        pending_.insert(pending_.end(), data, data + n);
        if (from_ == Enc::Utf8) {
            DecodeUtf8(final);
        } else {
            const size_t whole = pending_.size() / 2 * 2;
            if (final && whole != pending_.size()) return false;
            const size_t at = units_.size();
            units_.resize(at + whole / 2);
            std::memcpy(units_.data() + at, pending_.data(), whole);
            pending_.erase(pending_.begin(), pending_.begin() + std::ptrdiff_t(whole));
        }
        if (to_ == Enc::Utf8) return EncodeUtf8(final), true;
        if (from_ != Enc::Utf8 && from_ != to_)
            for (vkp16u& u : units_) u = Swap(u);
        Write(units_.data(), units_.size() * 2);
        units_.clear();
        return true;
    }

private:
    // UTF-8 in pending_ to units in the byte order of the target (machine
    // order when the target is UTF-8).
    void DecodeUtf8(bool final) {
        const int bigEndian = to_ == Enc::Utf16BE;
        size_t pos = 0;
        while (pos < pending_.size()) {
            const size_t at = units_.size();
            units_.resize(at + (pending_.size() - pos));
            int srcLen = int(pending_.size() - pos), dstLen = int(pending_.size() - pos);
            vkpsConvertUTF_8u16u(pending_.data() + pos, &srcLen, units_.data() + at, &dstLen, bigEndian);
            units_.resize(at + size_t(dstLen));
            pos += size_t(srcLen);
            if (srcLen == 0) {  // a sequence cut off by the end of what we have
                if (!final) break;
                const vkp16u lead = pending_[pos++];
                units_.push_back(bigEndian ? Swap(lead) : lead);
            }
        }
        pending_.erase(pending_.begin(), pending_.begin() + std::ptrdiff_t(pos));
    }

    void EncodeUtf8(bool final) {
        const int bigEndian = from_ == Enc::Utf16BE;
        size_t n = units_.size();
        if (!final && n) {
            const vkp16u last = bigEndian ? Swap(units_[n - 1]) : units_[n - 1];
            if (last >= 0xD800 && last <= 0xDBFF) --n;  // may pair with the next chunk's first unit
        }
        std::vector<vkp8u> out(3 * n + 1);
        int srcLen = int(n), dstLen = int(out.size());
        vkpsConvertUTF_16u8u(units_.data(), &srcLen, out.data(), &dstLen, bigEndian);
        Write(out.data(), size_t(dstLen));
        units_.erase(units_.begin(), units_.begin() + srcLen);
    }

    static void Write(const void* p, size_t n) {
        if (n) std::fwrite(p, 1, n, stdout);
    }

    Enc from_, to_;
    std::vector<unsigned char> pending_;
    std::vector<vkp16u> units_;
};

}  // namespace

int CmdConvert(const Args& args) {
    Enc from = Enc::Utf8, to = Enc::Utf16LE;
    std::vector<std::string> files;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& a = args[i];
        if (a == "--from" || a == "--to") {
            if (i + 1 == args.size()) return Fail(a + " needs an encoding (utf-8, utf-16le, utf-16be)");
            if (!ParseEnc(args[++i], a == "--from" ? from : to))
                return Fail("unknown encoding '" + args[i] + "' (utf-8, utf-16le, utf-16be)");
        } else if (a.size() > 1 && a[0] == '-' && a != "-") {
            return Fail("unknown option '" + a + "'");
        } else {
            files.push_back(a);
        }
    }
    if (files.empty()) files.push_back("-");
#if defined(_WIN32)
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
#endif
    for (const std::string& path : files) {
        FILE* f = path == "-" ? stdin : std::fopen(path.c_str(), "rb");
        if (!f) return Fail(path + ": " + std::strerror(errno));
        Converter conv(from, to);
        std::vector<unsigned char> buf(kChunk);
        bool ok = true;
        size_t n;
        while ((n = std::fread(buf.data(), 1, buf.size(), f)) > 0) ok = conv.Feed(buf.data(), n, false) && ok;
        const bool readError = std::ferror(f) != 0;
        if (f != stdin) std::fclose(f);
        if (readError) return Fail(path + ": read error");
        if (!conv.Feed(nullptr, 0, true) || !ok) return Fail(path + ": odd number of bytes in UTF-16 input");
    }
    return std::fflush(stdout) == 0 ? 0 : Fail("write error");
}
