#include "ui/settings/SettingsViewController.h"

#include <array>
#include <utility>

#include "engine/StorageAnalyzer.h"
#include "localization/LanguageManager.h"
#include "protection/AppWhitelistManager.h"
#include "protection/CustomPathManager.h"
#include "protection/PathWhitelistManager.h"
#include "ui/presentation/SaveFailure.h"

namespace sweepwright::ui {

namespace {

// Over the sections, in order; the first has none.
constexpr auto kHeaderKeys = std::to_array<std::string_view>(
    {"", "Storage Settings", "Clean Records", "Clean Protection", "App Info", "Follow Us"});

struct Selection {
    const char* key;
    void (SettingsViewController::*action)();
};

constexpr auto kSelections = std::to_array<Selection>({
    {"language", &SettingsViewController::showLanguageSelector},
    {"largeFileThreshold", &SettingsViewController::showLargeFileThresholdSelector},
    {"customPaths", &SettingsViewController::showCustomPathsManager},
    {"pathWhitelist", &SettingsViewController::showPathWhitelistManager},
    {"cleanHistory", &SettingsViewController::showCleanHistory},
    {"cleanStatistics", &SettingsViewController::showCleanStatistics},
    {"whitelist", &SettingsViewController::showWhitelistSettings},
    {"help", &SettingsViewController::showHelp},
    {"privacy", &SettingsViewController::showPrivacyPolicy},
    {"about", &SettingsViewController::showAbout},
    {"website", &SettingsViewController::openWebsite},
    {"wechat", &SettingsViewController::openWechat},
    {"telegram", &SettingsViewController::openTelegram},
    {"github", &SettingsViewController::openGithub},
});

}  // namespace

SettingsViewController::SettingsViewController(const ScreenServices& services,
                                               MakeScreen makeWhitelistScreen)
    : ScreenController(QUrl(QStringLiteral("qrc:/qt/qml/Sweepwright/Settings/SettingsView.qml"))),
      services_(services),
      version_(appVersion(services.resources)),
      makeWhitelistScreen_(std::move(makeWhitelistScreen)),
      preferences_(services.defaults),
      scrolling_(services.notifications) {}

void SettingsViewController::viewDidLoad() {
    setTitle(services_.texts("Settings"));
    loadSettingsData();
}

void SettingsViewController::viewWillAppear() {
    loadSettingsData();
    whitelistObserver_ = services_.notifications.observe(
        std::string(kWhitelistUpdated), [this](const auto&) { whitelistUpdated(); });
    languageObserver_ =
        connect(&services_.texts, &Texts::changed, this, &SettingsViewController::languageChanged);
}

void SettingsViewController::viewWillDisappear() {
    whitelistObserver_.reset();
    disconnect(languageObserver_);
}

void SettingsViewController::whitelistUpdated() {
    loadSettingsData();
}

void SettingsViewController::languageChanged() {
    setTitle(services_.texts("Settings"));
    loadSettingsData();
}

void SettingsViewController::loadSettingsData() {
    // One that can't be stored is logged; the screen shows the default all the same.
    [[maybe_unused]] const auto stored = preferences_.storeMissing();
    rows_.setSections(
        {languageRows(), storageRows(), recordRows(), protectionRows(), appRows(), linkRows()});
    readHeaders();
}

void SettingsViewController::readHeaders() {
    QStringList headers;
    for (const std::string_view key : kHeaderKeys)
        headers.append(key.empty() ? QString() : services_.texts(key));
    if (headers == headers_) return;
    headers_ = std::move(headers);
    Q_EMIT headersChanged();
}

SettingsRow SettingsViewController::disclosure(std::string_view titleKey,
                                               std::string_view subtitleKey, const char* key,
                                               const char* icon) const {
    return {.title = services_.texts(titleKey),
            .subtitle = services_.texts(subtitleKey),
            .type = QStringLiteral("disclosure"),
            .key = QString::fromLatin1(key),
            .icon = QString::fromLatin1(icon)};
}

SettingsSection SettingsViewController::languageRows() const {
    SettingsRow language = disclosure("Language", "Language Description", "language", "globe");
    language.value = QString::fromStdString(services_.language.currentLanguageName());
    return {language};
}

SettingsSection SettingsViewController::storageRows() const {
    SettingsRow hidden = disclosure("Show Hidden Files", "Show Hidden Files Description",
                                    "showHiddenFiles", "eye.slash.fill");
    hidden.type = QStringLiteral("switch");
    hidden.on = preferences_.isOn(SettingsPreferences::kShowHiddenFiles, hidden.defaultValue);
    SettingsRow threshold = disclosure("Large File Threshold", "Large File Threshold Description",
                                       "largeFileThreshold", "doc.text.fill");
    threshold.value =
        QString::fromStdString(StorageAnalyzer::formatBytes(preferences_.largeFileThreshold()));
    SettingsRow paths =
        disclosure("Custom Paths", "Custom Paths Count", "customPaths", "folder.badge.plus");
    paths.subtitle =
        services_.texts("Custom Paths Count", {services_.customPaths.getCustomPathCount()});
    return {hidden, threshold, paths};
}

SettingsSection SettingsViewController::recordRows() const {
    return {disclosure("Clean History", "Clean History Description", "cleanHistory",
                       "clock.arrow.circlepath"),
            disclosure("Clean Statistics", "Clean Statistics Description", "cleanStatistics",
                       "chart.bar.fill")};
}

SettingsSection SettingsViewController::protectionRows() const {
    SettingsRow apps = disclosure("Clean Whitelist", "Clean Whitelist Description", "whitelist",
                                  "checkmark.shield.fill");
    if (const std::size_t count = services_.appWhitelist.getWhitelistCount(); count > 0) {
        apps.subtitle = services_.texts("Protected Apps Count", {count});
    }
    SettingsRow paths =
        disclosure("Path Whitelist", "Path Whitelist Count", "pathWhitelist", "lock.shield.fill");
    paths.subtitle =
        services_.texts("Path Whitelist Count", {services_.pathWhitelist.getWhitelistCount()});
    return {apps, paths};
}

SettingsSection SettingsViewController::appRows() const {
    SettingsRow version =
        disclosure("Version Info", "Version Info Description", "", "info.circle.fill");
    version.type = QStringLiteral("none");
    version.subtitle =
        services_.texts("Version Info Description", {version_.shortVersion, version_.build});
    return {
        version, disclosure("Help", "Help Description", "help", "questionmark.circle.fill"),
        disclosure("Privacy Policy", "Privacy Policy Description", "privacy", "hand.raised.fill"),
        disclosure("About", "About Description", "about", "person.circle.fill")};
}

SettingsSection SettingsViewController::linkRows() const {
    return {
        disclosure("Visit Website", "Visit Website Description", "website", "safari.fill"),
        disclosure("Follow WeChat", "Follow WeChat Description", "wechat", "message.fill"),
        disclosure("Follow Telegram", "Follow Telegram Description", "telegram", "paperplane.fill"),
        disclosure("GitHub", "GitHub Description", "github", "star.fill")};
}

void SettingsViewController::didSelectRow(int section, int row, const QRectF& cell) {
    const SettingsRow* selected = rows_.at(section, row);
    if (selected == nullptr) return;
    selectedCell_ = cell;
    for (const Selection& selection : kSelections) {
        if (selected->key != QLatin1String(selection.key)) continue;
        (this->*selection.action)();
        return;
    }
}

void SettingsViewController::switchValueChanged(int tag, bool on) {
    const SettingsRow* changed =
        rows_.at(tag / SettingsRows::kTagsPerSection, tag % SettingsRows::kTagsPerSection);
    if (changed == nullptr || changed->type != QLatin1String("switch")) return;
    finish(preferences_.setOn(changed->key.toStdString(), on));
}

void SettingsViewController::finish(const platform::Result<>& stored) {
    loadSettingsData();
    presentSaveFailure(presenter(), services_.texts, stored);
}

}  // namespace sweepwright::ui
