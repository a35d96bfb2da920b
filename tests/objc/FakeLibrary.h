#pragma once

#include <gtest/gtest.h>

#include "platform/system/internal/ObjectiveCBridge.h"

namespace sweepwright::test {

/// The library of fake classes, loaded together with GNUstep, whose files are kept in a temporary
/// folder.
class FakeLibrary {
  public:
    /// Loads it on the first call; ends the program when that fails.
    static const FakeLibrary& loaded();

    long (*liveObjects)() = nullptr;
    void (*setCookies)(int) = nullptr;
    int (*cookieCount)() = nullptr;
    void (*cacheResponse)() = nullptr;
    int (*hasCachedResponse)() = nullptr;

  private:
    FakeLibrary();
};

/// A test with the run time present.
class ObjectiveCTest : public testing::Test {
  protected:
    const FakeLibrary& library_ = FakeLibrary::loaded();
    const platform::ObjectiveCBridge* bridge_ = platform::ObjectiveCBridge::shared();
};

}  // namespace sweepwright::test
