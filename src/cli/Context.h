#pragma once

#include "apps/ThirdPartyAppCacheManager.h"
#include "cli/Confirmation.h"
#include "cli/Interruption.h"
#include "cli/Output.h"
#include "cli/Progress.h"
#include "engine/Failures.h"
#include "engine/FileCleanerEngine.h"

namespace sweepwright::cli {

/// What a command works with beside the shared managers, which stand on the current device.
class Context {
  public:
    Context(Output& output, Progress& progress, Interruption& interruption)
        : output_(output), progress_(progress), interruption_(interruption) {}
    ~Context();
    Context(const Context&) = delete;
    Context& operator=(const Context&) = delete;

    [[nodiscard]] Output& output() { return output_; }
    [[nodiscard]] Progress& progress() { return progress_; }
    [[nodiscard]] Interruption& interruption() { return interruption_; }

    /// What the command could not read, remove or record; who runs it tells them in the end.
    [[nodiscard]] Failures& failures() { return failures_; }
    /// The shared engine and the shared manager of apps, whose failures are those above.
    [[nodiscard]] FileCleanerEngine& engine();
    [[nodiscard]] ThirdPartyAppCacheManager& apps();

  private:
    Output& output_;
    Progress& progress_;
    Interruption& interruption_;
    Failures failures_;
    FileCleanerEngine* engine_ = nullptr;
    ThirdPartyAppCacheManager* apps_ = nullptr;
};

}  // namespace sweepwright::cli
