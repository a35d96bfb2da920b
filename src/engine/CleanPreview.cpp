#include "engine/CleanPreview.h"

#include "engine/PreviewRun.h"

namespace sweepwright {

namespace {

template <class Clean>
platform::Result<CleanPreview> preview(const EngineServices& services, const Clean& clean) {
    const auto make = [&services](platform::FileManager& files, Eraser& eraser) {
        return FileCleanerEngine(services.over(files, eraser));
    };
    return runPreview(services.files, make, clean);
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
