#include "platform/base/Error.h"

#include <system_error>

namespace sweepwright::platform {

Error errorFromErrno(int number, std::string_view path) {
    return {std::string(kPosixErrorDomain), number,
            std::string(path) + ": " + std::generic_category().message(number)};
}

Error formatError(std::string_view path, std::string_view why) {
    std::string description(path);
    if (!description.empty()) description += ": ";
    description += why;
    return {std::string(kFormatErrorDomain), 1, std::move(description)};
}

}  // namespace sweepwright::platform
