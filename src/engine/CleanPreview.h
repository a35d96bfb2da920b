#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "engine/CleanObserver.h"
#include "engine/FileCleanerEngine.h"

namespace sweepwright {

/// Runs the very same clean over `services` with removal switched off in one place: what would go
/// is noted and from then on hidden from the run, so that nothing counts that would be gone
/// already. Nothing is removed, recorded or announced. Synchronous. Fails as the clean would when a
/// protection list can't be read. `observer` hears of the folders that can't be read, about which
/// nothing can be foretold.
platform::Result<CleanPreview> previewClean(const EngineServices& services, CleanType type,
                                            CleanObserver* observer = nullptr);
/// The same for a deep clean.
platform::Result<CleanPreview> previewDeepClean(const EngineServices& services,
                                                CleanObserver* observer = nullptr);

}  // namespace sweepwright
