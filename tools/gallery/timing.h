// How long a call takes.
#pragma once

#include <algorithm>
#include <chrono>
#include <limits>
#include <string>

#include "failure.h"

namespace tools {

/// The milliseconds that a piece of work takes.
template <class Work> double millisecondsOf(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// Calls a function of the library a few times, each after the untimed setup, and returns the milliseconds of the
/// fastest one. The call must give the same result each time. A status below 0 is a Failure that names the function.
template <class Setup, class Call> double fastestCall(const std::string& function, Setup setup, Call call) {
    constexpr int mostCalls = 20;
    constexpr double enough = 20;
    double fastest = std::numeric_limits<double>::infinity();
    double total = 0;
    for (int i = 0; i < mostCalls && total < enough; ++i) {
        setup();
        LumStatus status = lumStatusOk;
        const double milliseconds = millisecondsOf([&] { status = call(); });
        expectOk(status, function);
        fastest = std::min(fastest, milliseconds);
        total += milliseconds;
    }
    return fastest;
}

} // namespace tools
