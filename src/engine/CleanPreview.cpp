#include "engine/CleanPreview.h"

#include <functional>

#include "engine/HidingFileManager.h"
#include "engine/NotingEraser.h"

namespace sweepwright {

namespace {

platform::Result<CleanPreview> preview(
    const EngineServices& services,
    const std::function<std::uint64_t(FileCleanerEngine&, FileCleanerEngine::ErrorSlot&)>& clean) {
    HidingFileManager files(services.files);
    NotingEraser eraser(files);
    EngineServices watched{services.device,
                           files,
                           eraser,
                           services.pathWhitelist,
                           services.customPaths,
                           services.history,
                           services.statistics,
                           services.storage,
                           services.notifications,
                           services.mainQueue,
                           services.now};
    FileCleanerEngine engine(watched);
    engine.setObserver(&eraser);
    if (const auto ready = engine.readiness(); !ready) return std::unexpected(ready.error());
    FileCleanerEngine::ErrorSlot error;
    const std::uint64_t wouldFree = clean(engine, error);
    if (error) return std::unexpected(*error);
    return eraser.take(wouldFree);
}

}  // namespace

platform::Result<CleanPreview> previewClean(const EngineServices& services, CleanType type) {
    return preview(services,
                   [type](FileCleanerEngine& engine, FileCleanerEngine::ErrorSlot& error) {
                       return engine.cleanNow(type, {}, error);
                   });
}

platform::Result<CleanPreview> previewDeepClean(const EngineServices& services) {
    return preview(services, [](FileCleanerEngine& engine, FileCleanerEngine::ErrorSlot& error) {
        return engine.deepCleanNow(error);
    });
}

}  // namespace sweepwright
