#pragma once

#include <QString>
#include <string_view>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "platform/queue/NotificationCenter.h"
#include "ui/history/CleanHistoryRows.h"
#include "ui/presentation/ScreenController.h"
#include "ui/presentation/ScreenServices.h"
#include "ui/presentation/ScrollReporter.h"

namespace sweepwright::ui {

/// The recorded cleans, newest first: their sum, the details of each, and ways to delete one or
/// all. Its texts are Chinese in every language. Shows at once what is cleaned elsewhere.
class CleanHistoryViewController : public sweepwright::ui::ScreenController {
    // The base is named in full, as Qt's type registrar takes it as written.
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the settings")
    Q_PROPERTY(sweepwright::ui::CleanHistoryRows* rows READ rows CONSTANT)
    /// Whether there is nothing to list; then the empty-state label stands in its place.
    Q_PROPERTY(bool empty READ empty NOTIFY loaded)
    /// The line over the list; none when there is nothing.
    Q_PROPERTY(QString header READ header NOTIFY loaded)
    Q_PROPERTY(QString emptyStateLabel READ emptyStateLabel CONSTANT)
    Q_PROPERTY(QString deleteTitle READ deleteTitle CONSTANT)
    Q_PROPERTY(sweepwright::ui::ScrollReporter* scrolling READ scrolling CONSTANT)

  public:
    /// Posted, on any thread, when a clean was recorded.
    static constexpr std::string_view kCleanHistoryUpdated = "CleanHistoryUpdated";

    /// What `services` names must outlive this.
    explicit CleanHistoryViewController(const ScreenServices& services);

    [[nodiscard]] bool prefersLargeTitles() const override { return true; }
    [[nodiscard]] CleanHistoryRows* rows() { return &rows_; }
    [[nodiscard]] const std::vector<CleanHistoryItem>& historyItems() const {
        return rows_.items();
    }
    [[nodiscard]] bool empty() const { return rows_.items().empty(); }
    [[nodiscard]] const QString& header() const { return header_; }
    [[nodiscard]] QString emptyStateLabel() const;
    [[nodiscard]] QString deleteTitle() const;
    [[nodiscard]] ScrollReporter* scrolling() { return &scrolling_; }

    /// Reads the stored history again.
    void loadHistoryData();
    /// Shows the details of the entry in `row`.
    Q_INVOKABLE void didSelectRow(int row);
    /// Deletes the entry in `row` at once.
    Q_INVOKABLE void deleteRow(int row);
    /// Asks, then deletes all entries; nothing happens when there are none.
    void clearHistory();

  Q_SIGNALS:
    void loaded();

  protected:
    void viewDidLoad() override;

  private:
    [[nodiscard]] const CleanHistoryItem* at(int row) const;
    void finish(const platform::Result<>& stored);

    ScreenServices services_;
    CleanHistoryRows rows_;
    QString header_;
    ScrollReporter scrolling_;
    platform::NotificationCenter::Subscription historyObserver_;
};

}  // namespace sweepwright::ui
