#include <QSignalSpy>

#include "ui/SettingsTest.h"

namespace sweepwright::ui {
namespace {

class SettingsLanguageTest : public test::SettingsTest {};

TEST_F(SettingsLanguageTest, OffersTheLanguagesInTheirOwnNamesWithTheCurrentOneMarked) {
    settings().showLanguageSelector();
    EXPECT_EQ(alert().title(), text("Language Settings"));
    EXPECT_TRUE(alert().message().isEmpty());
    const std::vector<std::string> expected = {"中文简体", "English", "Cancel"};
    EXPECT_EQ(titles(), expected);
    EXPECT_FALSE(alert().actions()[0]->current());
    EXPECT_TRUE(alert().actions()[1]->current());
    EXPECT_EQ(alert().actions()[2]->style(), AlertAction::Cancel);
    choose("Cancel");
    EXPECT_EQ(row(0, 0).value, QLatin1String("English"));
    EXPECT_FALSE(app_.presenter().active());
}

TEST_F(SettingsLanguageTest, SpeaksTheChosenLanguageAtOnce) {
    QSignalSpy changed(settings().rows(), &SettingsRows::dataChanged);
    QSignalSpy headers(&settings(), &SettingsViewController::headersChanged);
    settings().showLanguageSelector();
    choose(QStringLiteral("中文简体"));
    EXPECT_EQ(defaults().string("AppLanguage"), "zh-Hans");
    EXPECT_EQ(settings().title(), QStringLiteral("设置"));
    EXPECT_EQ(settings().headers()[1], QStringLiteral("存储设置"));
    EXPECT_EQ(row(0, 0).title, QStringLiteral("语言"));
    EXPECT_EQ(row(0, 0).value, QStringLiteral("中文简体"));
    EXPECT_EQ(row(3, 1).subtitle, QStringLiteral("已保护 3 个路径"));
    // All but the one that is called the same in both.
    EXPECT_GE(changed.count(), 15);
    EXPECT_EQ(headers.count(), 1);
    EXPECT_EQ(alert().title(), QStringLiteral("语言已更改"));
    EXPECT_EQ(alert().message(), QStringLiteral("界面现已切换为简体中文。"));
    choose(QStringLiteral("好"));
    EXPECT_FALSE(app_.presenter().active());
    settings().showLanguageSelector();
    EXPECT_TRUE(alert().actions()[0]->current());
    EXPECT_FALSE(alert().actions()[1]->current());
}

TEST_F(SettingsLanguageTest, ConfirmsTheLanguageThatIsCurrentToo) {
    settings().showLanguageSelector();
    choose(QStringLiteral("English"));
    EXPECT_EQ(alert().title(), text("Language Changed"));
    EXPECT_EQ(settings().title(), QLatin1String("Settings"));
}

TEST_F(SettingsLanguageTest, ReadsItsTextsAgainOnlyWhileItIsOnScreen) {
    stack().setVisible(false);
    ASSERT_TRUE(app_.services().language.setLanguage("zh-Hans"));
    EXPECT_EQ(settings().title(), QLatin1String("Settings"));
    EXPECT_EQ(row(0, 0).title, QLatin1String("Language"));
    stack().setVisible(true);
    EXPECT_EQ(row(0, 0).title, QStringLiteral("语言"));
    ASSERT_TRUE(app_.services().language.setLanguage("en"));
    EXPECT_EQ(row(0, 0).title, QLatin1String("Language"));
    EXPECT_EQ(settings().title(), QLatin1String("Settings"));
}

TEST_F(SettingsLanguageTest, SaysWhenTheLanguageCannotBeStored) {
    blockChanges();
    settings().showLanguageSelector();
    choose(QStringLiteral("中文简体"));
    EXPECT_EQ(settings().title(), QStringLiteral("设置"));
    expectSaveFailure();
    EXPECT_EQ(defaults().string("AppLanguage"), "en");
}

}  // namespace
}  // namespace sweepwright::ui
