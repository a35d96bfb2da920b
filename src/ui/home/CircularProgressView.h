#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QVariantAnimation>

#include <QtQml/qqmlregistration.h>

namespace sweepwright::ui {

/// A ring that is filled from the top, clockwise, as far as `progress` says. It is painted, since
/// the strokes of a shape have hard edges.
class CircularProgressView : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    /// From 0 to 1; beyond either it is drawn empty or full. Setting it moves nothing.
    Q_PROPERTY(double progress READ progress WRITE setProgress NOTIFY progressChanged)
    Q_PROPERTY(QColor progressColor READ progressColor WRITE setProgressColor NOTIFY styleChanged)
    Q_PROPERTY(QColor trackColor READ trackColor WRITE setTrackColor NOTIFY styleChanged)
    /// Points.
    Q_PROPERTY(double lineWidth READ lineWidth WRITE setLineWidth NOTIFY styleChanged)
    /// Points at each edge of the item that the ring leaves to its shadow.
    Q_PROPERTY(double shadowRoom READ shadowRoom WRITE setShadowRoom NOTIFY styleChanged)
    /// What is filled at this moment, on its way to `progress`.
    Q_PROPERTY(double strokeEnd READ strokeEnd NOTIFY strokeEndChanged)

  public:
    /// Milliseconds that an animated change lasts.
    static constexpr int kDuration = 500;

    explicit CircularProgressView(QQuickItem* parent = nullptr);

    [[nodiscard]] double progress() const { return progress_; }
    void setProgress(double progress) { setProgress(progress, false); }
    /// Moves to `progress`, gently when animated; not for a person who wants reduced motion.
    Q_INVOKABLE void setProgress(double progress, bool animated);

    [[nodiscard]] QColor progressColor() const { return progressColor_; }
    void setProgressColor(const QColor& color);
    [[nodiscard]] QColor trackColor() const { return trackColor_; }
    void setTrackColor(const QColor& color);
    [[nodiscard]] double lineWidth() const { return lineWidth_; }
    void setLineWidth(double width);
    [[nodiscard]] double shadowRoom() const { return shadowRoom_; }
    void setShadowRoom(double room);
    [[nodiscard]] double strokeEnd() const { return strokeEnd_; }
    /// From the middle of the ring to the middle of its line, in points; 0 when there is no room.
    [[nodiscard]] double radius() const;

    void paint(QPainter* painter) override;

  Q_SIGNALS:
    void progressChanged();
    void styleChanged();
    void strokeEndChanged();

  private:
    template <class Value>
    void change(Value& held, const Value& value);
    void setStrokeEnd(double end);

    double progress_ = 0.0;
    double strokeEnd_ = 0.0;
    double lineWidth_ = 15.0;
    double shadowRoom_ = 0.0;
    QColor progressColor_;
    QColor trackColor_;
    QVariantAnimation progressAnimation_;
};

}  // namespace sweepwright::ui
