#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/FileManager.h"

namespace sweepwright {

/// The directories on the way down of a walk that follows links, so that none is entered again: a
/// link cycle ends where it closes.
class LinkedWalk {
  public:
    /// Stands for a directory on the way while it lives.
    class Step {
      public:
        explicit Step(LinkedWalk& walk) : walk_(&walk) {}
        Step(Step&& other) noexcept : walk_(std::exchange(other.walk_, nullptr)) {}
        Step& operator=(Step&&) = delete;
        Step(const Step&) = delete;
        Step& operator=(const Step&) = delete;
        ~Step() {
            if (walk_ != nullptr) walk_->way_.pop_back();
        }

      private:
        LinkedWalk* walk_;
    };

    /// Goes down into a directory; none when it is on the way already.
    std::optional<Step> enter(const platform::FileAttributes& directory) {
        const std::pair identity{directory.device, directory.inode};
        for (const auto& above : way_)
            if (above == identity) return std::nullopt;
        way_.push_back(identity);
        return Step(*this);
    }

  private:
    std::vector<std::pair<std::uint64_t, std::uint64_t>> way_;
};

}  // namespace sweepwright
