#pragma once

#include <QString>
#include <QStringList>
#include <QVariantList>
#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "ui/apps/AppListModel.h"
#include "ui/apps/AppScanner.h"
#include "ui/apps/ListedApp.h"
#include "ui/apps/SwipeAction.h"
#include "ui/presentation/AlertController.h"
#include "ui/presentation/ScreenController.h"
#include "ui/presentation/ScreenServices.h"
#include "ui/presentation/ScrollReporter.h"

namespace sweepwright {
class Failures;
}

namespace sweepwright::ui {

/// Every installed app with what can be cleaned of it: user apps in one segment, system apps in the
/// other. One app is cleaned by a tap or a swipe, several in edit mode; a swipe protects an app.
class AppListViewController : public sweepwright::ui::ScreenController {
    // The base is named in full, as Qt's type registrar takes it as written.
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the shell")
    Q_PROPERTY(sweepwright::ui::AppListModel* apps READ apps CONSTANT)
    Q_PROPERTY(sweepwright::ui::ScrollReporter* scrolling READ scrolling CONSTANT)

    Q_PROPERTY(QStringList segmentTitles READ segmentTitles NOTIFY segmentTitlesChanged)
    Q_PROPERTY(
        int selectedSegment READ selectedSegment WRITE setSelectedSegment NOTIFY stateChanged)
    Q_PROPERTY(bool isSearching READ isSearching NOTIFY stateChanged)
    Q_PROPERTY(bool isEditingMode READ isEditingMode NOTIFY stateChanged)
    /// Whether a scan is under way.
    Q_PROPERTY(bool loading READ loading NOTIFY stateChanged)
    /// Whether it is one that a person asked for by pulling.
    Q_PROPERTY(bool refreshing READ refreshing NOTIFY stateChanged)
    /// What stands in the middle of an empty list; empty: nothing does.
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY stateChanged)
    /// Whether rows that come, go or move are to be seen doing so: not when another list is shown.
    Q_PROPERTY(bool animatesChanges READ animatesChanges NOTIFY animatesChangesChanged)

    Q_PROPERTY(QString swipeHint READ swipeHint NOTIFY textsChanged)
    Q_PROPERTY(QString searchPlaceholder READ searchPlaceholder NOTIFY textsChanged)
    Q_PROPERTY(QString cancelTitle READ cancelTitle NOTIFY textsChanged)
    Q_PROPERTY(QString cleanButtonTitle READ cleanButtonTitle NOTIFY textsChanged)

    Q_PROPERTY(QString selectAllTitle READ selectAllTitle NOTIFY selectionChanged)
    Q_PROPERTY(QString selectionCountText READ selectionCountText NOTIFY selectionChanged)
    Q_PROPERTY(bool cleanButtonEnabled READ cleanButtonEnabled NOTIFY selectionChanged)

  public:
    enum Segment { UserApps = 0, SystemApps = 1 };

    /// Between a clean that somebody recorded and the scan for what it changed.
    static constexpr std::chrono::milliseconds kReloadDelay{1000};
    /// Of the segments, points: at least, beside their titles, and as a share of the screen.
    static constexpr double kSegmentsLeastWidth = 250.0;
    static constexpr double kSegmentsPadding = 100.0;
    static constexpr double kSegmentsMostShare = 0.8;

    /// What `services` holds must outlive this.
    explicit AppListViewController(const ScreenServices& services);

    // --- What the view shows. ---

    [[nodiscard]] AppListModel* apps() { return &rows_; }
    [[nodiscard]] ScrollReporter* scrolling() { return &scrolling_; }
    [[nodiscard]] const QStringList& segmentTitles() const { return segmentTitles_; }
    /// How wide the segments are when the wider of their titles is `titleWidth` and the screen
    /// `screenWidth` points.
    [[nodiscard]] Q_INVOKABLE double segmentsWidth(double titleWidth, double screenWidth) const;
    [[nodiscard]] int selectedSegment() const { return selectedSegment_; }
    [[nodiscard]] bool isSearching() const { return isSearching_; }
    [[nodiscard]] bool isEditingMode() const { return isEditingMode_; }
    [[nodiscard]] bool loading() const { return scanner_.isRunning(); }
    [[nodiscard]] bool refreshing() const { return isRefreshing_; }
    [[nodiscard]] QString emptyText() const { return isEmptyLabelHidden_ ? QString() : emptyText_; }
    [[nodiscard]] bool animatesChanges() const { return animatesChanges_; }
    [[nodiscard]] QString swipeHint() const { return texts()("Swipe Left Hint"); }
    [[nodiscard]] QString searchPlaceholder() const { return texts()("Search Apps"); }
    [[nodiscard]] QString cancelTitle() const { return texts()("Cancel"); }
    [[nodiscard]] QString cleanButtonTitle() const { return texts()("Clean Selected Apps"); }
    [[nodiscard]] QString selectAllTitle() const;
    [[nodiscard]] QString selectionCountText() const;
    [[nodiscard]] bool cleanButtonEnabled() const { return rows_.selectedCount() > 0; }

