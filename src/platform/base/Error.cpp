#include "platform/base/Error.h"

#include <algorithm>
#include <cerrno>
#include <initializer_list>
#include <system_error>

namespace sweepwright::platform {

namespace {

bool isErrno(const Error& error, std::initializer_list<int> numbers) {
    return error.domain == kPosixErrorDomain &&
           std::ranges::any_of(numbers, [&](int number) { return error.code == number; });
}

}  // namespace

bool Error::isNotFound() const {
    return isErrno(*this, {ENOENT});
}

bool Error::isNotDirectory() const {
    return isErrno(*this, {ENOTDIR});
}

bool Error::isLinkLoop() const {
    return isErrno(*this, {ELOOP});
}

bool Error::isPermissionDenied() const {
    return isErrno(*this, {EACCES});
}

bool Error::isNameTooLong() const {
    return isErrno(*this, {ENAMETOOLONG});
}

bool Error::isNameRefused() const {
    return isErrno(*this, {EILSEQ, EINVAL});
}

bool Error::isMountPoint() const {
    return isErrno(*this, {EXDEV});
}

bool Error::isLocked() const {
    return isErrno(*this, {EWOULDBLOCK});
}

bool Error::isBrokenPipe() const {
    return isErrno(*this, {EPIPE});
}

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
