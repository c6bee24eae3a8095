#include "help.h"

#include <cstring>

#include "vkpch.h"

const CommandHelp kCommands[] = {
    {"grep",
     "vkpch grep [OPTION...] PATTERNS [FILE...]\n"
     "vkpch grep [OPTION...] -e PATTERNS ... [FILE...]\n"
     "vkpch grep [OPTION...] -f PATTERN_FILE ... [FILE...]\n"
     "\n"
     "Prints the lines of each FILE that match PATTERNS. PATTERNS holds one pattern\n"
     "a line; a line matches when any pattern does. With no FILE, standard input is\n"
     "searched (the working directory with -r); '-' is standard input. Options may\n"
     "stand before and after operands; '--' ends them.\n"
     "\n"
     "The options mean what they mean to GNU grep. On purpose different: the pattern\n"
     "language is always this library's Perl-style one (as grep -P), so -P changes\n"
     "nothing and -E and -G are refused. Its modifiers that grep has no letter for\n"
     "are the long options --multiline, --dotall and --extended, or (?m) (?s) (?x)\n"
     "in the pattern. Each line is a subject of its own, read as UTF-8.\n"
     "\n"
     "Patterns:\n"
     "  -e, --regexp=PATTERNS     use PATTERNS (repeatable)\n"
     "  -f, --file=FILE           take patterns from FILE, one a line\n"
     "  -i, --ignore-case         ignore case (--no-ignore-case undoes it)\n"
     "  -w, --word-regexp         match whole words only\n"
     "  -x, --line-regexp         match whole lines only\n"
     "  -F, --fixed-strings       PATTERNS are plain strings\n"
     "  -P, --perl-regexp         accepted; the language is Perl-style already\n"
     "      --multiline           ^ and $ match at line feeds inside a subject (with -z)\n"
     "      --dotall              . matches a line feed too (with -z)\n"
     "      --extended            white space and # comments in patterns are ignored\n"
     "Selection and output:\n"
     "  -v, --invert-match        select the lines that do not match\n"
     "  -c, --count               print only the number of selected lines per file\n"
     "  -l, --files-with-matches  print only the names of files with a selected line\n"
     "  -L, --files-without-match print only the names of files without one\n"
     "  -o, --only-matching       print only the matched parts, one a line\n"
     "  -q, --quiet, --silent     print nothing; exit 0 at the first selected line\n"
     "  -s, --no-messages         no messages about missing or unreadable files\n"
     "  -m, --max-count=NUM       stop reading a file after NUM selected lines\n"
     "  -n, --line-number         prefix each line with its line number\n"
     "  -H, --with-filename       prefix each line with the file name\n"
     "  -h, --no-filename         never prefix the file name\n"
     "  -A, --after-context=NUM   print NUM lines after each selected line\n"
     "  -B, --before-context=NUM  print NUM lines before each selected line\n"
     "  -C, --context=NUM         both\n"
     "      --color[=WHEN], --colour[=WHEN]\n"
     "                            colour matches, names and numbers: never, always or\n"
     "                            auto (the default WHEN: when output is a terminal)\n"
     "Files:\n"
     "  -a, --text                search binary files as text\n"
     "  -z, --null-data           lines end with a zero byte, not a line feed\n"
     "  -r, --recursive           search directories, not following symbolic links\n"
     "  -R, --dereference-recursive  search directories, following symbolic links\n"
     "      --include=GLOB        search only files whose name matches GLOB\n"
     "      --exclude=GLOB        skip files whose name matches GLOB\n"
     "      --exclude-dir=GLOB    skip directories whose name matches GLOB\n"
     "  -j, --jobs=N              search N files at once (default: one per core);\n"
     "                            the output is the same for any N\n"
     "  -V, --version             print the version\n"
     "      --help                print this help\n"
     "\n"
     "A file with a zero byte in its first block is binary: instead of its lines a\n"
     "message says that it matches (-a prints them). Files of a recursive search come\n"
     "in byte order of their names.\n"
     "\n"
     "Exit status: 0 when a line was selected, 1 when none was, 2 on an error (a bad\n"
     "pattern or option, a missing or unreadable file, a directory without -r, a\n"
     "write error); the other files are still searched. With -q a selected line\n"
     "gives 0 even after an error.\n"},
    {"replace",
     "vkpch replace [OPTION...] PATTERN TEMPLATE [FILE...]\n"
     "\n"
     "Prints each FILE (standard input when none) with the first match of PATTERN in\n"
     "each line (every match with -g) replaced by TEMPLATE, in which $& is the match\n"
     "and $1, $2 ... its groups. Each line is one subject, whatever its length (the\n"
     "whole input with --multiline). A last line without a line feed keeps none.\n"
     "\n"
     "  -g, --global              replace every match, not the first only\n"
     "  -i, --ignore-case         ignore case\n"
     "      --multiline           the whole input is one subject; ^ and $ match at\n"
     "                            line feeds\n"
     "      --dotall              . matches a line feed too\n"
     "      --extended            white space and # comments in PATTERN are ignored\n"
     "      --in-place[=SUFFIX]   edit the files: the result goes to a temporary file\n"
     "                            beside each, renamed over it once complete (the\n"
     "                            original kept as FILE SUFFIX when given)\n"
     "      --help                print this help\n"
     "\n"
     "Exit status: 0 when something was replaced, 1 when nothing was, 2 on an error.\n"},
    {"convert",
     "vkpch convert [-f FROM] [-t TO] [-o OUTPUT] [--strict] [FILE...]\n"
     "\n"
     "Converts FILE (standard input when none) between UTF-8, UTF-16LE, UTF-16BE and\n"
     "UTF-16 and writes the result to standard output or OUTPUT. Encoding names are\n"
     "taken in any case, with or without the dash: UTF-8, UTF8, UTF-16LE, UTF-16BE,\n"
     "UTF-16 (read: a byte-order mark decides, else little-endian; written: a mark,\n"
     "then little-endian). Ill-formed input is converted by the library's lenient\n"
     "rules unless --strict is given.\n"
     "\n"
     "  -f, --from-code=NAME      the input encoding (default UTF-8)\n"
     "  -t, --to-code=NAME        the output encoding (default UTF-8)\n"
     "  -o, --output=FILE         write to FILE\n"
     "      --strict              stop at the first ill-formed sequence, report its\n"
     "                            byte offset and exit 1\n"
     "  -l, --list                list the encoding names\n"
     "      --help                print this help\n"
     "\n"
     "Exit status: 0 on success, 1 for ill-formed input with --strict, 2 on an error.\n"},
    {"find",
     "vkpch find [--rev] NEEDLE [FILE...]\n"
     "\n"
     "Prints the byte offset of every occurrence of NEEDLE (overlapping ones too),\n"
     "first to last or, with --rev, last to first; with several files each offset\n"
     "is prefixed by FILE:. Exit status: 0 found, 1 not found, 2 error.\n"},
    {"compile",
     "vkpch compile [-o OPTIONS] PATTERN\n"
     "\n"
     "Compiles PATTERN with the option letters OPTIONS (i m s x g) and prints the\n"
     "compiled block's header and program, or what is wrong with the pattern and\n"
     "where. Exit status: 0 compiled, 2 error.\n"},
    {"version",
     "vkpch version\n"
     "\n"
     "Prints the library's version and the processor variant in use.\n"},
};
const int kCommandCount = int(sizeof(kCommands) / sizeof(kCommands[0]));

