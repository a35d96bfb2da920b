#include "apps/AppCleanPreview.h"

#include "engine/PreviewRun.h"

namespace sweepwright {

platform::Result<CleanPreview> previewAppsClean(const AppServices& services,
                                                const std::vector<std::string>& identifiers,
                                                CleanObserver* observer) {
    using Error = ThirdPartyAppCacheManager::Error;
    const auto make = [&services](platform::FileManager& files, Eraser& eraser) {
        return ThirdPartyAppCacheManager(
            {services.device, files, eraser, services.workspace, services.resources,
             services.appWhitelist, services.pathWhitelist, services.history, services.statistics,
             services.notifications, services.mainQueue});
    };
    return runPreview(
        services.files, observer, make,
        [&identifiers](ThirdPartyAppCacheManager& manager, std::optional<Error>& error) {
            std::uint64_t total = 0;
            for (const std::string& identifier : identifiers) {
                std::optional<Error> ofThisApp;
                total += manager.cleanNow(identifier, {}, ofThisApp);
                if (identifiers.size() == 1) error = ofThisApp;
            }
            return total;
        });
}

}  // namespace sweepwright
