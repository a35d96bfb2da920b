#pragma once

#include <atomic>
#include <cstddef>

#include "platform/queue/Crew.h"

namespace sweepwright::platform {

/// Calls `body(i)` once for every i below `count`, on up to `threads` threads of which the caller's
/// is one and the others are the crew's, as many as that has where the device is far; returns when
/// all are done. `body` may not throw.
template <class Body>
void parallelFor(Crew& crew, std::size_t count, unsigned threads, const Body& body) {
    std::atomic<std::size_t> next{0};
    const auto work = [&](const auto& afterEach) {
        const Pace pace(crew);
        for (std::size_t i = next++; i < count; i = next++) {
            body(i);
            afterEach();
        }
    };
    Helpers helpers(crew);
    const auto getHelp = [&] {
        while (helpers.count() + 1 < crew.threadsFor(threads) && next < count &&
               helpers.add([&work]() noexcept { work([] {}); })) {
        }
    };
    getHelp();
    work(getHelp);
    helpers.wait();
}

}  // namespace sweepwright::platform
