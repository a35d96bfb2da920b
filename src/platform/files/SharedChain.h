#pragma once

#include <memory>
#include <utility>

namespace sweepwright::platform {

/// For the destructor of a link in a chain of shared links: releases those above one after the
/// other. A chain of thousands that let go of each other would need more stack than a thread has.
template <class Link>
void releaseChain(std::shared_ptr<Link> above) {
    static thread_local std::shared_ptr<Link>* next = nullptr;
    if (next != nullptr) {
        *next = std::move(above);
        return;
    }
    next = &above;
    while (above)
        std::shared_ptr<Link>(std::move(above)).reset();
    next = nullptr;
}

}  // namespace sweepwright::platform
