#include "ui/kit/SpringMotion.h"

#include "ui/kit/Appearance.h"

namespace sweepwright::ui {

namespace {
constexpr double kMillisecond = 0.001;
}

class SpringMotion::Clock : public QAbstractAnimation {
  public:
    explicit Clock(SpringMotion& motion) : motion_(motion) {}
    [[nodiscard]] int duration() const override { return motion_.duration_; }

  protected:
    void updateCurrentTime(int milliseconds) override {
        // Setting the clock back to 0 is no step of the motion.
        if (state() == Running) motion_.advance(milliseconds);
    }

  private:
    SpringMotion& motion_;
};

SpringMotion::SpringMotion(QObject* parent)
    : QObject(parent), clock_(std::make_unique<Clock>(*this)) {
    connect(clock_.get(), &QAbstractAnimation::stateChanged, this, &SpringMotion::runningChanged);
    connect(clock_.get(), &QAbstractAnimation::finished, this, &SpringMotion::settled);
}

SpringMotion::~SpringMotion() {
    clock_->disconnect(this);
}

void SpringMotion::componentComplete() {
    complete_ = true;
    jump(to_);
}

bool SpringMotion::running() const {
    return clock_->state() == QAbstractAnimation::Running;
}

void SpringMotion::setTo(double to) {
    if (to == to_) return;
    to_ = to;
    Q_EMIT toChanged();
    if (!complete_) return;
    if (animated_ && duration_ > 0 && !Appearance::shared().reducedMotion()) {
        start();
    } else {
        clock_->stop();
        place(to_);
        Q_EMIT settled();
    }
}

void SpringMotion::start() {
    double velocity = velocity_;
    const double way = to_ - value_;
    if (way == 0.0) {
        clock_->stop();
        Q_EMIT settled();
        return;
    }
    if (running()) {
        velocity = spring_.velocity(clock_->currentTime() * kMillisecond) * way_ / way;
    }
    from_ = value_;
    way_ = way;
    spring_ = Spring(duration_ * kMillisecond, damping_, velocity);
    clock_->stop();
    clock_->start();
}

void SpringMotion::advance(int milliseconds) {
    // Adding the way to the start need not give the target to the last bit.
    place(milliseconds >= duration_ ? to_
                                    : from_ + way_ * spring_.position(milliseconds * kMillisecond));
}

void SpringMotion::place(double value) {
    if (value == value_) return;
    value_ = value;
    Q_EMIT valueChanged();
}

void SpringMotion::jump(double value) {
    clock_->stop();
    place(value);
    if (to_ != value) {
        to_ = value;
        Q_EMIT toChanged();
    }
}

void SpringMotion::setDuration(int milliseconds) {
    if (milliseconds == duration_) return;
    duration_ = milliseconds;
    Q_EMIT settingsChanged();
}

void SpringMotion::setDamping(double ratio) {
    if (ratio == damping_) return;
    damping_ = ratio;
    Q_EMIT settingsChanged();
}

void SpringMotion::setVelocity(double waysPerSecond) {
    if (waysPerSecond == velocity_) return;
    velocity_ = waysPerSecond;
    Q_EMIT settingsChanged();
}

void SpringMotion::setAnimated(bool animated) {
    if (animated == animated_) return;
    animated_ = animated;
    Q_EMIT settingsChanged();
}

}  // namespace sweepwright::ui