    // --- The lists, largest app first. ---

    [[nodiscard]] const ListedApps& allApps() const { return allApps_; }
    [[nodiscard]] const ListedApps& userApps() const { return userApps_; }
    [[nodiscard]] const ListedApps& systemApps() const { return systemApps_; }
    [[nodiscard]] const ListedApps& filteredUserApps() const { return filteredUserApps_; }
    [[nodiscard]] const ListedApps& filteredSystemApps() const { return filteredSystemApps_; }
    /// What the list shows now.
    [[nodiscard]] const ListedApps& currentApps() const { return currentApps_; }

    // --- What a person does. ---

    /// Scans and shows what is found.
    void loadApps();
    /// The list was pulled down.
    Q_INVOKABLE void refreshApps();
    void setSelectedSegment(int segment);
    /// Shows the apps whose name or identifier holds `text` in whatever case; all with none.
    Q_INVOKABLE void filterAppsWithSearchText(const QString& text);
    /// A tap on row `row`.
    Q_INVOKABLE void didSelectRow(int row);
    /// The button at `action` behind row `row` was pressed.
    Q_INVOKABLE void performSwipeAction(int row, int action);
    Q_INVOKABLE void toggleEditMode();
    Q_INVOKABLE void toggleSelectAll();
    Q_INVOKABLE void cleanSelectedApps();

    /// The buttons behind a row, outermost first; none in edit mode and of system apps.
    [[nodiscard]] std::vector<SwipeAction> trailingSwipeActions(int row) const;
    /// The same in the plainer form, without symbols.
    [[nodiscard]] std::vector<SwipeAction> editActions(int row) const;

    // --- The steps that these lead to. ---

    void showCleanConfirmationForApp(const ListedAppPointer& app);
    /// Cleans at once, under an alert that tells how far it is, and scans again on success.
    void cleanCacheForApp(const ListedAppPointer& app, const SwipeAction::Completion& completion);
    /// Puts the app on the whitelist or takes it off; `row` is the one to draw anew, all when it is
    /// none.
    void toggleWhitelistForApp(const ListedAppPointer& app, std::optional<int> row,
                               const SwipeAction::Completion& completion);
    /// Cleans one after the other, then leaves edit mode and scans again.
    void performBatchClean(const ListedApps& apps);

  Q_SIGNALS:
    void stateChanged();
    void textsChanged();
    void segmentTitlesChanged();
    void selectionChanged();
    void animatesChangesChanged();
    /// Another list is shown: it begins at its top.
    void listReplaced();
    /// A swipe action has ended: its row may close.
    void swipeActionEnded(bool performed);

  protected:
    void viewDidLoad() override;
    void viewWillAppear() override;

  private:
    // What all rows share.
    struct CellTexts {
        QString cache;
        QString temporary;
        QString total;
        QVariantList actions;
        QVariantList protectedActions;
    };

    [[nodiscard]] const Texts& texts() const { return services_.texts; }
    void take(const ThirdPartyAppCacheManager::AppList& found);
    AppIconStore::Handle iconOf(const AppCacheInfo& app, const ListedApp* known);
    void languageChanged();
    void cleanHistoryUpdated();
    void readTexts();
    void filterLists();
    void updateCurrentApps();
    void updateTitleAndEmptyState();
    void reload(bool animated);
    void setEditing(bool editing);
    void updateSelectionCount();

    // Cells.
    [[nodiscard]] AppRow rowFor(const ListedApp& app) const;
    [[nodiscard]] QString detailOf(const ListedApp& app, bool isProtected) const;
    [[nodiscard]] bool isProtected(const ListedApp& app) const;
    [[nodiscard]] std::vector<SwipeAction> actionsOf(bool isProtected) const;

    // Alerts.
    std::unique_ptr<AlertController> makeAlert(const QString& title,
                                               const QString& message = {}) const;
    void show(std::unique_ptr<AlertController> alert);
    void tell(const QString& title, const QString& message = {});
    AlertController* showCleaning(const QString& message);
    void tellOutcome(bool success, std::uint64_t bytes, const std::optional<platform::Error>& error,
                     const Failures& failures);

    ScreenServices services_;
    ScrollReporter scrolling_;
    AppListModel rows_;
    AppScanner scanner_;
    CellTexts cell_;
    ListedApps allApps_;
    ListedApps userApps_;
    ListedApps systemApps_;
    ListedApps filteredUserApps_;
    ListedApps filteredSystemApps_;
    ListedApps currentApps_;
    QStringList segmentTitles_;
    QString searchText_;
    QString emptyText_;
    int selectedSegment_ = UserApps;
    bool isSearching_ = false;
    bool isEditingMode_ = false;
    bool isRefreshing_ = false;
    bool isEmptyLabelHidden_ = true;
    bool animatesChanges_ = false;
    platform::NotificationCenter::Subscription historyUpdates_;
};

}  // namespace sweepwright::ui
