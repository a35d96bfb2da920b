#include <gtest/gtest.h>

#include "engine/KeepRule.h"

namespace sweepwright {
namespace {

/// An entry for which every reason holds that has one.
class EverythingHolds final : public EntryInQuestion {
  public:
    EverythingHolds() : EntryInQuestion(".Sweepwright.db", "/com.apple.Maps/.Sweepwright.db") {}
    [[nodiscard]] bool isProtected() const override { return true; }
    [[nodiscard]] bool isLink() const override { return true; }
};

class NothingHolds final : public EntryInQuestion {
  public:
    NothingHolds() : EntryInQuestion("name", "/folder/name") {}
    [[nodiscard]] bool isProtected() const override { return false; }
};

TEST(KeepRule, AnEntryStaysForTheFirstReasonAskedThatHolds) {
    constexpr std::array kAll{KeptReason::Maps,     KeptReason::Link,      KeptReason::Protected,
                              KeptReason::Database, KeptReason::OwnFolder, KeptReason::Hidden};
    for (std::size_t first = 0; first < kAll.size(); ++first) {
        const auto asked = std::span(kAll).subspan(first);
        EXPECT_EQ(reasonToKeep(EverythingHolds(), asked), kAll.at(first));
    }
    EXPECT_EQ(reasonToKeep(NothingHolds(), kAll), std::nullopt);
    EXPECT_EQ(reasonToKeep(EverythingHolds(), {}), std::nullopt);
}

TEST(KeepRule, WhatIsFoundOutWhileRemovingIsNoAnswer) {
    constexpr std::array kFound{KeptReason::Failed, KeptReason::MountPoint,
                                KeptReason::RecentSideFile};
    EXPECT_EQ(reasonToKeep(EverythingHolds(), kFound), std::nullopt);
}

}  // namespace
}  // namespace sweepwright
