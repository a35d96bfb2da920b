#pragma once

#include <expected>
#include <string>
#include <utility>

#include "platform/base/Error.h"

namespace sweepwright::cli {

/// Exit statuses of the program.
enum Status : int {
    kDone = 0,
    kOperationFailed = 1,
    kWrongWords = 2,
    kDeviceUnusable = 3,
    kLeftSomething = 4,
    kSignalBase = 128,  ///< plus the signal's number
};

/// Why a command did not do what it was asked.
struct Failure {
    int status = kOperationFailed;
    platform::Error error;
    bool documented = false;  ///< the document on standard output tells of it in its own form
};

/// What a command ends with.
using Outcome = std::expected<void, Failure>;

/// The words of the call are wrong.
inline std::unexpected<Failure> wrongWords(std::string description) {
    return std::unexpected(
        Failure{kWrongWords, {"CommandLine", kWrongWords, std::move(description)}, false});
}

/// The clean is done, but something that was to go could not be read or removed; the failures of
/// the command tell what.
inline std::unexpected<Failure> leftSomething() {
    return std::unexpected(Failure{kLeftSomething, {}, true});
}

/// The operation reported an error.
inline std::unexpected<Failure> failed(platform::Error error) {
    return std::unexpected(Failure{kOperationFailed, std::move(error), false});
}

}  // namespace sweepwright::cli
