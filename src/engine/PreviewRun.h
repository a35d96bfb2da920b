#pragma once

#include <cstdint>
#include <optional>

#include "engine/CleanObserver.h"
#include "engine/Eraser.h"
#include "engine/HidingFileManager.h"
#include "engine/NotingEraser.h"
#include "platform/base/Error.h"
#include "platform/files/FileManager.h"

namespace sweepwright {

/// Runs a clean on `target` with removal switched off in one place: what would go is noted and from
/// then on hidden from the run, so that nothing counts that would be gone already.
///
/// `make(files, eraser)` returns the worker that cleans, made for these instead of its own;
/// `clean(worker, error)` runs it and returns the bytes it came to. Fails as the clean would when a
/// protection list can't be read. `observer`, if any, hears of what can't be read. Synchronous.
template <class Make, class Clean>
platform::Result<CleanPreview> runPreview(platform::FileManager& target, CleanObserver* observer,
                                          const Make& make, const Clean& clean) {
    HidingFileManager files(target);
    NotingEraser eraser(files, observer);
    auto worker = make(static_cast<platform::FileManager&>(files), static_cast<Eraser&>(eraser));
    worker.setObserver(&eraser);
    if (const auto ready = worker.readiness(); !ready) return std::unexpected(ready.error());
    std::optional<platform::Error> error;
    const std::uint64_t wouldFree = clean(worker, error);
    if (error) return std::unexpected(*error);
    return eraser.take(wouldFree);
}

}  // namespace sweepwright
