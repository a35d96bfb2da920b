#include <gtest/gtest.h>

#include "objc/FakeLibrary.h"
#include "platform/system/internal/ObjectiveCWebStorage.h"

namespace sweepwright::platform {
namespace {

class ObjectiveCWebStorageTest : public test::ObjectiveCTest {};

TEST_F(ObjectiveCWebStorageTest, EveryCookieIsDeleted) {
    library_.setCookies(25);
    ASSERT_EQ(library_.cookieCount(), 25);
    EXPECT_TRUE(WebStorage::ofHost().deleteAllCookies().has_value());
    EXPECT_EQ(library_.cookieCount(), 0);
    EXPECT_TRUE(WebStorage::ofHost().deleteAllCookies().has_value()) << "with none left";
}

TEST_F(ObjectiveCWebStorageTest, EveryCachedResponseIsRemoved) {
    library_.cacheResponse();
    ASSERT_EQ(library_.hasCachedResponse(), 1);
    EXPECT_TRUE(WebStorage::ofHost().removeAllCachedResponses().has_value());
    EXPECT_EQ(library_.hasCachedResponse(), 0);
}

}  // namespace
}  // namespace sweepwright::platform
