#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace sweepwright::cli {

/// The line that tells how far long work is. A thread of its own draws the newest state, at most
/// 60 times a second, so that no work ever waits for a terminal; it starts with the first update.
class Progress {
  public:
    /// Where the line appears.
    struct Screen {
        std::function<void(std::string_view)> write;
        std::function<std::size_t()> columns;
        bool unicode = true;  ///< whether the terminal shows block characters
    };

    static constexpr std::chrono::milliseconds kFrame{17};

    /// Standard error, when that is a terminal that can move its cursor and `wanted`; else nothing
    /// is ever drawn.
    static std::unique_ptr<Progress> onStandardError(bool wanted);

    /// Draws on `screen`; without `write` nothing is ever drawn.
    explicit Progress(Screen screen);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// The item in hand, and the share of the work that is done, from 0 to 1. Returns at once.
    void update(std::string_view name, double fraction);

    /// Takes the line away; a later update() brings it back. Thread-safe, like all of this.
    void clear();

    /// The line for a terminal of `columns`: a bar, the share in percent, the name.
    static std::string lineFor(std::string_view name, double fraction, std::size_t columns,
                               bool unicode);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

}  // namespace sweepwright::cli
