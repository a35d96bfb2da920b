#include "cli/Progress.h"

#include <algorithm>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <stop_token>
#include <thread>
#include <utility>

#include <fmt/format.h>

#include "cli/Text.h"
#include "platform/process/Terminal.h"
#include "platform/text/ControlText.h"
#include "platform/text/TextWidth.h"

namespace sweepwright::cli {

namespace {

constexpr std::string_view kEraseLine = "\r\x1b[K";

}  // namespace

struct Progress::State {
    Screen screen;
    std::mutex mutex;
    std::condition_variable_any changed;
    std::string name;
    double fraction = 0;
    bool dirty = false;  // an update that is not on the screen yet
    bool shown = false;  // a line is on the screen
    std::jthread painter;

    void paint(const std::stop_token& stop) {
        std::unique_lock lock(mutex);
        do {
            changed.wait_for(lock, stop, kFrame, [] { return false; });
            changed.wait(lock, stop, [this] { return dirty; });
            if (dirty && !stop.stop_requested()) draw();
        } while (!stop.stop_requested());
    }

    /// With the mutex held.
    void draw() {
        dirty = false;
        shown = true;
        screen.write("\r" + lineFor(name, fraction, screen.columns(), screen.unicode) + "\x1b[K");
    }
};

std::unique_ptr<Progress> Progress::onStandardError(bool wanted) {
    Screen screen;
    if (wanted && platform::isTerminal(platform::StandardStream::Error) &&
        !platform::terminalIsDumb()) {
        screen.write = [](std::string_view text) {
            std::fwrite(text.data(), 1, text.size(), stderr);
            std::fflush(stderr);
        };
        screen.columns = [] { return platform::terminalColumns(platform::StandardStream::Error); };
        screen.unicode = platform::localeIsUtf8();
    }
    return std::make_unique<Progress>(std::move(screen));
}

Progress::Progress(Screen screen) : state_(std::make_unique<State>()) {
    state_->screen = std::move(screen);
}

Progress::~Progress() {
    clear();
    if (state_->painter.joinable()) {
        state_->painter.request_stop();
        state_->painter.join();
    }
}

void Progress::update(std::string_view name, double fraction) {
    if (!state_->screen.write) return;
    const std::scoped_lock lock(state_->mutex);
    state_->name = name;
    state_->fraction = fraction;
    state_->dirty = true;
    if (!state_->painter.joinable()) {
        state_->draw();  // at once, so that a person sees that work has begun
        state_->painter = std::jthread(
            [state = state_.get()](const std::stop_token& stop) { state->paint(stop); });
    }
    state_->changed.notify_all();
}

void Progress::clear() {
    const std::scoped_lock lock(state_->mutex);
    state_->dirty = false;
    if (std::exchange(state_->shown, false)) state_->screen.write(kEraseLine);
}

std::string Progress::lineFor(std::string_view name, double fraction, std::size_t columns,
                              bool unicode) {
    // A full last column would move the cursor on and leave the line behind.
    const std::size_t room = columns > 0 ? columns - 1 : 0;
    const double share = fraction >= 0 ? std::min(fraction, 1.0) : 0.0;  // no number counts as 0
    const std::string percent = fmt::format("{:3}%", static_cast<int>(share * 100));

    const std::size_t width = std::min<std::size_t>(room / 3, 30);
    const auto filled = static_cast<std::size_t>(share * static_cast<double>(width));
    const Drawing drawing(unicode);
    std::string line = repeated(drawing.bar, filled) + repeated(drawing.track, width - filled);
    if (width > 0) line += ' ';
    line += percent + "  ";
    const std::size_t used = platform::displayWidth(line);
    if (used >= room) return cutAtEnd(percent, room, drawing.ellipsis);
    return line + cutAtEnd(platform::escapedControls(name), room - used, drawing.ellipsis);
}

}  // namespace sweepwright::cli
