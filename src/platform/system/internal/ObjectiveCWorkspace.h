#pragma once

#include <string>

#include "platform/system/ApplicationWorkspace.h"

namespace sweepwright::platform {

class ObjectiveCBridge;

/// The workspace service behind the Objective-C run time. Its instance is looked up anew by every
/// operation, so the service may come and go.
class ObjectiveCWorkspace final : public ApplicationWorkspace {
  public:
    /// `bridge` may be null (no run time: ClassMissing) and must outlive this and every proxy.
    explicit ObjectiveCWorkspace(const ObjectiveCBridge* bridge,
                                 std::string className = "LSApplicationWorkspace");

    Availability availability() override;
    Result<std::optional<Applications>> allInstalledApplications() override;
    Result<std::optional<Applications>> allApplications() override;

  private:
    Result<std::optional<Applications>> list(const char* selector);

    const ObjectiveCBridge* bridge_;
    std::string className_;
};

}  // namespace sweepwright::platform
