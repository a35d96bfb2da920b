#include <array>
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

TEST(Error, IsKnownByItsErrnoValueAndItsDomain) {
    struct Known {
        int number;
        bool (Error::*says)() const;
    };
    constexpr std::array kKnown = {
        Known{ENOENT, &Error::isNotFound},          Known{ENOTDIR, &Error::isNotDirectory},
        Known{ELOOP, &Error::isLinkLoop},           Known{EACCES, &Error::isPermissionDenied},
        Known{ENAMETOOLONG, &Error::isNameTooLong}, Known{EILSEQ, &Error::isNameRefused},
        Known{EINVAL, &Error::isNameRefused},       Known{EXDEV, &Error::isMountPoint},
        Known{EWOULDBLOCK, &Error::isLocked},       Known{EPIPE, &Error::isBrokenPipe},
    };
    for (const Known& known : kKnown) {
        EXPECT_TRUE((errorFromErrno(known.number, "/x").*known.says)()) << known.number;
        EXPECT_FALSE((errorFromErrno(EIO, "/x").*known.says)()) << known.number;
        EXPECT_FALSE((Error{"Format", known.number, ""}.*known.says)()) << known.number;
        for (const Known& other : kKnown) {
            EXPECT_EQ((errorFromErrno(other.number, "/x").*known.says)(), other.says == known.says)
                << other.number << " and " << known.number;
        }
    }
}

}  // namespace sweepwright::platform
