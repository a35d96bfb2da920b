#pragma once

#include <QAbstractAnimation>
#include <QObject>
#include <QQmlParserStatus>
#include <memory>

#include <QtQml/qqmlregistration.h>

#include "ui/kit/Spring.h"

namespace sweepwright::ui {

/// A number that springs after a target: the one spring that every view uses.
///
///     SpringMotion { id: lift; to: hidden ? 85 : -10; duration: 300; damping: 0.8 }
///     y: lift.value
///
/// A new target while it moves starts from where it is, with the speed it has. It jumps when
/// `animated` is false, before it is complete, and when the person wants reduced motion.
class SpringMotion : public QObject, public QQmlParserStatus {
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ELEMENT
    Q_PROPERTY(double to READ to WRITE setTo NOTIFY toChanged)
    Q_PROPERTY(double value READ value NOTIFY valueChanged)
    /// Milliseconds until it has settled.
    Q_PROPERTY(int duration READ duration WRITE setDuration NOTIFY settingsChanged)
    /// Damping ratio, 1: no overshoot.
    Q_PROPERTY(double damping READ damping WRITE setDamping NOTIFY settingsChanged)
    /// Initial velocity in ways per second, for a motion that starts at rest.
    Q_PROPERTY(double velocity READ velocity WRITE setVelocity NOTIFY settingsChanged)
    Q_PROPERTY(bool animated READ animated WRITE setAnimated NOTIFY settingsChanged)
    Q_PROPERTY(bool running READ running NOTIFY runningChanged)

  public:
    explicit SpringMotion(QObject* parent = nullptr);
    ~SpringMotion() override;

    void classBegin() override { complete_ = false; }
    void componentComplete() override;

    [[nodiscard]] double to() const { return to_; }
    void setTo(double to);
    [[nodiscard]] double value() const { return value_; }
    [[nodiscard]] int duration() const { return duration_; }
    void setDuration(int milliseconds);
    [[nodiscard]] double damping() const { return damping_; }
    void setDamping(double ratio);
    [[nodiscard]] double velocity() const { return velocity_; }
    void setVelocity(double waysPerSecond);
    [[nodiscard]] bool animated() const { return animated_; }
    void setAnimated(bool animated);
    [[nodiscard]] bool running() const;

    /// Puts the number at `value` at once, as its target, too.
    Q_INVOKABLE void jump(double value);

  Q_SIGNALS:
    void toChanged();
    void valueChanged();
    void settingsChanged();
    void runningChanged();
    /// The motion has come to its end.
    void settled();

  private:
    class Clock;
    void start();
    void place(double value);
    void advance(int milliseconds);

    double to_ = 0.0;
    double from_ = 0.0;
    double way_ = 0.0;  // of the motion under way
    double value_ = 0.0;
    int duration_ = 300;
    double damping_ = 1.0;
    double velocity_ = 0.0;
    bool animated_ = true;
    bool complete_ = true;
    Spring spring_{0.0, 1.0};
    std::unique_ptr<Clock> clock_;
};

}  // namespace sweepwright::ui
