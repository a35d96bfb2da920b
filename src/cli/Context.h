#pragma once

#include "cli/Confirmation.h"
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

  private:
    Output& output_;
    Progress& progress_;
    Interruption& interruption_;
};

}  // namespace sweepwright::cli
