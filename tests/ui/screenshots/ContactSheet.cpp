#include "ui/screenshots/ContactSheet.h"

#include <QPainter>

namespace sweepwright::test {

namespace {

constexpr int kColumns = 5;
constexpr int kWidth = 390;
constexpr int kGap = 24;

}  // namespace

void ContactSheet::add(const QString& name, const QImage& picture) {
    const int height = kWidth * picture.height() / picture.width();
    cells_.append(
        {name, picture.scaled(kWidth, height, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)});
}

QImage ContactSheet::image() const {
    const int height = cells_.first().second.height();
    const int rows = (count() + kColumns - 1) / kColumns;
    QImage sheet(kColumns * (kWidth + kGap) + kGap, rows * (height + 2 * kGap) + kGap,
                 QImage::Format_RGB32);
    sheet.fill(QColor(120, 120, 126));
    QPainter painter(&sheet);
    painter.setPen(Qt::white);
    for (int i = 0; i < count(); ++i) {
        const QPoint at(kGap + i % kColumns * (kWidth + kGap),
                        kGap + i / kColumns * (height + 2 * kGap));
        painter.drawText(QRect(at, QSize(kWidth, kGap)), Qt::AlignVCenter, cells_[i].first);
        painter.drawImage(at + QPoint(0, kGap), cells_[i].second);
    }
    return sheet;
}

}  // namespace sweepwright::test
