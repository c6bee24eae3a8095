#include "input.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

bool ReadInput(const std::string& path, std::vector<unsigned char>& data, std::string& error) {
    const bool useStdin = path == "-";
    FILE* f = useStdin ? stdin : std::fopen(path.c_str(), "rb");
    if (!f) {
        error = path + ": " + std::strerror(errno);
        return false;
    }
    data.clear();
    unsigned char buf[1 << 16];
    size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, f)) > 0) data.insert(data.end(), buf, buf + n);
    const bool failed = std::ferror(f) != 0;
    if (!useStdin) std::fclose(f);
    if (failed) error = path + ": read error";
    return !failed;
}
