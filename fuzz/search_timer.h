// Abandoning a search that runs too long: long subjects can still take
// seconds within the engine's step cap, far beyond a fuzz input's budget;
// a search over 250 ms of CPU time is cut off with a jump
// out of the timer signal (the library holds no heap and no locks).
//
//     if (sigsetjmp(SearchTimer::jump, 1)) return SearchTimer::Abandoned();
//     SearchTimer::Start(); ... search ... SearchTimer::Stop();
#pragma once

#include <setjmp.h>
#include <signal.h>
#include <sys/time.h>

#include <cstdio>
#include <cstdlib>

namespace SearchTimer {

inline sigjmp_buf jump;
inline volatile sig_atomic_t running = 0;
inline int abandoned = 0;

inline void Arm(bool on) {
    itimerval t{};
    t.it_value.tv_usec = on ? 250000 : 0;
    setitimer(ITIMER_VIRTUAL, &t, nullptr);
}

// Installs the handler once and reports the abandoned searches at exit.
inline void Setup(const char* name) {
    static const char* target = name;
    struct sigaction sa {};
    sa.sa_handler = [](int) {
        if (running) siglongjmp(jump, 1);
    };
    sigemptyset(&sa.sa_mask);
    sigaction(SIGVTALRM, &sa, nullptr);
    std::atexit([] { std::fprintf(stderr, "%s: %d searches abandoned after 250 ms\n", target, abandoned); });
}

inline void Start() {
    running = 1;
    Arm(true);
}
inline void Stop() {
    Arm(false);
    running = 0;
}
inline void Abandoned() {
    running = 0;
    ++abandoned;
}

}  // namespace SearchTimer
