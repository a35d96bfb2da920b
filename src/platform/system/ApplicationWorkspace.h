#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/base/Error.h"

namespace sweepwright::platform {

/// One installed application, as the system's workspace service describes it.
///
/// Every call may fail with an exception of the service; the error's description is then the
/// exception's reason. "None" is what the service does not tell: it has no such property or no
/// value for it. Paths are device paths.
class ApplicationProxy {
  public:
    /// One picture of an icon: the service's key for its size, and the file's bytes.
    struct SizedIcon {
        std::string size;
        std::string data;  ///< empty when there is none
    };

    virtual ~ApplicationProxy() = default;

    virtual Result<std::optional<std::string>> applicationIdentifier() = 0;
    virtual Result<std::optional<std::string>> localizedName() = 0;
    /// Of the ".app" directory.
    virtual Result<std::optional<std::string>> bundlePath() = 0;
    virtual Result<std::optional<std::string>> dataContainerPath() = 0;
    /// The bytes of an image file.
    virtual Result<std::optional<std::string>> iconDataForVariant(std::int32_t variant) = 0;
    /// All pictures, the greatest key first in the platform's own order of keys.
    virtual Result<std::vector<SizedIcon>> iconsOfAllSizes() = 0;
};

/// The system's service that knows the installed applications. Thread-safe.
class ApplicationWorkspace {
  public:
    enum class Availability {
        Available,
        ClassMissing,     ///< this system has no such service
        InstanceMissing,  ///< it has, but does not hand it out
    };
    using Applications = std::vector<std::unique_ptr<ApplicationProxy>>;

    virtual ~ApplicationWorkspace() = default;

    /// The service of this system, made on first use; ClassMissing where it has none.
    static ApplicationWorkspace& ofHost();

    virtual Availability availability() = 0;

    /// The installed applications: none when the service is not available or has no such operation,
    /// an error when the operation raised an exception.
    virtual Result<std::optional<Applications>> allInstalledApplications() = 0;
    /// The same by the service's older operation.
    virtual Result<std::optional<Applications>> allApplications() = 0;
};

}  // namespace sweepwright::platform
