#include "ui/home/CleanItemCardView.h"

#include <QPointer>
#include <algorithm>
#include <utility>

#include "platform/tree/TreeWalker.h"

namespace sweepwright::ui {

namespace {

using platform::FileManager;
using platform::FileType;
using platform::LastLink;

std::uint64_t sizeOfDirectory(FileManager& files, const std::string& path, int maxDepth) {
    platform::WalkRules rules;
    rules.maxDepth = maxDepth;
    return platform::TreeWalker(files).sizeOfDirectory(path, rules);
}

// 0 when there is nothing of that name.
std::uint64_t sizeOfRow(FileManager& files, const std::string& row) {
    if (!row.starts_with('/')) return 0;
    const auto attributes = files.attributes(row, LastLink::Follow);
    if (!attributes) return 0;
    if (attributes->type == FileType::Directory)
        return sizeOfDirectory(files, row, CleanItemCardView::kSizeDepth);
    // A link to a file counts as what it is, not as what it leads to.
    const auto itself = files.attributes(row, LastLink::Refuse);
    return itself ? itself->size : 0;
}

}  // namespace

CleanItemCardView::CleanItemCardView(QString title, QString icon, const CardServices& services)
    : title_(std::move(title)),
      icon_(std::move(icon)),
      sizeText_(QString::fromUtf8(kSizeUnknown)),
      services_(services),
      fileList_(services.files) {}

CleanItemCardView::~CleanItemCardView() {
    closing_.request_stop();
}

QString CleanItemCardView::cleanButtonTitle() {
    return QString::fromUtf8(kCleanTitle);
}

QString CleanItemCardView::expandIcon() const {
    return isExpanded_ ? QStringLiteral("chevron.up") : QStringLiteral("chevron.down");
}

double CleanItemCardView::tableHeight() const {
    return kRowHeight * std::min(fileList_.rowCount(), kVisibleRows);
}

double CleanItemCardView::intrinsicContentHeight() const {
    return isExpanded_ ? std::max(kCollapsedHeight, kExpandedHeight + tableHeight())
                       : kCollapsedHeight;
}

void CleanItemCardView::setTableFrame(const QRectF& frame) {
    if (frame == tableFrame_) return;
    tableFrame_ = frame;
    Q_EMIT framesChanged();
}

void CleanItemCardView::setCleanButtonFrame(const QRectF& frame) {
    if (frame == cleanButtonFrame_) return;
    cleanButtonFrame_ = frame;
    Q_EMIT framesChanged();
}

void CleanItemCardView::updateSize(const QString& size) {
    if (size == sizeText_) return;
    sizeText_ = size;
    Q_EMIT sizeTextChanged();
}

void CleanItemCardView::updateFileList(std::vector<std::string> rows) {
    const double height = tableHeight();
    fileList_.setSizes({});
    fileList_.setRows(rows);
    if (tableHeight() != height) Q_EMIT heightChanged();
    services_.background.async([services = services_, stop = closing_.get_token(),
                                self = QPointer(this), rows = std::move(rows)] {
        FileListModel::Sizes sizes;
        for (const std::string& row : rows) {
            if (stop.stop_requested()) return;
            if (const std::uint64_t size = sizeOfRow(services.files, row); size > 0)
                sizes[row] = size;
        }
        services.mainQueue.async([self, sizes = std::move(sizes)]() mutable {
            if (self) self->fileList_.setSizes(std::move(sizes));
        });
    });
}

void CleanItemCardView::toggleExpanded(bool animated) {
    isExpanded_ = !isExpanded_;
    animated_ = animated;
    Q_EMIT isExpandedChanged();
    Q_EMIT heightChanged();
}

void CleanItemCardView::didSelectRow(int row) {
    const auto& rows = fileList_.rows();
    if (delegate_ == nullptr || row < 0 || static_cast<std::size_t>(row) >= rows.size()) return;
    // By value: what the delegate does may change the list.
    const std::string path = rows[static_cast<std::size_t>(row)];
    delegate_->cleanItemCardViewDidTapFilePath(*this, path);
}

bool CleanItemCardView::isPointInFileTableView(QPointF point) const {
    return isExpanded_ && tableFrame_.contains(point);
}

std::uint64_t CleanItemCardView::sizeOfDirectoryAtPath(const std::string& path,
                                                       int maxDepth) const {
    return sizeOfDirectory(services_.files, path, maxDepth);
}

bool CleanItemCardView::isDiagnosticPath(std::string_view path) {
    return path.starts_with("/var/db/diagnostics/");
}

}  // namespace sweepwright::ui
