#include "ui/support/SteadyFrames.h"

#include <algorithm>

namespace sweepwright::test {

namespace {
constexpr qint64 kFrame = 16;  // milliseconds
}

SteadyFrames* SteadyFrames::installed_ = nullptr;

void SteadyFrames::install() {
    installed_ = new SteadyFrames;  // never destroyed: animations end with the program
    installed_->QAnimationDriver::install();
}

SteadyFrames::Hold::Hold() {
    hold(1);
}

SteadyFrames::Hold::~Hold() {
    hold(-1);
}

void SteadyFrames::hold(int change) {
    if (installed_ == nullptr) return;
    installed_->holds_ += change;
    installed_->runTimer();
}

void SteadyFrames::step() {
    if (installed_ != nullptr) installed_->next();
}

void SteadyFrames::next() {
    if (!isRunning()) return;
    elapsed_ += std::min(kFrame, sinceFrame_.restart());
    advance();
}

void SteadyFrames::start() {
    elapsed_ = 0;
    sinceFrame_.start();
    QAnimationDriver::start();
    runTimer();
}

void SteadyFrames::stop() {
    QAnimationDriver::stop();
    runTimer();
}

void SteadyFrames::timerEvent(QTimerEvent* /*event*/) {
    next();
}

void SteadyFrames::runTimer() {
    if (holds_ == 0 && isRunning()) {
        timer_.start(static_cast<int>(kFrame), this);
    } else {
        timer_.stop();
    }
}

}  // namespace sweepwright::test
