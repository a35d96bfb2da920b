#pragma once

#include <atomic>
#include <cstddef>
#include <system_error>
#include <thread>
#include <vector>

namespace sweepwright::platform {

/// Calls `body(i)` once for every i below `count`, on up to `threads` threads of which the caller's
/// is one; returns when all are done. `body` may not throw.
template <class Body>
void parallelFor(std::size_t count, unsigned threads, const Body& body) {
    std::atomic<std::size_t> next{0};
    const auto work = [&] {
        for (std::size_t i = next++; i < count; i = next++)
            body(i);
    };
    std::vector<std::thread> helpers;
    while (helpers.size() + 1 < threads && helpers.size() + 1 < count) {
        try {
            helpers.emplace_back(work);
        } catch (const std::system_error&) {
            break;  // fewer threads do the same work
        }
    }
    work();
    for (std::thread& helper : helpers)
        helper.join();
}

}  // namespace sweepwright::platform
