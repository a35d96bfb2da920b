#include "engine/CleanObserver.h"

namespace sweepwright {

std::string_view keptReasonName(KeptReason reason) {
    switch (reason) {
        case KeptReason::Protected:
            return "protected";
        case KeptReason::Hidden:
            return "hidden";
        case KeptReason::Link:
            return "link";
        case KeptReason::Database:
            return "database";
        case KeptReason::RecentSideFile:
            return "recent side file";
        case KeptReason::Maps:
            return "Maps";
        case KeptReason::OwnFolder:
            return "own folder";
        case KeptReason::MountPoint:
            return "mount point";
        case KeptReason::Failed:
            return "failed";
    }
    return "";
}

platform::UnreadableHandler unreadableTo(CleanObserver* observer) {
    if (observer == nullptr) return {};
    return [observer](const std::string& folder, const platform::Error& error) {
        observer->unreadable(folder, error);
    };
}

}  // namespace sweepwright
