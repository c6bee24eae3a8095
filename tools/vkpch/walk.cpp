#include "walk.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#if !defined(_WIN32)
#include <cerrno>
#include <dirent.h>
#endif

#include "io.h"

namespace fs = std::filesystem;

bool GlobMatch(const char* g, const char* n) {
    for (; *g; ++g, ++n) {
        if (*g == '*') {
            while (g[1] == '*') ++g;
            for (const char* k = n;; ++k) {
                if (GlobMatch(g + 1, k)) return true;
                if (!*k) return false;
            }
        }
        if (!*n) return false;
        if (*g == '?') continue;
        if (*g == '[') {
            const char* p = g + 1;
            const bool negate = *p == '!' || *p == '^';
            if (negate) ++p;
            bool found = false;
            const char* start = p;
            for (; *p && (*p != ']' || p == start); ++p) {
                if (p[1] == '-' && p[2] && p[2] != ']') {
                    found |= (unsigned char)*n >= (unsigned char)p[0] && (unsigned char)*n <= (unsigned char)p[2];
                    p += 2;
                } else {
                    found |= *p == *n;
                }
            }
            if (*p == ']') {
                if (found == negate) return false;
                g = p;
                continue;
            }
        }
        if (*g == '\\' && g[1]) ++g;
        if (*g != *n) return false;
    }
    return !*n;
}

namespace {

std::string Base(const std::string& path) {
    size_t end = path.size();
    while (end > 1 && path[end - 1] == '/') --end;
    const size_t slash = path.find_last_of('/', end - 1);
    return path.substr(slash == std::string::npos ? 0 : slash + 1, end - (slash == std::string::npos ? 0 : slash + 1));
}

bool AnyMatch(const std::vector<std::string>& globs, const std::string& name) {
    for (const std::string& g : globs)
        if (GlobMatch(g.c_str(), name.c_str())) return true;
    return false;
}

// The names in dir with their types (symbolic links as links). POSIX
// systems give the types with the names, without a call per entry.
bool List(const std::string& dir, std::vector<std::pair<std::string, fs::file_type>>* entries, std::error_code* ec) {
#if defined(_WIN32)
    for (fs::directory_iterator it(dir, *ec), end; !*ec && it != end; it.increment(*ec)) {
        std::error_code typeError;
        entries->emplace_back(it->path().filename().string(), it->symlink_status(typeError).type());
    }
    return !*ec;
#else
    DIR* d = opendir(dir.c_str());
    if (!d) {
        *ec = std::error_code(errno, std::generic_category());
        return false;
    }
    while (const dirent* e = readdir(d)) {
        const std::string name = e->d_name;
        if (name == "." || name == "..") continue;
        fs::file_type type = e->d_type == DT_DIR ? fs::file_type::directory
                             : e->d_type == DT_REG ? fs::file_type::regular
                             : e->d_type == DT_LNK ? fs::file_type::symlink
                             : e->d_type == DT_UNKNOWN ? fs::file_type::unknown : fs::file_type::block;
        if (type == fs::file_type::unknown) {
            std::error_code typeError;
            type = fs::symlink_status(dir + "/" + name, typeError).type();
        }
        entries->emplace_back(name, type);
    }
    closedir(d);
    return true;
#endif
}

}  // namespace

bool FileWanted(const WalkRules& rules, const std::string& path) {
    const std::string name = Base(path);
    for (auto it = rules.files.rbegin(); it != rules.files.rend(); ++it)
        if (GlobMatch(it->first.c_str(), name.c_str())) return it->second;
    return rules.files.empty() || !rules.files.front().second;
}

bool DirWanted(const WalkRules& rules, const std::string& path) { return !AnyMatch(rules.excludeDir, Base(path)); }

void Walk(const std::string& dir, const WalkRules& rules, std::vector<WalkEntry>* out) {
    std::error_code ec;
    std::vector<std::pair<std::string, fs::file_type>> entries;
    if (!List(dir, &entries, &ec)) {
        out->push_back({dir, dir + ": " + ErrorText(ec.value())});
        return;
    }
    std::sort(entries.begin(), entries.end());
    const std::string prefix = dir.empty() || dir.back() == '/' ? dir : dir + "/";
    for (const auto& [name, type] : entries) {
        const std::string path = prefix + name;
        const bool isLink = type == fs::file_type::symlink;
        if (isLink && !rules.followLinks) continue;  // symbolic links are followed with -R only
        const fs::file_status st = isLink ? fs::status(path, ec) : fs::file_status(type);
        if (fs::is_directory(st)) {
            if (!AnyMatch(rules.excludeDir, name)) Walk(path, rules, out);
        } else if (ec && isLink) {
            out->push_back({path, path + ": " + ErrorText(ec.value())});
        } else if (fs::is_regular_file(st) && FileWanted(rules, path)) {
            out->push_back({path, ""});
        }
    }
}
