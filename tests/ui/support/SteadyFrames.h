#pragma once

#include <QAnimationDriver>
#include <QBasicTimer>

namespace sweepwright::test {

/// Lets animations see one frame of a sixtieth of a second after the other, however long the
/// machine takes for one: what passes between two looks at a moving thing is known. On the main
/// thread.
class SteadyFrames : public QAnimationDriver {
  public:
    /// From now on in this program.
    static void install();

    /// While one lives, frames come by step() alone. Both do nothing where it is not installed.
    class Hold {
      public:
        Hold();
        ~Hold();
        Hold(const Hold&) = delete;
        Hold& operator=(const Hold&) = delete;
    };
    static void step();

    [[nodiscard]] qint64 elapsed() const override { return elapsed_; }

  protected:
    void start() override;
    void stop() override;
    void timerEvent(QTimerEvent* event) override;

  private:
    SteadyFrames() = default;
    void next();
    static void hold(int change);
    void runTimer();

    static SteadyFrames* installed_;
    QBasicTimer timer_;
    qint64 elapsed_ = 0;  ///< milliseconds since start()
    int holds_ = 0;
};

}  // namespace sweepwright::test
