#pragma once

#include "platform/system/WebStorage.h"

namespace sweepwright::platform {

class ObjectiveCBridge;

/// The web storage behind the Objective-C run time.
class ObjectiveCWebStorage final : public WebStorage {
  public:
    /// `bridge` may be null (no run time, hence no storage) and must outlive this.
    explicit ObjectiveCWebStorage(const ObjectiveCBridge* bridge) : bridge_(bridge) {}

    Result<> removeAllCachedResponses() override;
    Result<> deleteAllCookies() override;

  private:
    const ObjectiveCBridge* bridge_;
};

}  // namespace sweepwright::platform
