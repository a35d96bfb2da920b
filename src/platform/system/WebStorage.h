#pragma once

#include "platform/base/Error.h"

namespace sweepwright::platform {

/// What the system's web loading keeps for this program: cached responses and cookies. Where the
/// system has no such storage every operation does nothing and succeeds. An error is an exception
/// of the storage; what was deleted before it stays deleted. Thread-safe.
class WebStorage {
  public:
    virtual ~WebStorage() = default;

    /// The storage of this system, made on first use.
    static WebStorage& ofHost();

    /// Empties the shared cache of responses.
    virtual Result<> removeAllCachedResponses() = 0;
    /// Deletes every cookie of the shared cookie storage.
    virtual Result<> deleteAllCookies() = 0;
};

}  // namespace sweepwright::platform
