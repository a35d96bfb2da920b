#pragma once

#include <expected>
#include <string_view>

#include "platform/base/Error.h"

namespace sweepwright::platform {

/// errorFromErrno as the outcome of an operation.
inline std::unexpected<Error> failed(int number, std::string_view path) {
    return std::unexpected(errorFromErrno(number, path));
}

/// formatError, about content without a path, as the outcome of an operation.
inline std::unexpected<Error> refuse(std::string_view why) {
    return std::unexpected(formatError({}, why));
}

}  // namespace sweepwright::platform
