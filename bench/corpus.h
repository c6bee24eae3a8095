// Benchmark inputs: English text built from the bundled sample by a seeded
// shuffle of its words, and needles that do not occur in it.
#pragma once

#include <string>
#include <vector>

namespace vkpbench {

// At least `bytes` bytes of English words in a seeded random order.
std::string EnglishText(size_t bytes);

// A needle of `len` bytes taken from the text with its last byte changed so
// that it does not occur: the search scans the whole text, and its first
// and last bytes are as common as the text's letters.
std::string AbsentNeedle(const std::string& text, size_t len, unsigned seed);

// At least `bytes` bytes of that English text with a token (an e-mail
// address, a URI, an IPv4 address, a date or a Greek phrase) after about one
// word in forty, and a line feed after about one word in twelve.
std::string MixedText(size_t bytes);

// The first `bytes` bytes of the package change logs of this system
// (/usr/share/doc/*/changelog.Debian.gz, decompressed in sorted file order),
// invalid UTF-8 replaced by '?' byte for byte; empty when there are fewer.
std::string ChangelogText(size_t bytes);

// The n commonest words of the text, a word being a maximal run of at least
// minLength ASCII letters: by count, then in byte order among equal counts.
std::vector<std::string> CommonWords(const std::string& text, size_t n, size_t minLength);

}  // namespace vkpbench
