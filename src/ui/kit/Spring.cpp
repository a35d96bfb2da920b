#include "ui/kit/Spring.h"

#include <algorithm>
#include <cmath>

namespace sweepwright::ui {

namespace {

// Below this a spring would swing for ever and have no frequency that settles in time.
constexpr double kLeastDamping = 0.01;
constexpr double kCritical = 1.0;

}  // namespace

Spring::Spring(double duration, double dampingRatio, double initialVelocity)
    : duration_(std::max(duration, 0.0)),
      damping_(std::clamp(dampingRatio, kLeastDamping, kCritical)),
      initialVelocity_(initialVelocity) {
    if (duration_ > 0.0) frequency_ = settledFrequency();
}

// The envelope of the swing at the end of the motion if the spring had this frequency.
double Spring::swingLeft(double frequency) const {
    if (damping_ >= kCritical) {
        const double slope = frequency - initialVelocity_;
        return std::abs(1.0 + slope * duration_) * std::exp(-frequency * duration_);
    }
    const double damped = frequency * std::sqrt(1.0 - damping_ * damping_);
    const double sine = (damping_ * frequency - initialVelocity_) / damped;
    return std::sqrt(1.0 + sine * sine) * std::exp(-damping_ * frequency * duration_);
}

double Spring::settledFrequency() const {
    double low = 0.0;
    double high = 1.0 / duration_;
    while (swingLeft(high) > kRest) {
        low = high;
        high *= 2.0;
    }
    constexpr int kHalvings = 60;
    for (int i = 0; i < kHalvings; ++i) {
        const double middle = (low + high) / 2.0;
        (swingLeft(middle) > kRest ? low : high) = middle;
    }
    return high;
}

double Spring::position(double seconds) const {
    if (seconds >= duration_) return 1.0;
    if (seconds <= 0.0) return 0.0;
    if (damping_ >= kCritical) {
        return 1.0 -
               (1.0 + (frequency_ - initialVelocity_) * seconds) * std::exp(-frequency_ * seconds);
    }
    const double damped = frequency_ * std::sqrt(1.0 - damping_ * damping_);
    const double sine = (damping_ * frequency_ - initialVelocity_) / damped;
    const double angle = damped * seconds;
    return 1.0 -
           std::exp(-damping_ * frequency_ * seconds) * (std::cos(angle) + sine * std::sin(angle));
}

double Spring::velocity(double seconds) const {
    if (seconds >= duration_) return 0.0;
    if (seconds <= 0.0) return initialVelocity_;
    if (damping_ >= kCritical) {
        const double slope = frequency_ - initialVelocity_;
        return (frequency_ * (1.0 + slope * seconds) - slope) * std::exp(-frequency_ * seconds);
    }
    const double damped = frequency_ * std::sqrt(1.0 - damping_ * damping_);
    const double decay = damping_ * frequency_;
    const double sine = (decay - initialVelocity_) / damped;
    const double angle = damped * seconds;
    return std::exp(-decay * seconds) *
           ((decay - sine * damped) * std::cos(angle) + (decay * sine + damped) * std::sin(angle));
}

}  // namespace sweepwright::ui
