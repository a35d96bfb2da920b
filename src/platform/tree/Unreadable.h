#pragma once

#include <functional>
#include <string>

#include "platform/files/FileManager.h"

namespace sweepwright::platform {

/// Hears of a folder that could not be read, and why. It may be called from several threads at
/// once, and of one folder more than once.
using UnreadableHandler = std::function<void(const std::string& folder, const Error& error)>;

/// Tells `handler`, if there is one, that what lies at `path` could not be read because of `error`.
/// It hears of the folder that withholds it: `path` itself or, when that does not even tell its
/// attributes, the nearest one above that does. It hears nothing when there is nothing to read:
/// something absent, a link, a mount point that was refused, a file in a folder's place.
void tellUnreadable(FileManager& files, const std::string& path, const Error& error,
                    const UnreadableHandler& handler);

}  // namespace sweepwright::platform
