#pragma once

#include <string>

#include <gtest/gtest.h>

#include "support/TemporaryDevice.h"

namespace sweepwright::platform {

/// The name of a test's instance.
inline std::string callsName(const ::testing::TestParamInfo<Calls>& info) {
    return info.param == Calls::Native ? "Native" : "Portable";
}

/// A device reached by each way of speaking to the kernel in turn.
class FileManagerTest : public ::testing::TestWithParam<Calls> {
  protected:
    /// A manager of the device as mounts made since this process began look to it.
    HostFileManager reopened() const {
        return HostFileManager(DeviceRoot::open(device_.root()).value(), GetParam());
    }

    test::TemporaryDevice device_{GetParam()};
    HostFileManager& files_ = device_.files();
};

/// The errno value that an outcome failed with; 0 when it did not fail.
template <class T>
int errorOf(const Result<T>& outcome) {
    return outcome ? 0 : static_cast<int>(outcome.error().code);
}

}  // namespace sweepwright::platform

// NOLINTNEXTLINE(cppcoreguidelines-macro-usage): a test framework's macro needs one
#define FOR_BOTH_CALLS(suite)                                                             \
    INSTANTIATE_TEST_SUITE_P(, suite,                                                     \
                             ::testing::Values(::sweepwright::platform::Calls::Native,    \
                                               ::sweepwright::platform::Calls::Portable), \
                             ::sweepwright::platform::callsName)
