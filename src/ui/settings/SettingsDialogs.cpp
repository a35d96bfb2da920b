// The alerts and sheets of the settings, and the screens behind them; the lists of paths apart.

#include <utility>

#include "engine/StorageAnalyzer.h"
#include "localization/LanguageManager.h"
#include "protection/CleanStatistics.h"
#include "ui/history/CleanHistoryViewController.h"
#include "ui/presentation/Addresses.h"
#include "ui/presentation/NavigationController.h"
#include "ui/presentation/Presenter.h"
#include "ui/settings/SettingsViewController.h"

namespace sweepwright::ui {

using localization::LanguageManager;

namespace {

/// Stands for the date of the last clean before there was one, in every language.
constexpr std::string_view kNoRecord = "暂无记录";

QString text(std::string_view utf8) {
    return QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
}

}  // namespace

SettingsViewController::Alert SettingsViewController::alert(std::string_view titleKey,
                                                            std::string_view messageKey) const {
    return std::make_unique<AlertController>(
        AlertController::Alert, services_.texts(titleKey),
        messageKey.empty() ? QString() : services_.texts(messageKey));
}

SettingsViewController::Alert SettingsViewController::sheet(const QString& title,
                                                            const QString& message) const {
    auto made = std::make_unique<AlertController>(AlertController::ActionSheet, title, message);
    made->setAnchor(selectedCell_);
    return made;
}

void SettingsViewController::present(Alert alert) {
    if (presenter() != nullptr) presenter()->present(std::move(alert));
}

void SettingsViewController::presentNote(Alert alert, std::string_view buttonKey) {
    alert->addAction(services_.texts(buttonKey));
    present(std::move(alert));
}

void SettingsViewController::showLanguageSelector() {
    Alert languages = sheet(services_.texts("Language Settings"));
    const std::string current = services_.language.currentLanguageCode();
    for (const auto& language : LanguageManager::supportedLanguages()) {
        const auto choose = [this, code = language.code] { setLanguage(code); };
        if (language.code == current) {
            languages->addCurrentAction(text(language.nativeName), choose);
        } else {
            languages->addAction(text(language.nativeName), AlertAction::Default, choose);
        }
    }
    languages->addAction(services_.texts("Cancel"), AlertAction::Cancel);
    present(std::move(languages));
}

void SettingsViewController::setLanguage(std::string_view code) {
    const platform::Result<> stored = services_.language.setLanguage(code);
    if (stored) presentNote(alert("Language Changed", "Language Changed Message"), "OK");
    finish(stored);
}

void SettingsViewController::showLargeFileThresholdSelector() {
    Alert choices = sheet(services_.texts("Large File Threshold"),
                          services_.texts("Select Large File Threshold"));
    for (const auto& choice : SettingsPreferences::kThresholdChoices) {
        choices->addAction(text(choice.title), AlertAction::Default,
                           [this, bytes = choice.bytes] { setLargeFileThreshold(bytes); });
    }
    choices->addAction(services_.texts("Cancel"), AlertAction::Cancel);
    present(std::move(choices));
}

void SettingsViewController::setLargeFileThreshold(std::uint64_t bytes) {
    finish(preferences_.setLargeFileThreshold(bytes));
}

void SettingsViewController::showCleanHistory() {
    if (navigationController() == nullptr) return;
    navigationController()->push(std::make_unique<CleanHistoryViewController>(services_));
}

void SettingsViewController::showWhitelistSettings() {
    if (navigationController() == nullptr || !makeWhitelistScreen_) return;
    navigationController()->push(makeWhitelistScreen_());
}

void SettingsViewController::showCleanStatistics() {
    const CleanStatistics::Totals totals = CleanStatistics(services_.defaults).totals();
    Alert statistics = alert("Clean Statistics");
    statistics->setMessage(
        services_.texts("Total Clean Count",
                        {totals.cleanCount, StorageAnalyzer::formatBytes(totals.totalCleanedBytes),
                         totals.lastCleanDate.value_or(std::string(kNoRecord))}));
    presentNote(std::move(statistics), "OK");
}

void SettingsViewController::showHelp() {
    Alert help = alert("Use Help", "Help Text");
    help->makeArticle();
    presentNote(std::move(help), "I Know");
}

void SettingsViewController::showPrivacyPolicy() {
    Alert policy = alert("Privacy Policy", "Privacy Policy Text");
    policy->makeArticle();
    presentNote(std::move(policy), "OK");
}

void SettingsViewController::showAbout() {
    Alert about = alert("About Us");
    about->setMessage(services_.texts("About Text", {version_.shortVersion, version_.build}));
    about->makeArticle();
    presentNote(std::move(about), "OK");
}

void SettingsViewController::openWebsite() {
    open(addresses::kWebsite);
}

void SettingsViewController::openWechat() {
    open(addresses::kWeChat);
}

void SettingsViewController::openTelegram() {
    open(addresses::kTelegram);
}

void SettingsViewController::openGithub() {
    open(addresses::kRepository);
}

void SettingsViewController::open(std::string_view address) {
    services_.opener.open(QUrl(text(address)), [self = QPointer(this)](bool opened) {
        if (opened || !self) return;
        self->presentNote(self->alert("Cannot Open Link", "Check Network Connection"), "OK");
    });
}

}  // namespace sweepwright::ui
