// Input and output for the vkpch tool: whole lines read in blocks of bounded
// size, and a standard output that notices write errors.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

// The text of an errno value.
std::string ErrorText(int error);

// Prints "vkpch: MESSAGE" to standard error (unless quiet) and returns 2.
int Report(const std::string& message, bool quiet = false);

// Reads a file or a pipe in blocks of whole lines. A line longer than a
// block grows the buffer for that line only. The byte behind each block is
// readable and holds the line terminator (also behind a last line without
// one), so a search of a line may read the byte behind it.
class LineReader {
public:
    explicit LineReader(char eol = '\n') : eol_(eol) {}
    // Blocks of whatever was read, not cut at a line end (memory stays
    // bounded for input without line feeds).
    void AnyBytes() { anyBytes_ = true; }
    ~LineReader();
    LineReader(const LineReader&) = delete;
    LineReader& operator=(const LineReader&) = delete;

    // "-" is standard input. Returns false with *error set ("NAME: reason").
    bool Open(const std::string& path, std::string* error);
    // The next block of whole lines in [data(), data() + size()); false at
    // the end of the input or on a read error (then error() is non-zero).
    bool Next();
    const char* data() const { return buf_.data(); }
    char* data() { return buf_.data(); }
    std::size_t size() const { return size_; }
    // Bytes read so far from data() on, the block and what follows it.
    std::size_t read() const { return filled_; }
    // The block's last line had no terminator (the end of the input).
    bool missingEol() const { return missingEol_; }
    int error() const { return error_; }
    // Input from a pipe or terminal: output should be flushed before each
    // read that may wait.
    bool interactive() const { return interactive_; }

private:
    static constexpr std::size_t kBlock = std::size_t(1) << 18;
    int fd_ = -1;
    bool own_ = false, interactive_ = false, missingEol_ = false, end_ = false, anyBytes_ = false;
    char eol_;
    int error_ = 0;
    std::vector<char> buf_;
    std::size_t size_ = 0, filled_ = 0;  // the block's bytes; all bytes read into buf_
    long long left_ = -1;                // bytes a regular file still holds (-1: unknown)
};

// Standard output through a buffer; remembers the first write error.
class Output {
public:
    static Output& Stdout();
    void Write(const char* p, std::size_t n);
    void Write(const std::string& s) { Write(s.data(), s.size()); }
    void Put(char c) { Write(&c, 1); }
    bool Flush();
    bool failed() const { return error_ != 0; }
    int error() const { return error_; }

private:
    std::string buf_;
    int error_ = 0;
};

// Flushes standard output; on a write error reports it and returns false.
bool FinishOutput();
