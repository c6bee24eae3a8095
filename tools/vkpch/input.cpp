#include "input.h"

#include "io.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

bool ReadInput(const std::string& path, std::vector<unsigned char>& data, std::string& error) {
    const bool useStdin = path == "-";
    LineReader probe;  // names a directory or a missing file as grep does
    if (!useStdin && !probe.Open(path, &error)) return false;
    FILE* f = useStdin ? stdin : std::fopen(path.c_str(), "rb");
    if (!f) {
        error = path + ": " + ErrorText(errno);
        return false;
    }
    // Reads straight into data, which grows by doubling (from the file's size
    // when it has one), plus one byte for a line feed the caller may add.
    size_t size = 0, room = 1 << 16;
    if (!useStdin && std::fseek(f, 0, SEEK_END) == 0) {
        const long end = std::ftell(f);
        if (end > 0) room = size_t(end) + 1;
        std::rewind(f);
    }
    data.resize(room);
    size_t n;
    while ((n = std::fread(data.data() + size, 1, data.size() - size, f)) > 0) {
        size += n;
        if (size == data.size()) data.resize(2 * data.size());
    }
    data.resize(size);
    const bool failed = std::ferror(f) != 0;
    if (!useStdin) std::fclose(f);
    if (failed) error = path + ": read error";
    return !failed;
}
