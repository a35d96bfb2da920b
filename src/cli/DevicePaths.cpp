#include "cli/DevicePaths.h"

#include <algorithm>
#include <string_view>

#include <fmt/format.h>

#include "cli/Translation.h"
#include "platform/files/FileManager.h"

namespace sweepwright::cli {

namespace {

bool hasUnclearComponents(std::string_view path) {
    if (path.contains("//")) return true;
    const std::string closed = std::string(path) + "/";
    return closed.contains("/./") || closed.contains("/../");
}

/// Whether the device's "/var" is a link to "/private/var", as on every real one.
bool varLeadsToPrivate() {
    const auto var = platform::FileManager::defaultManager().resolvedPath("/var");
    return var && *var == "/private/var";
}

Outcome checkDevicePath(const std::string& path) {
    if (!path.starts_with('/')) {
        return wrongWords(told("{}: a device path begins with \"/\"", path));
    }
    if (path.find_first_not_of('/') == std::string::npos) {
        return wrongWords(told("{}: is the whole device", path));
    }
    if (hasUnclearComponents(path)) {
        return wrongWords(told("{}: write the path without \".\", \"..\" and doubled \"/\"", path));
    }
    if ((path + "/").starts_with("/private/var/") && varLeadsToPrivate()) {
        return wrongWords(told("{}: write the path as {}, the name it is protected by", path,
                               path.substr(std::string_view("/private").size())));
    }
    return {};
}

}  // namespace

Outcome checkDevicePaths(const std::vector<std::string>& paths) {
    for (const std::string& path : paths) {
        if (auto good = checkDevicePath(path); !good) return good;
    }
    return {};
}

}  // namespace sweepwright::cli
