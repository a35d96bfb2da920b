#include "platform/tree/Unreadable.h"

namespace sweepwright::platform {

namespace {

bool isNothingToRead(const Error& error) {
    return error.isNotFound() || error.isNotDirectory() || error.isLinkLoop() ||
           error.isMountPoint();
}

std::string folderAbove(const std::string& path) {
    const std::size_t slash = path.find_last_of('/');
    return slash == std::string::npos || slash == 0 ? "/" : path.substr(0, slash);
}

}  // namespace

void tellUnreadable(FileManager& files, const std::string& path, const Error& error,
                    const UnreadableHandler& handler) {
    if (!handler || isNothingToRead(error)) return;
    std::string folder = path;
    while (folder.size() > 1 && folder.ends_with('/'))
        folder.pop_back();
    while (folder != "/" && !files.attributes(folder, LastLink::Refuse))
        folder = folderAbove(folder);
    const bool posix = error.domain == kPosixErrorDomain;
    handler(folder, posix ? errorFromErrno(static_cast<int>(error.code), folder) : error);
}

}  // namespace sweepwright::platform
