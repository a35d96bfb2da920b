#pragma once

#include <cstdint>
#include <expected>
#include <string>
#include <string_view>

namespace sweepwright::platform {

/// Domain of errors that come from the host's system calls; their code is the errno value.
inline constexpr std::string_view kPosixErrorDomain = "POSIX";

/// Domain of errors about the content of a file: damaged, hostile or of an unexpected shape.
inline constexpr std::string_view kFormatErrorDomain = "Format";

/// Why something could not be done: who says so, its number there, and one line for a person.
struct Error {
    std::string domain;
    std::int64_t code = 0;
    std::string description;

    bool operator==(const Error&) const = default;

    // What a system call said, by errno values; no for errors of another domain.
    [[nodiscard]] bool isNotFound() const;          ///< ENOENT
    [[nodiscard]] bool isNotDirectory() const;      ///< ENOTDIR
    [[nodiscard]] bool isLinkLoop() const;          ///< ELOOP: too many links, or one not followed
    [[nodiscard]] bool isPermissionDenied() const;  ///< EACCES
    [[nodiscard]] bool isNameTooLong() const;       ///< ENAMETOOLONG
    [[nodiscard]] bool isNameRefused() const;       ///< EILSEQ, EINVAL
    [[nodiscard]] bool isMountPoint() const;        ///< EXDEV: it is on another mount
    [[nodiscard]] bool isLocked() const;            ///< EWOULDBLOCK: another holds the lock
    [[nodiscard]] bool isBrokenPipe() const;        ///< EPIPE: nobody reads any more
};

/// The outcome of what can fail. Nothing throws across a class's boundary.
template <class T = void>
using Result = std::expected<T, Error>;

/// The error for errno value `number` met while doing something to `path`; its description reads
/// "<path>: <the system's text>".
Error errorFromErrno(int number, std::string_view path);

/// An error about the content of `path` (which may be empty): "<path>: <why>".
Error formatError(std::string_view path, std::string_view why);

}  // namespace sweepwright::platform
