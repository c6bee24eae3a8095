// Whole-buffer search for vkpch grep: one search runs over many lines and
// the lines around its matches are found afterwards, where that gives the
// lines (and -o matches) that searching each line as a subject of its own
// gives.
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "vkpch.h"

// Whether the compiled pattern means the same on a run of lines as on each
// line alone: nothing in it can match a line feed, and it has no anchor but
// \b, \B and the implicit line-start anchor, and no look-behind.
bool SearchableAcrossLines(const vkpRegExpState* state);

struct BufferSearch {
    vkpRegExpState* state;  // global (-o: every match) or single (matching lines)
    int perMatch;           // records per match of a global search
    // Called per matching line (single) or per non-empty match (global) with
    // the text, its length and the line's number.
    std::function<void(const unsigned char*, int, int64_t)> emit;
};

// Searches data (which ends with a line feed) from its start. Returns the
// offset of the line from which the caller must search line by line (the
// size of data when all is done: a search whose budget ran out leaves the
// rest to the line-by-line search, which reports it); *lineNo is the number
// of lines before that offset and *matching the matching lines found.
size_t SearchBuffer(const std::vector<unsigned char>& data, const BufferSearch& search, int64_t* lineNo,
                    int64_t* matching);
