#pragma once

#include <QCache>
#include <QImage>
#include <QMutex>
#include <QQuickAsyncImageProvider>
#include <QThreadPool>
#include <cstdint>
#include <memory>

#include "ui/apps/AppIconStore.h"

namespace sweepwright::ui {

/// Draws the icons of a store, `image://appicon/<number>`, in the size asked for and with round
/// corners. It reads and decodes on threads of its own and remembers what it drew last.
class AppIconProvider : public QQuickAsyncImageProvider {
  public:
    /// Side and corner radius of an icon, points.
    static constexpr double kSide = 50.0;
    static constexpr double kCornerRadius = 10.0;
    /// What the drawn icons that are remembered may take, bytes.
    static constexpr int kCacheBytes = 16 << 20;
    /// Decoding more at once would take the processor from the frames.
    static constexpr int kThreads = 2;

    /// `icons` must outlive this.
    explicit AppIconProvider(const AppIconStore& icons);
    ~AppIconProvider() override;

    QQuickImageResponse* requestImageResponse(const QString& id,
                                              const QSize& requestedSize) override;

    /// The icon of this number as a square of `pixels`, from memory if it is there; a transparent
    /// one when there is none. Any thread.
    QImage icon(std::uint64_t number, int pixels);
    /// What the icons in memory take, bytes.
    [[nodiscard]] qsizetype cachedBytes() const;

    /// `picture` cut to a square of `pixels` whose corners are round in the proportion of an icon.
    static QImage rounded(const platform::Image& picture, int pixels);

  private:
    const AppIconStore& icons_;
    mutable QMutex mutex_;
    QCache<QString, QImage> cache_;
    QThreadPool threads_;
};

}  // namespace sweepwright::ui
