#pragma once

#include <cstdio>
#include <cstdlib>

namespace sweepwright::fuzz {

/// Ends the program with `broken` when `holds` is false: how a target tells that a promise of the
/// product does not hold for the bytes at hand.
inline void require(bool holds, const char* broken) {
    if (holds) return;
    std::fprintf(stderr, "broken promise: %s\n", broken);
    std::abort();
}

}  // namespace sweepwright::fuzz
