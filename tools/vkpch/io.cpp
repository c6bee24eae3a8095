#include "io.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <fcntl.h>
#include <sys/stat.h>

#if defined(_WIN32)
#include <io.h>
#define VKPCH_READ _read
#define VKPCH_WRITE _write
#define VKPCH_CLOSE _close
#define VKPCH_OPEN(p) _open(p, _O_RDONLY | _O_BINARY)
#else
#include <unistd.h>
#define VKPCH_READ ::read
#define VKPCH_WRITE ::write
#define VKPCH_CLOSE ::close
#define VKPCH_OPEN(p) ::open(p, O_RDONLY)
#endif

std::string ErrorText(int error) {
    switch (error) {  // the texts people know from the C library
        case ENOENT: return "No such file or directory";
        case EISDIR: return "Is a directory";
        case EACCES: return "Permission denied";
        default: return std::strerror(error);
    }
}

int Report(const std::string& message, bool quiet) {
    if (!quiet) {
        Output::Stdout().Flush();
        std::fprintf(stderr, "vkpch: %s\n", message.c_str());
    }
    return 2;
}

namespace {

// Buffers of finished readers, kept for the next ones: a recursive search
// opens many small files. Shared by the worker threads under a lock (a
// thread-local buffer with a destructor is not safe on every platform's
// thread exit).
class SpareBuffers {
public:
    void Put(std::vector<char>& buf) {
        std::lock_guard<std::mutex> lock(mutex_);
        if (spares_.size() < 16) spares_.push_back(std::move(buf));
    }
    void Get(std::vector<char>& buf) {
        std::lock_guard<std::mutex> lock(mutex_);
        if (spares_.empty()) return;
        buf.swap(spares_.back());
        spares_.pop_back();
    }

private:
    std::mutex mutex_;
    std::vector<std::vector<char>> spares_;
};
SpareBuffers& Spares() {
    static SpareBuffers spares;
    return spares;
}

}  // namespace

LineReader::~LineReader() {
    if (own_ && fd_ >= 0) VKPCH_CLOSE(fd_);
    if (buf_.capacity() == kBlock + 2) Spares().Put(buf_);
}

bool LineReader::Open(const std::string& path, std::string* error) {
    if (path == "-") {
        fd_ = 0;
#if defined(_WIN32)
        _setmode(0, _O_BINARY);
#endif
    } else {
        fd_ = VKPCH_OPEN(path.c_str());
        if (fd_ < 0) {
            int why = errno;
            struct stat st;
            if (stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode)) why = EISDIR;  // Windows opens none
            *error = path + ": " + ErrorText(why);
            return false;
        }
        own_ = true;
    }
    struct stat st;
    const bool known = fstat(fd_, &st) == 0;
    if (known && S_ISDIR(st.st_mode)) {
        *error = path + ": " + ErrorText(EISDIR);
        return false;
    }
    interactive_ = !(known && S_ISREG(st.st_mode));
    if (!interactive_) left_ = st.st_size;  // no read needed to see its end
    Spares().Get(buf_);
    buf_.reserve(kBlock + 2);
    buf_.resize(kBlock + 2);  // room for a terminator behind a last line and the byte behind it
    return true;
}

bool LineReader::Next() {
    // The bytes behind the last block start the next one.
    const std::size_t carry = filled_ - size_;
    std::memmove(buf_.data(), buf_.data() + size_, carry);
    filled_ = carry;
    size_ = 0;
    missingEol_ = false;
    if (buf_.size() > kBlock + 2 && carry < kBlock) {
        buf_.resize(kBlock + 2);
        buf_.shrink_to_fit();
    }
    std::size_t scanned = 0;  // no terminator in buf_[0, scanned)
    for (;;) {
        if (anyBytes_ && filled_ > 0) {
            size_ = filled_;
            return true;
        }
        const void* eol = std::memchr(buf_.data() + scanned, eol_, filled_ - scanned);
        if (eol) {
            // Every whole line read so far.
            const char* last = buf_.data() + filled_;
            while (*--last != eol_) {
            }
            size_ = std::size_t(last - buf_.data()) + 1;
            return true;
        }
        scanned = filled_;
        if (end_ || error_) break;
        if (filled_ + 2 >= buf_.size()) buf_.resize(2 * buf_.size());
        long n;
        do n = long(VKPCH_READ(fd_, buf_.data() + filled_, unsigned(buf_.size() - 2 - filled_)));
        while (n < 0 && errno == EINTR);
        if (n < 0) error_ = errno;
        if (n <= 0) end_ = true;
        else filled_ += std::size_t(n);
        if (n > 0 && left_ >= 0 && (left_ -= n) <= 0) end_ = true;
    }
    if (filled_ == 0) return false;
    size_ = filled_;  // a last line without a terminator
    buf_[size_] = eol_;
    buf_[size_ + 1] = eol_;
    missingEol_ = true;
    return true;
}

Output& Output::Stdout() {
    static Output out;
    return out;
}

void Output::Write(const char* p, std::size_t n) {
    if (error_) return;
    buf_.append(p, n);
    if (buf_.size() >= (std::size_t(1) << 16)) Flush();
}

bool Output::Flush() {
    std::size_t done = 0;
    while (!error_ && done < buf_.size()) {
        const long n = long(VKPCH_WRITE(1, buf_.data() + done, unsigned(buf_.size() - done)));
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) error_ = n < 0 ? errno : EIO;
        else done += std::size_t(n);
    }
    buf_.clear();
    return !error_;
}

bool FinishOutput() {
    Output& out = Output::Stdout();
    if (out.Flush()) return true;
    std::fprintf(stderr, "vkpch: write error: %s\n", ErrorText(out.error()).c_str());
    return false;
}
