#pragma once

#include <QString>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "ui/apps/AppIconStore.h"
#include "ui/apps/AppListModel.h"
#include "ui/apps/AppScanner.h"
#include "ui/apps/ListedApp.h"
#include "ui/apps/SwipeAction.h"
#include "ui/presentation/ScreenController.h"
#include "ui/presentation/ScreenServices.h"
#include "ui/presentation/ScrollReporter.h"

namespace sweepwright::ui {

/// The installed apps that are protected from cleaning. Its texts are Chinese in every language.
class WhitelistViewController : public sweepwright::ui::ScreenController {
    // The base is named in full, as Qt's type registrar takes it as written.
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the settings screen")
    Q_PROPERTY(sweepwright::ui::AppListModel* apps READ apps CONSTANT)
    Q_PROPERTY(sweepwright::ui::ScrollReporter* scrolling READ scrolling CONSTANT)
    Q_PROPERTY(bool loading READ loading NOTIFY stateChanged)
    /// What stands in the middle of an empty list; empty: nothing does.
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY stateChanged)

  public:
    /// What `services` holds must outlive this.
    explicit WhitelistViewController(const ScreenServices& services);

    [[nodiscard]] bool prefersLargeTitles() const override { return true; }
    [[nodiscard]] AppListModel* apps() { return &rows_; }
    [[nodiscard]] ScrollReporter* scrolling() { return &scrolling_; }
    [[nodiscard]] bool loading() const { return isLoading_; }
    [[nodiscard]] QString emptyText() const;

    /// The protected apps that are installed, by name.
    [[nodiscard]] const ListedApps& whitelistedApps() const { return whitelistedApps_; }
    /// Looks up afresh which apps are installed and shows the protected ones.
    void loadWhitelistedApps();

    [[nodiscard]] std::vector<SwipeAction> trailingSwipeActions(int row) const;
    /// The same in the plainer form, without symbols.
    [[nodiscard]] std::vector<SwipeAction> editActions(int row) const;
    /// The button at `action` of row `row` was pressed.
    Q_INVOKABLE void performSwipeAction(int row, int action);
    /// Asks, and takes the app off the list after a yes.
    void confirmRemoval(const ListedAppPointer& app, const SwipeAction::Completion& completion);

    /// Leads to the list of all apps, where apps are protected by a swipe.
    void addAppToWhitelist();

  Q_SIGNALS:
    void stateChanged();
    /// A swipe action has ended: its row may close.
    void swipeActionEnded(bool performed);

  protected:
    void viewDidLoad() override;
    void viewWillAppear() override;
    void viewWillDisappear() override;

  private:
    /// Shows those of the installed apps that are protected.
    void show(const std::vector<AppCacheInfo>& installed);
    [[nodiscard]] AppRow rowFor(const ListedApp& app) const;
    /// False when the list can't be changed.
    bool remove(const std::string& identifier);
    AppIconStore::Handle ownIcon() const;

    ScreenServices services_;
    ScrollReporter scrolling_;
    AppListModel rows_;
    AppScanner scanner_;
    ListedApps whitelistedApps_;
    AppIconStore::Handle icon_;
    platform::NotificationCenter::Subscription whitelistUpdates_;
    bool isLoading_ = false;
    bool isEmptyLabelHidden_ = true;
};

}  // namespace sweepwright::ui
