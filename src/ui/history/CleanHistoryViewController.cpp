#include "ui/history/CleanHistoryViewController.h"

#include <QDateTime>
#include <utility>

#include <fmt/format.h>

#include "engine/StorageAnalyzer.h"
#include "protection/CleanHistoryManager.h"
#include "ui/presentation/Presenter.h"
#include "ui/presentation/SaveFailure.h"

namespace sweepwright::ui {

namespace {

/// The date as a sentence would say it, in local time.
std::string longDateText(CleanHistoryItem::Date date) {
    const auto milliseconds =
        std::chrono::floor<std::chrono::milliseconds>(date.time_since_epoch()).count();
    return QDateTime::fromMSecsSinceEpoch(milliseconds)
        .toString(QStringLiteral("yyyy年MM月dd日 HH:mm:ss"))
        .toStdString();
}

}  // namespace

CleanHistoryViewController::CleanHistoryViewController(const ScreenServices& services)
    : ScreenController(
          QUrl(QStringLiteral("qrc:/qt/qml/Sweepwright/History/CleanHistoryView.qml"))),
      services_(services),
      scrolling_(services.notifications) {
    BarButtonItem& clear = addRightBarButtonItem();
    clear.setTitle(QStringLiteral("清空"));
    connect(&clear, &BarButtonItem::triggered, this, &CleanHistoryViewController::clearHistory);
}

QString CleanHistoryViewController::emptyStateLabel() const {
    return QStringLiteral("暂无清理历史记录");
}

QString CleanHistoryViewController::deleteTitle() const {
    return QStringLiteral("删除");
}

void CleanHistoryViewController::viewDidLoad() {
    setTitle(QStringLiteral("清理历史记录"));
    // Whoever cleans posts on a thread of its own.
    historyObserver_ = services_.notifications.observe(std::string(kCleanHistoryUpdated),
                                                       [self = QPointer(this), this](const auto&) {
                                                           services_.mainQueue.async([self] {
                                                               if (self) self->loadHistoryData();
                                                           });
                                                       });
    loadHistoryData();
}

void CleanHistoryViewController::loadHistoryData() {
    rows_.setItems(services_.history.getAllCleanHistory());
    const CleanHistoryStatistics statistics = services_.history.getStatistics();
    header_ = empty() ? QString()
                      : QString::fromStdString(fmt::format(
                            "共 {} 条记录，累计清理 {}", statistics.totalCleanCount,
                            StorageAnalyzer::formatBytes(statistics.totalCleanedBytes)));
    Q_EMIT loaded();
}

const CleanHistoryItem* CleanHistoryViewController::at(int row) const {
    if (row < 0 || row >= rows_.rowCount()) return nullptr;
    return &rows_.items()[static_cast<std::size_t>(row)];
}

void CleanHistoryViewController::didSelectRow(int row) {
    const CleanHistoryItem* item = at(row);
    if (item == nullptr || presenter() == nullptr) return;
    const std::string message = fmt::format(
        "清理类型: {}\n清理大小: {}\n清理时间: {}", item->cleanTypeName,
        StorageAnalyzer::formatBytes(item->cleanedBytes), longDateText(item->cleanDate));
    auto detail = std::make_unique<AlertController>(
        AlertController::Alert, QStringLiteral("清理详情"), QString::fromStdString(message));
    detail->addAction(QStringLiteral("确定"));
    presenter()->present(std::move(detail));
}

void CleanHistoryViewController::deleteRow(int row) {
    const CleanHistoryItem* item = at(row);
    if (item != nullptr) finish(services_.history.deleteHistoryItem(*item));
}

void CleanHistoryViewController::clearHistory() {
    if (empty() || presenter() == nullptr) return;
    auto question = std::make_unique<AlertController>(
        AlertController::Alert, QStringLiteral("清空历史记录"),
        QStringLiteral("确定要清空所有清理历史记录吗？此操作无法撤销。"));
    question
        ->addAction(QStringLiteral("清空"), AlertAction::Destructive,
                    [self = QPointer(this)] {
                        if (self) self->finish(self->services_.history.clearAllHistory());
                    })
        .addAction(QStringLiteral("取消"), AlertAction::Cancel);
    presenter()->present(std::move(question));
}

void CleanHistoryViewController::finish(const platform::Result<>& stored) {
    loadHistoryData();
    presentSaveFailure(presenter(), services_.texts, stored);
}

}  // namespace sweepwright::ui