void PrintOverview(std::FILE* to) {
    std::fputs("vkpch: the command-line face of the vkpch string library.\n\nUsage:\n", to);
    for (const CommandHelp& c : kCommands) {
        const char* nl = std::strchr(c.text, '\n');
        std::fprintf(to, "  %.*s\n", int(nl - c.text), c.text);
    }
    std::fputs("\n'vkpch COMMAND --help' describes a command.\n", to);
}

bool PrintCommandHelp(const char* name, std::FILE* to) {
    for (const CommandHelp& c : kCommands)
        if (std::strcmp(c.name, name) == 0) {
            std::fprintf(to, "Usage: %s", c.text);
            return true;
        }
    return false;
}

namespace {

// A line as roff text: backslashes doubled, a leading dot or quote guarded.
void RoffLine(std::FILE* to, const char* p, size_t n) {
    if (n && (*p == '.' || *p == '\'')) std::fputs("\\&", to);
    for (size_t i = 0; i < n; ++i) {
        if (p[i] == '\\') std::fputs("\\e", to);
        else if (p[i] == '-') std::fputs("\\-", to);
        else std::fputc(p[i], to);
    }
    std::fputc('\n', to);
}

}  // namespace

void PrintManual(std::FILE* to) {
    std::fputs(".TH VKPCH 1 \"\" \"vkpch " , to);
    std::fputs(vkpchGetLibVersion()->version, to);
    std::fputs("\" \"User Commands\"\n.SH NAME\nvkpch \\- grep, replace and convert with the vkpch string library\n"
               ".SH SYNOPSIS\n.nf\n", to);
    for (const CommandHelp& c : kCommands) {
        const char* nl = std::strchr(c.text, '\n');
        RoffLine(to, c.text, size_t(nl - c.text));
    }
    std::fputs(".fi\n.SH COMMANDS\n", to);
    for (const CommandHelp& c : kCommands) {
        std::fprintf(to, ".SS %s\n.nf\n", c.name);
        for (const char* p = c.text; *p;) {
            const char* nl = std::strchr(p, '\n');
            RoffLine(to, p, size_t(nl - p));
            p = nl + 1;
        }
        std::fputs(".fi\n", to);
    }
}
