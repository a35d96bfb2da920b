#pragma once

#include <QAnimationDriver>
#include <QBasicTimer>
#include <QElapsedTimer>

namespace sweepwright::test {

/// While one lives, animations see frames of a sixtieth of a second at most, however long the
/// machine takes for one: between two looks at a moving thing it moves no further than that. For
/// tests that look at a thing on its way, but not for a finger's: what it lets go of goes on by the
/// clock of its events. One at a time, on the main thread.
class SteadyFrames : public QAnimationDriver {
  public:
    SteadyFrames();
    ~SteadyFrames() override;

    /// While one lives, frames come by step() alone. Both do nothing where there are no steady
    /// ones.
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
    void next();
    static void hold(int change);
    void runTimer();

    static SteadyFrames* current_;
    QBasicTimer timer_;
    QElapsedTimer sinceFrame_;
    qint64 elapsed_ = 0;  ///< milliseconds since start(), as animations see them
    int holds_ = 0;
};

}  // namespace sweepwright::test
