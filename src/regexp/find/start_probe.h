// What every match holds in its first bytes, checked at a start position
// the start filter lets through before the matcher is set up there: the
// `(`, the word and the `)` of `\(\w+\)`, the first two `/name` steps of
// `(?:/[\w.-]+){2,}`. Worked out once with the rest of the analysis from the
// program's leading items that each take one ASCII byte, alone or repeated.
#pragma once

#include "floor/base.h"
#include "regexp/compile/program.h"

namespace vkp::regexp {

// One step: between `min` and `max` bytes of an ASCII set. A maximal step
// takes the whole run of members (the next step's bytes are none of them,
// so a match can end the run nowhere else); any other takes exactly `min`.
struct ProbeStep {
    unsigned long long half[2];  // bit b & 63 of half[b >> 6]: ASCII byte b is a member
    u16 min;
    u16 max;  // kProbeUnlimited: no bound
    u8 maximal;
    VKP_INLINE void Add(u8 b) { half[b >> 6] |= 1ull << (b & 63); }
};

constexpr int kProbeSteps = 8;
constexpr u16 kProbeUnlimited = 0xFFFF;
// A run longer than this is left to the matcher: the probe's work at one
// start stays bounded.
constexpr int kProbeWalk = 64;

struct StartProbe {
    u8 count;  // 0: no probe
    ProbeStep steps[kProbeSteps];
};

// The probe of a program of one alternative searched from every position;
// count 0 when it would check no more than the start filter does (it is
// kept only when it holds a maximal step).
void MakeStartProbe(const Instruction* program, int count, u32 options, StartProbe* out);

// Null when a match may begin at pos (its byte one the start filter let
// through); else the next position a match may begin at: pos + 1, or the
// end of a leading run of unbounded length (a start inside it would find
// the same run end and fail the same way).
VKP_INLINE const u8* ProbeRejects(const StartProbe& p, const u8* pos, const u8* end) {
    if (*pos >= 0x80) return nullptr;  // the next position would have to be a character start
    const u8* q = pos;
    for (int k = 0; k < p.count; ++k) {
        const ProbeStep& s = p.steps[k];
        const unsigned long long lo = s.half[0], hi = s.half[1];
        const auto has = [lo, hi](u8 b) { return b < 64 ? (lo >> b) & 1 : b < 128 && ((hi >> (b & 63)) & 1); };
        const long room = end - q;
        long n = 0;
        if (s.maximal) {
            long cap = s.max == kProbeUnlimited ? kProbeWalk : s.max + 1;
            if (cap > room) cap = room;
            while (n < cap && has(q[n])) ++n;
            if (n == kProbeWalk) return nullptr;
            if (n >= s.min && n <= s.max) {
                q += n;
                continue;
            }
        } else {
            if (room >= s.min)
                while (n < s.min && has(q[n])) ++n;
            if (n == s.min) {
                q += n;
                continue;
            }
        }
        return k == 0 && s.maximal && s.max == kProbeUnlimited && n > 1 ? pos + n : pos + 1;
    }
    return nullptr;
}

}  // namespace vkp::regexp
