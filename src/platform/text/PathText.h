#pragma once

#include <string>
#include <string_view>

namespace sweepwright::platform {

/// Joins a directory's path and an entry's name with exactly one "/".
std::string joinPath(std::string_view directory, std::string_view name);
/// Whether `name` can be that of an entry: not empty, "." or "..", without "/" and zero bytes.
bool isEntryName(std::string_view name);
/// The last component of a path, trailing "/" aside.
std::string_view lastPathComponent(std::string_view path);
/// What follows the last "." of the last component; empty when there is none, when the "." is the
/// first character (a hidden file) or the last.
std::string_view pathExtension(std::string_view path);
/// The name with A to Z as a to z; other bytes as they are.
std::string lowerCased(std::string_view text);

}  // namespace sweepwright::platform
