#include <cerrno>

#include <gtest/gtest.h>

#include "platform/base/Error.h"

namespace sweepwright::platform {

TEST(Error, FromErrnoNamesThePathAndTheReason) {
    const Error error = errorFromErrno(ENOENT, "/var/x");
    EXPECT_EQ(error.domain, "POSIX");
    EXPECT_EQ(error.code, ENOENT);
    EXPECT_EQ(error.description, "/var/x: No such file or directory");
}

}  // namespace sweepwright::platform
