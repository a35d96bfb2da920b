#include <gtest/gtest.h>

#include "platform/files/EntryNames.h"
#include "support/TemporaryDevice.h"

namespace sweepwright::platform {
namespace {

TEST(EntryNames, ComeOutAsTheyWentInHoweverManyAndLong) {
    EntryNames names;
    const auto nameOf = [](std::size_t i) {
        return std::string(1 + i % 255, 'n') + std::to_string(i);
    };
    constexpr std::size_t kCount = 5'000;
    for (std::size_t i = 0; i < kCount; ++i)
        names.add(nameOf(i));
    ASSERT_EQ(names.size(), kCount);
    for (std::size_t i = 0; i < kCount; ++i)
        ASSERT_EQ(names.take(), nameOf(i));
    EXPECT_EQ(names.size(), 0U);
    names.add("again");
    EXPECT_EQ(names.take(), "again");
}

TEST(EntryNames, AreThoseOfADirectory) {
    test::TemporaryDevice device;
    device.file("/t/one", 1);
    auto directory = device.files().openDirectory("/t", LastLink::Refuse);
    auto names = namesOf(device.files(), *directory);
    ASSERT_TRUE(names.has_value());
    ASSERT_EQ(names->size(), 1U);
    EXPECT_EQ(names->take(), "one");
}

}  // namespace
}  // namespace sweepwright::platform
