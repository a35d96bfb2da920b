#include <gtest/gtest.h>

#include "ui/shell/LaunchOptions.h"

namespace sweepwright::ui {
namespace {

std::expected<LaunchOptions, QString> parsed(std::initializer_list<const char*> words) {
    QStringList list;
    for (const char* word : words)
        list.append(QString::fromUtf8(word));
    return parseLaunchOptions(list);
}

TEST(LaunchOptions, TakesTheGlobalOptions) {
    const auto options = parsed({"--device-root", "/mnt/phone", "--home=/var/mobile", "--tmp",
                                 "/tmp", "--idiom", "ipad", "-v"});
    ASSERT_TRUE(options.has_value());
    EXPECT_EQ(options->global.deviceRoot, "/mnt/phone");
    EXPECT_EQ(options->global.home, "/var/mobile");
    EXPECT_EQ(options->global.temporaryDirectory, "/tmp");
    EXPECT_EQ(options->global.idiom, platform::Idiom::Pad);
    EXPECT_TRUE(options->global.verbose);
}

TEST(LaunchOptions, LeavesUnsetWhatIsNotSaid) {
    const auto options = parsed({});
    ASSERT_TRUE(options.has_value());
    EXPECT_EQ(options->global.deviceRoot, std::nullopt);
    EXPECT_EQ(options->global.idiom, std::nullopt);
    EXPECT_EQ(options->osVersion, std::nullopt);
    EXPECT_EQ(options->style, Appearance::Style::Desktop);
}

TEST(LaunchOptions, TakesTheSystemsVersionAndTheAppearance) {
    const auto options = parsed({"--os-version", "18.5", "--appearance", "dark"});
    ASSERT_TRUE(options.has_value());
    ASSERT_TRUE(options->osVersion.has_value());
    EXPECT_EQ(options->osVersion->major, 18);
    EXPECT_EQ(options->osVersion->minor, 5);
    EXPECT_EQ(options->style, Appearance::Style::Dark);
}

TEST(LaunchOptions, RefusesWhatItDoesNotUnderstand) {
    EXPECT_FALSE(parsed({"--idiom", "watch"}).has_value());
    EXPECT_FALSE(parsed({"--os-version", "new"}).has_value());
    EXPECT_FALSE(parsed({"--appearance", "pink"}).has_value());
    EXPECT_FALSE(parsed({"--no-such-option"}).has_value());
    EXPECT_FALSE(parsed({"scan"}).has_value());
    EXPECT_FALSE(parsed({"--device-root"}).has_value());
}

}  // namespace
}  // namespace sweepwright::ui
