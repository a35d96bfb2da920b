// This program holds no Objective-C run time, as on a plain Linux.
#include <gtest/gtest.h>

#include "platform/system/ApplicationWorkspace.h"
#include "platform/system/WebStorage.h"
#include "platform/system/internal/ObjectiveCBridge.h"

namespace sweepwright::platform {
namespace {

TEST(ObjectiveCAbsent, ThereIsNoBridge) {
    EXPECT_EQ(ObjectiveCBridge::shared(), nullptr);
}

TEST(ObjectiveCAbsent, TheWorkspaceServiceIsMissing) {
    ApplicationWorkspace& workspace = ApplicationWorkspace::ofHost();
    EXPECT_EQ(workspace.availability(), ApplicationWorkspace::Availability::ClassMissing);
    EXPECT_FALSE(workspace.allInstalledApplications().value().has_value());
    EXPECT_FALSE(workspace.allApplications().value().has_value());
}

TEST(ObjectiveCAbsent, WebStorageHasNothingToDo) {
    EXPECT_TRUE(WebStorage::ofHost().removeAllCachedResponses().has_value());
    EXPECT_TRUE(WebStorage::ofHost().deleteAllCookies().has_value());
}

}  // namespace
}  // namespace sweepwright::platform
