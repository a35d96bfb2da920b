#include "ui/kit/SymbolProvider.h"

#include <QFile>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include "platform/log/Log.h"

namespace sweepwright::ui {

namespace {

constexpr int kUsualPixels = 28;

// Turns black on nothing into `color`, white into nothing.
void takeColor(QImage& image, const QColor& color) {
    for (int y = 0; y < image.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            // Premultiplied: the part of the cover that is not white is the ink.
            const int ink = qAlpha(line[x]) - qRed(line[x]);
            const int alpha = ink * color.alpha() / 255;
            line[x] = qPremultiply(qRgba(color.red(), color.green(), color.blue(), alpha));
        }
    }
}

}  // namespace

const QString SymbolProvider::kIdentifier = QStringLiteral("symbol");

SymbolProvider::SymbolProvider() : QQuickImageProvider(QQuickImageProvider::Image) {}

QImage SymbolProvider::symbol(const QString& name, int pixels, const QColor& color) {
    QSvgRenderer renderer(QStringLiteral(":/symbols/%1.svg").arg(name));
    if (!renderer.isValid()) {
        platform::log("❌ no symbol named {}", name.toStdString());
        return {};
    }
    QImage image(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    renderer.render(&painter);
    painter.end();
    takeColor(image, color);
    return image;
}

QImage SymbolProvider::requestImage(const QString& id, QSize* size, const QSize& requestedSize) {
    const qsizetype mark = id.indexOf(QLatin1Char('?'));
    const QString name = mark < 0 ? id : id.left(mark);
    const QColor color = mark < 0 ? QColor(Qt::black) : QColor(QLatin1Char('#') + id.mid(mark + 1));
    const int pixels = requestedSize.width() > 0 ? requestedSize.width() : kUsualPixels;
    QImage image = symbol(name, pixels, color);
    if (size != nullptr) *size = image.size();
    return image;
}

}  // namespace sweepwright::ui
