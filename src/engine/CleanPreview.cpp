#include "engine/CleanPreview.h"

#include "engine/PreviewRun.h"

namespace sweepwright {

namespace {

template <class Clean>
platform::Result<CleanPreview> preview(const EngineServices& services, CleanObserver* observer,
                                       const Clean& clean) {
    const auto make = [&services](platform::FileManager& files, Eraser& eraser) {
        return FileCleanerEngine({services.device, files, eraser, services.pathWhitelist,
                                  services.customPaths, services.history, services.statistics,
                                  services.storage, services.notifications, services.mainQueue,
                                  services.now});
    };
    return runPreview(services.files, observer, make, clean);
}

}  // namespace

platform::Result<CleanPreview> previewClean(const EngineServices& services, CleanType type,
                                            CleanObserver* observer) {
    return preview(services, observer,
                   [type](FileCleanerEngine& engine, FileCleanerEngine::ErrorSlot& error) {
                       return engine.cleanNow(type, {}, error);
                   });
}

platform::Result<CleanPreview> previewDeepClean(const EngineServices& services,
                                                CleanObserver* observer) {
    return preview(services, observer,
                   [](FileCleanerEngine& engine, FileCleanerEngine::ErrorSlot& error) {
                       return engine.deepCleanNow(error);
                   });
}

}  // namespace sweepwright
