#include "ui/home/CircularProgressView.h"

#include <QEasingCurve>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <numbers>

#include "ui/kit/Appearance.h"

namespace sweepwright::ui {

namespace {

constexpr int kTop = 90 * 16;       // QPainter counts sixteenths of a degree from three o'clock
constexpr int kCircle = -360 * 16;  // clockwise

struct Shadow {
    double offsetY;
    double radius;  // of the blur, points
    double strength;
};
constexpr Shadow kRingShadow{6.0, 12.0, 0.1};
constexpr Shadow kProgressShadow{2.0, 4.0, 0.3};

struct Arc {
    QRectF box;
    double width = 0.0;
    double share = 0.0;

    void draw(QPainter& painter, const QColor& color, double penWidth) const {
        painter.setPen(QPen(color, penWidth, Qt::SolidLine, Qt::RoundCap));
        painter.drawArc(box, kTop, static_cast<int>(std::lround(kCircle * share)));
    }
};

// How dark a line of `width` that is blurred by `sigma` is at `distance` from its middle, 0 to 1.
double softened(double distance, double width, double sigma) {
    const double scale = sigma * std::numbers::sqrt2;
    return 0.5 * (std::erf((width / 2.0 - distance) / scale) +
                  std::erf((width / 2.0 + distance) / scale));
}

// A blurred line is a stack of lines, each a little narrower than the one below it, that darken to
// the blur's profile.
void drawShadow(QPainter& painter, const Arc& arc, const Shadow& shadow) {
    constexpr int kSteps = 14;
    constexpr double kReach = 2.2;  // in sigmas, beyond which nothing is seen
    const double sigma = shadow.radius / 2.0;
    const double widest = arc.width / 2.0 + kReach * sigma;
    painter.save();
    painter.translate(0.0, shadow.offsetY);
    double below = 0.0;
    for (int step = 1; step <= kSteps; ++step) {
        const double distance = widest * (1.0 - static_cast<double>(step) / (kSteps + 1));
        const double wanted = shadow.strength * softened(distance, arc.width, sigma);
        const double alpha = 1.0 - (1.0 - wanted) / (1.0 - below);
        below = wanted;
        arc.draw(painter, QColor::fromRgbF(0.0F, 0.0F, 0.0F, static_cast<float>(alpha)),
                 2.0 * distance);
    }
    painter.restore();
}

}  // namespace

CircularProgressView::CircularProgressView(QQuickItem* parent)
    : QQuickPaintedItem(parent),
      progressColor_(0x00, 0x7a, 0xff),
      trackColor_(0xaa, 0xaa, 0xaa, 51) {
    setAntialiasing(true);
    QEasingCurve curve(QEasingCurve::BezierSpline);
    curve.addCubicBezierSegment({0.42, 0.0}, {0.58, 1.0}, {1.0, 1.0});
    progressAnimation_.setEasingCurve(curve);
    progressAnimation_.setDuration(kDuration);
    connect(&progressAnimation_, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& value) { setStrokeEnd(value.toDouble()); });
}

void CircularProgressView::setProgress(double progress, bool animated) {
    const double wanted = std::clamp(std::isnan(progress) ? 0.0 : progress, 0.0, 1.0);
    const bool changed = wanted != progress_;
    progress_ = wanted;
    progressAnimation_.stop();
    if (animated && wanted != strokeEnd_ && !Appearance::shared().reducedMotion()) {
        progressAnimation_.setStartValue(strokeEnd_);
        progressAnimation_.setEndValue(wanted);
        progressAnimation_.start();
    } else {
        setStrokeEnd(wanted);
    }
    if (changed) Q_EMIT progressChanged();
}

void CircularProgressView::setStrokeEnd(double end) {
    if (end == strokeEnd_) return;
    strokeEnd_ = end;
    update();
    Q_EMIT strokeEndChanged();
}

template <class Value>
void CircularProgressView::change(Value& held, const Value& value) {
    if (held == value) return;
    held = value;
    update();
    Q_EMIT styleChanged();
}

void CircularProgressView::setProgressColor(const QColor& color) {
    change(progressColor_, color);
}

void CircularProgressView::setTrackColor(const QColor& color) {
    change(trackColor_, color);
}

void CircularProgressView::setLineWidth(double width) {
    change(lineWidth_, width);
}

void CircularProgressView::setShadowRoom(double room) {
    change(shadowRoom_, room);
}

double CircularProgressView::radius() const {
    return std::max(0.0, (std::min(width(), height()) - 2.0 * shadowRoom_ - lineWidth_) / 2.0);
}

void CircularProgressView::paint(QPainter* painter) {
    const double reach = radius();
    if (reach <= 0.0) return;
    painter->setRenderHint(QPainter::Antialiasing);
    const QPointF centre(width() / 2.0, height() / 2.0);
    const QRectF box(centre - QPointF(reach, reach), centre + QPointF(reach, reach));
    const Arc track{box, lineWidth_, 1.0};
    const Arc filled{box, lineWidth_, strokeEnd_};
    drawShadow(*painter, track, kRingShadow);
    track.draw(*painter, trackColor_, lineWidth_);
    if (strokeEnd_ <= 0.0) return;
    drawShadow(*painter, filled, kProgressShadow);
    filled.draw(*painter, progressColor_, lineWidth_);
}

}  // namespace sweepwright::ui
