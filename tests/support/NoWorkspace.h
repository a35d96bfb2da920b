#pragma once

#include <optional>

#include "platform/system/ApplicationWorkspace.h"

namespace sweepwright::test {

/// Of a device without the system's list of its apps: they are found by their containers.
class NoWorkspace final : public platform::ApplicationWorkspace {
  public:
    Availability availability() override { return Availability::ClassMissing; }
    platform::Result<std::optional<Applications>> allInstalledApplications() override {
        return std::nullopt;
    }
    platform::Result<std::optional<Applications>> allApplications() override {
        return std::nullopt;
    }
};

inline NoWorkspace noWorkspace;

}  // namespace sweepwright::test
