#pragma once

namespace sweepwright::ui {

/// The motion of a damped oscillator from 0 to 1, told by when it has settled and how it is
/// damped, as the numbers of a spring animation are given.
///
/// The stiffness is chosen so that the swing that is left after `duration` is one thousandth of the
/// way: the motion ends there, at exactly 1.
class Spring {
  public:
    /// What may be left of the swing when the motion ends.
    static constexpr double kRest = 0.001;

    /// `duration` in seconds. `dampingRatio` 1 and above never overshoots; the smaller, the longer
    /// it swings. `initialVelocity` in ways per second: 1 covers the whole way in one second.
    explicit Spring(double duration, double dampingRatio, double initialVelocity = 0.0);

    /// Where the motion is `seconds` after its start; may pass 1 while it swings.
    [[nodiscard]] double position(double seconds) const;
    /// How fast it goes then, in ways per second.
    [[nodiscard]] double velocity(double seconds) const;

    [[nodiscard]] double duration() const { return duration_; }
    /// Undamped angular frequency, radians per second.
    [[nodiscard]] double frequency() const { return frequency_; }

  private:
    [[nodiscard]] double swingLeft(double frequency) const;
    [[nodiscard]] double settledFrequency() const;

    double duration_;
    double damping_;
    double initialVelocity_;
    double frequency_ = 0.0;
};

}  // namespace sweepwright::ui
