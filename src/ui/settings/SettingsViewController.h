#pragma once

#include <QRectF>
#include <QStringList>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "platform/queue/NotificationCenter.h"
#include "ui/presentation/ScreenController.h"
#include "ui/presentation/ScreenServices.h"
#include "ui/presentation/ScrollReporter.h"
#include "ui/settings/AppVersion.h"
#include "ui/settings/SettingsPreferences.h"
#include "ui/settings/SettingsRows.h"

namespace sweepwright::ui {

class AlertController;

/// The third tab: preferences, the two lists of paths, the way to the protected apps and the clean
/// history, statistics, help, the language and the maker's pages.
///
/// Every press leads to an alert, an action sheet or another screen. A change that can't be stored
/// is told in an alert and changes nothing.
class SettingsViewController : public sweepwright::ui::ScreenController {
    // The base is named in full, as Qt's type registrar takes it as written.
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the shell")
    Q_PROPERTY(sweepwright::ui::SettingsRows* rows READ rows CONSTANT)
    /// The title over each section; the first has none.
    Q_PROPERTY(QStringList headers READ headers NOTIFY headersChanged)
    Q_PROPERTY(sweepwright::ui::ScrollReporter* scrolling READ scrolling CONSTANT)

  public:
    using MakeScreen = std::function<std::unique_ptr<ScreenController>()>;

    /// Posted by the screens that change the list of protected apps.
    static constexpr std::string_view kWhitelistUpdated = "WhitelistUpdated";

    /// What `services` names must outlive this. `makeWhitelistScreen` makes the screen of the
    /// protected apps.
    SettingsViewController(const ScreenServices& services, MakeScreen makeWhitelistScreen);

    [[nodiscard]] bool prefersLargeTitles() const override { return true; }
    [[nodiscard]] SettingsRows* rows() { return &rows_; }
    [[nodiscard]] const QStringList& headers() const { return headers_; }
    [[nodiscard]] ScrollReporter* scrolling() { return &scrolling_; }
    [[nodiscard]] const std::vector<SettingsSection>& settingsData() const {
        return rows_.sections();
    }

    /// Reads all rows again; stores the defaults of the preferences that are not stored yet.
    void loadSettingsData();
    /// Does what the row at this place is for. A sheet that comes of it points at `cell`, in the
    /// window's points.
    Q_INVOKABLE void didSelectRow(int section, int row, const QRectF& cell = {});
    /// Stores what the switch of the row with this tag was set to.
    Q_INVOKABLE void switchValueChanged(int tag, bool on);

    void showLanguageSelector();
    void showLargeFileThresholdSelector();

    void showCustomPathsManager();
    void addCustomPath();
    void viewCustomPaths();
    void showCustomPathOptions(const std::string& path);

    void showPathWhitelistManager();
    void addPathToWhitelist();
    void viewPathWhitelist();
    void showPathWhitelistOptions(const std::string& path, bool isBuiltIn);

    void showCleanHistory();
    void showCleanStatistics();
    void showWhitelistSettings();
    void showHelp();
    void showPrivacyPolicy();
    void showAbout();

    void openWebsite();
    void openWechat();
    void openTelegram();
    void openGithub();

  Q_SIGNALS:
    void headersChanged();

  protected:
    void viewDidLoad() override;
    void viewWillAppear() override;
    void viewWillDisappear() override;

  private:
    using Alert = std::unique_ptr<AlertController>;
    using ChangePath = std::function<platform::Result<>(const std::string& path)>;
    struct PathChoice {
        QString title;
        std::function<void()> choose;
    };

    [[nodiscard]] SettingsSection languageRows() const;
    [[nodiscard]] SettingsSection storageRows() const;
    [[nodiscard]] SettingsSection recordRows() const;
    [[nodiscard]] SettingsSection protectionRows() const;
    [[nodiscard]] SettingsSection appRows() const;
    [[nodiscard]] SettingsSection linkRows() const;
    [[nodiscard]] SettingsRow disclosure(std::string_view titleKey, std::string_view subtitleKey,
                                         const char* key, const char* icon) const;
    void readHeaders();

    void languageChanged();
    void whitelistUpdated();
    void setLanguage(std::string_view code);
    void setLargeFileThreshold(std::uint64_t bytes);
    void open(std::string_view address);

    // An alert or a sheet that points at the row selected last; keys of texts, no message for none.
    [[nodiscard]] Alert alert(std::string_view titleKey, std::string_view messageKey = {}) const;
    [[nodiscard]] Alert sheet(const QString& title, const QString& message = {}) const;
    void present(Alert alert);
    void presentNote(Alert alert, std::string_view buttonKey);
    void presentPathsManager(std::string_view titleKey, std::string_view messageKey,
                             std::function<void()> add, std::function<void()> view);
    // The key of what to say about what is, or isn't, at `path` now.
    [[nodiscard]] std::string_view remarkKey(const std::string& path) const;
    void presentPathEntry(Alert alert, std::string_view placeholderKey, const ChangePath& add);
    void presentPaths(std::string_view titleKey, std::string_view emptyKey,
                      const std::vector<PathChoice>& choices);
    void presentRemovablePath(const std::string& path, const ChangePath& remove);
    // Shows what a change has led to: the rows anew, or why it could not be stored.
    void finish(const platform::Result<>& stored);

    ScreenServices services_;
    AppVersion version_;
    MakeScreen makeWhitelistScreen_;
    SettingsPreferences preferences_;
    SettingsRows rows_;
    QStringList headers_;
    ScrollReporter scrolling_;
    QRectF selectedCell_;
    QMetaObject::Connection languageObserver_;
    platform::NotificationCenter::Subscription whitelistObserver_;
};

}  // namespace sweepwright::ui
