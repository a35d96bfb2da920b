#pragma once

#include <QObject>
#include <string_view>

#include <QtQml/qqmlregistration.h>

#include "platform/queue/NotificationCenter.h"

namespace sweepwright::ui {

/// Tells the shell how a screen scrolls, so that the floating bar can hide. A screen owns one and
/// its view's list calls it.
class ScrollReporter : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by a screen's controller")

  public:
    static constexpr std::string_view kNotification = "TabBarScrollNotification";
    static constexpr std::string_view kOffset = "contentOffsetY";
    static constexpr std::string_view kLastOffset = "lastContentOffsetY";

    explicit ScrollReporter(platform::NotificationCenter& notifications, QObject* parent = nullptr)
        : QObject(parent), notifications_(notifications) {}

    /// Posts the offset, in points, and the one before it, then remembers it.
    Q_INVOKABLE void didScroll(double offsetY);
    /// A drag or the deceleration after it has ended here: only remembers the offset.
    Q_INVOKABLE void didEnd(double offsetY) { lastContentOffsetY_ = offsetY; }

    [[nodiscard]] double lastContentOffsetY() const { return lastContentOffsetY_; }

  private:
    platform::NotificationCenter& notifications_;
    double lastContentOffsetY_ = 0.0;
};

}  // namespace sweepwright::ui
