#include "platform/text/PathText.h"

#include <algorithm>
#include <cstddef>

namespace sweepwright::platform {

std::string joinPath(std::string_view directory, std::string_view name) {
    while (directory.ends_with('/'))
        directory.remove_suffix(1);
    std::string joined;
    joined.reserve(directory.size() + 1 + name.size());
    joined.append(directory).append("/").append(name);
    return joined;
}

bool isEntryName(std::string_view name) {
    return !name.empty() && name != "." && name != ".." &&
           name.find('/') == std::string_view::npos && name.find('\0') == std::string_view::npos;
}

std::string_view lastPathComponent(std::string_view path) {
    while (path.size() > 1 && path.ends_with('/'))
        path.remove_suffix(1);
    const std::size_t slash = path.rfind('/');
    return slash == std::string_view::npos || path.size() == 1 ? path : path.substr(slash + 1);
}

std::string_view pathExtension(std::string_view path) {
    const std::string_view name = lastPathComponent(path);
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return {};
    return name.substr(dot + 1);
}

std::string lowerCased(std::string_view text) {
    std::string lower(text);
    std::ranges::transform(lower, lower.begin(), [](char c) {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    });
    return lower;
}

}  // namespace sweepwright::platform
