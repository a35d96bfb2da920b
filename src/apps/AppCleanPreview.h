#pragma once

#include <string>
#include <vector>

#include "apps/ThirdPartyAppCacheManager.h"
#include "engine/CleanObserver.h"

namespace sweepwright {

/// What cleaning these apps, one after the other, would remove. Runs the very same clean over
/// `services` with nothing removed, recorded or announced; an app that could not be cleaned is
/// passed over as in a batch, and is the error if it is the only one. Fails as the clean would when
/// a protection list can't be read. `observer` hears of the folders that can't be read.
/// Synchronous.
platform::Result<CleanPreview> previewAppsClean(const AppServices& services,
                                                const std::vector<std::string>& identifiers,
                                                CleanObserver* observer = nullptr);

}  // namespace sweepwright
