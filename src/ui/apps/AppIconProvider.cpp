#include "ui/apps/AppIconProvider.h"

#include <QBrush>
#include <QPainter>
#include <QQuickTextureFactory>
#include <QRunnable>
#include <algorithm>
#include <atomic>

namespace sweepwright::ui {

namespace {

constexpr int kUsualPixels = 100;

// One icon that a view waits for. Whoever finishes it deletes it: the engine.
class Response : public QQuickImageResponse, public QRunnable {
  public:
    Response(AppIconProvider& provider, std::uint64_t number, int pixels)
        : provider_(provider), number_(number), pixels_(pixels) {
        setAutoDelete(false);
    }

    void run() override {
        // A row that has gone by needs its icon no more.
        if (!cancelled_) image_ = provider_.icon(number_, pixels_);
        Q_EMIT finished();
    }
    void cancel() override { cancelled_ = true; }
    [[nodiscard]] QQuickTextureFactory* textureFactory() const override {
        return QQuickTextureFactory::textureFactoryForImage(image_);
    }

  private:
    AppIconProvider& provider_;
    std::uint64_t number_;
    int pixels_;
    QImage image_;
    std::atomic<bool> cancelled_{false};
};

// The largest square in the middle.
QImage squareOf(const QImage& image) {
    const int side = std::min(image.width(), image.height());
    if (image.width() == image.height()) return image;
    return image.copy((image.width() - side) / 2, (image.height() - side) / 2, side, side);
}

}  // namespace

AppIconProvider::AppIconProvider(const AppIconStore& icons) : icons_(icons), cache_(kCacheBytes) {
    threads_.setMaxThreadCount(kThreads);
    threads_.setThreadPriority(QThread::LowPriority);
}

AppIconProvider::~AppIconProvider() {
    threads_.waitForDone();
}

QQuickImageResponse* AppIconProvider::requestImageResponse(const QString& id,
                                                           const QSize& requestedSize) {
    const int pixels = requestedSize.width() > 0 ? requestedSize.width() : kUsualPixels;
    auto* response = new Response(*this, id.toULongLong(), pixels);
    threads_.start(response);
    return response;
}

QImage AppIconProvider::icon(std::uint64_t number, int pixels) {
    const QString key = QStringLiteral("%1@%2").arg(number).arg(pixels);
    {
        const QMutexLocker lock(&mutex_);
        if (const QImage* known = cache_.object(key)) return *known;
    }
    const auto picture = icons_.image(number);
    QImage drawn = rounded(picture ? *picture : platform::Image(), pixels);
    const QMutexLocker lock(&mutex_);
    cache_.insert(key, new QImage(drawn), drawn.sizeInBytes());
    return drawn;
}

qsizetype AppIconProvider::cachedBytes() const {
    const QMutexLocker lock(&mutex_);
    return cache_.totalCost();
}

QImage AppIconProvider::rounded(const platform::Image& picture, int pixels) {
    QImage drawn(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
    drawn.fill(Qt::transparent);
    if (picture.empty()) return drawn;
    const QImage whole(picture.rgba.data(), static_cast<int>(picture.width),
                       static_cast<int>(picture.height), static_cast<qsizetype>(picture.width) * 4,
                       QImage::Format_RGBA8888);
    const QImage icon =
        squareOf(whole)
            .convertToFormat(QImage::Format_ARGB32_Premultiplied)
            .scaled(pixels, pixels, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    const double radius = pixels * kCornerRadius / kSide;
    QPainter painter(&drawn);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QBrush(icon));
    painter.drawRoundedRect(QRectF(0, 0, pixels, pixels), radius, radius);
    return drawn;
}

}  // namespace sweepwright::ui
