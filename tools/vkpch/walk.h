// The files a recursive grep searches, in sorted order.
#pragma once

#include <string>
#include <vector>

struct WalkRules {
    // --include (true) and --exclude (false) globs on base names, in order:
    // the last that matches decides; when none does, a file is searched
    // unless the first is an --include.
    std::vector<std::pair<std::string, bool>> files;
    std::vector<std::string> excludeDir;
    bool followLinks = false;                                // -R: also below symbolic links
};

// A shell glob (* ? [set] [!set] [^set], \ quotes) against a whole name.
bool GlobMatch(const char* glob, const char* name);

// Whether a file's base name passes --include and --exclude, and a
// directory's --exclude-dir.
bool FileWanted(const WalkRules& rules, const std::string& path);
bool DirWanted(const WalkRules& rules, const std::string& path);

struct WalkEntry {
    std::string path;
    std::string error;  // non-empty: reported instead of searched
};

// Appends the files under dir (which is itself searched when it is a file),
// each directory's entries in byte order of their names.
void Walk(const std::string& dir, const WalkRules& rules, std::vector<WalkEntry>* out);
