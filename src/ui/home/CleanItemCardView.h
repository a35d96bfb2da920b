#pragma once

#include <QObject>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <cstdint>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include <QtQml/qqmlregistration.h>

#include "platform/queue/DispatchQueue.h"
#include "ui/home/FileListModel.h"

namespace sweepwright::ui {

class CleanItemCardView;

/// Hears of taps on a card's rows.
class CleanItemCardViewDelegate {
  public:
    virtual ~CleanItemCardViewDelegate() = default;
    /// `path` is the row's string, which need not be a path.
    virtual void cleanItemCardViewDidTapFilePath(CleanItemCardView& card,
                                                 const std::string& path) = 0;
};

/// What a card works with. All must outlive it.
struct CardServices {
    platform::FileManager& files;
    platform::DispatchQueue& background;  ///< concurrent; sizes are measured there
    platform::DispatchQueue& mainQueue;
};

/// A category's card: title, symbol, size, and a list of files that unfolds. CleanItemCard.qml
/// draws it.
class CleanItemCardView : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by its screen")
    Q_PROPERTY(QString title READ title CONSTANT)
    Q_PROPERTY(QString icon READ icon CONSTANT)
    Q_PROPERTY(QString sizeText READ sizeText NOTIFY sizeTextChanged)
    Q_PROPERTY(QString cleanButtonTitle READ cleanButtonTitle CONSTANT)
    Q_PROPERTY(bool isExpanded READ isExpanded NOTIFY isExpandedChanged)
    Q_PROPERTY(QString expandIcon READ expandIcon NOTIFY isExpandedChanged)
    /// Whether the last change of `isExpanded` is to be seen as a motion.
    Q_PROPERTY(bool animated READ animated NOTIFY isExpandedChanged)
    /// Points, with texts in their usual size.
    Q_PROPERTY(double intrinsicContentHeight READ intrinsicContentHeight NOTIFY heightChanged)
    /// Points of the rows that are in sight when expanded.
    Q_PROPERTY(double tableHeight READ tableHeight NOTIFY heightChanged)
    Q_PROPERTY(sweepwright::ui::FileListModel* fileList READ fileList CONSTANT)
    /// Where the view has laid the table and the clean button, in the card's points.
    Q_PROPERTY(QRectF tableFrame READ tableFrame WRITE setTableFrame NOTIFY framesChanged)
    Q_PROPERTY(QRectF cleanButtonFrame READ cleanButtonFrame WRITE setCleanButtonFrame NOTIFY
                   framesChanged)

  public:
    // Points.
    static constexpr double kCollapsedHeight = 60.0;
    static constexpr double kExpandedHeight = 76.0;  ///< without the rows
    static constexpr double kRowHeight = 30.0;
    /// More rows are cut off.
    static constexpr int kVisibleRows = 8;
    /// Levels of folders that count for a row's size.
    static constexpr int kSizeDepth = 3;
    static constexpr std::string_view kSizeUnknown = "计算中...";
    static constexpr std::string_view kCleanTitle = "清理";

    CleanItemCardView(QString title, QString icon, const CardServices& services);
    ~CleanItemCardView() override;

    /// Not owned; none: taps on rows are dropped.
    void setDelegate(CleanItemCardViewDelegate* delegate) { delegate_ = delegate; }

    [[nodiscard]] const QString& title() const { return title_; }
    [[nodiscard]] const QString& icon() const { return icon_; }
    [[nodiscard]] const QString& sizeText() const { return sizeText_; }
    [[nodiscard]] static QString cleanButtonTitle();
    [[nodiscard]] bool isExpanded() const { return isExpanded_; }
    [[nodiscard]] QString expandIcon() const;
    [[nodiscard]] bool animated() const { return animated_; }
    [[nodiscard]] double intrinsicContentHeight() const;
    [[nodiscard]] double tableHeight() const;
    [[nodiscard]] FileListModel* fileList() { return &fileList_; }

    [[nodiscard]] QRectF tableFrame() const { return tableFrame_; }
    void setTableFrame(const QRectF& frame);
    [[nodiscard]] QRectF cleanButtonFrame() const { return cleanButtonFrame_; }
    void setCleanButtonFrame(const QRectF& frame);

    void updateSize(const QString& size);
    /// Shows the rows at once and their sizes when they have been measured. The sizes of an earlier
    /// list that arrive late fill in what they can.
    void updateFileList(std::vector<std::string> rows);
    Q_INVOKABLE void toggleExpanded(bool animated);
    Q_INVOKABLE void expandButtonTapped() { toggleExpanded(true); }
    /// A row was tapped.
    Q_INVOKABLE void didSelectRow(int row);
    /// Whether a point of the card lies in the table, which it does only while that is unfolded.
    [[nodiscard]] bool isPointInFileTableView(QPointF point) const;

    /// Bytes of visible files beneath `path`; links are not followed. Thread-safe.
    [[nodiscard]] std::uint64_t sizeOfDirectoryAtPath(const std::string& path,
                                                      int maxDepth = kSizeDepth) const;
    [[nodiscard]] static bool isDiagnosticPath(std::string_view path);

  Q_SIGNALS:
    void sizeTextChanged();
    void isExpandedChanged();
    void heightChanged();
    void framesChanged();
    /// The clean button was pressed.
    void cleanTapped();
    /// The card was tapped where neither its button nor a row is.
    void tapped();

  private:
    QString title_;
    QString icon_;
    QString sizeText_;
    CardServices services_;
    FileListModel fileList_;
    CleanItemCardViewDelegate* delegate_ = nullptr;
    QRectF tableFrame_;
    QRectF cleanButtonFrame_;
    bool isExpanded_ = false;
    bool animated_ = false;
    std::stop_source closing_;  ///< ends what runs in the background once the card goes
};

}  // namespace sweepwright::ui
