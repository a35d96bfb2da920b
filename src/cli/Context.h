#pragma once

#include <string>
#include <utility>

#include "cli/Interruption.h"
#include "cli/Output.h"
#include "cli/Progress.h"

namespace sweepwright::cli {

/// What a command works with beside the shared managers, which stand on the current device.
class Context {
  public:
    Context(Output& output, Progress& progress, Interruption& interruption)
        : output_(output), progress_(progress), interruption_(interruption) {}

    [[nodiscard]] Output& output() { return output_; }
    [[nodiscard]] Progress& progress() { return progress_; }
    [[nodiscard]] Interruption& interruption() { return interruption_; }

    /// What a person calls the current device; empty as long as none is open.
    [[nodiscard]] const std::string& device() const { return device_; }
    void setDevice(std::string device) { device_ = std::move(device); }

  private:
    Output& output_;
    Progress& progress_;
    Interruption& interruption_;
    std::string device_;
};

}  // namespace sweepwright::cli
