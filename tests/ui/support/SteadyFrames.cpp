#include "ui/support/SteadyFrames.h"

#include <algorithm>

namespace sweepwright::test {

namespace {
constexpr qint64 kFrame = 16;  // milliseconds
}

SteadyFrames* SteadyFrames::current_ = nullptr;

SteadyFrames::SteadyFrames() {
    current_ = this;
    install();
}

SteadyFrames::~SteadyFrames() {
    uninstall();
    current_ = nullptr;
}

SteadyFrames::Hold::Hold() {
    hold(1);
}

SteadyFrames::Hold::~Hold() {
    hold(-1);
}

void SteadyFrames::hold(int change) {
    if (current_ == nullptr) return;
    current_->holds_ += change;
    current_->runTimer();
}

void SteadyFrames::step() {
    if (current_ != nullptr) current_->next();
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
