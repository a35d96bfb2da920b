#pragma once

#include <functional>
#include <string>

#include "cli/Context.h"
#include "cli/Failure.h"
#include "engine/CleanObserver.h"

namespace sweepwright::cli {

/// Why a clean needs a yes.
std::string removesData();

/// The dry run of a clean; `observer`, if there is one, hears of the folders that can't be read.
using DryRun = std::function<platform::Result<CleanPreview>(CleanObserver* observer)>;

/// A clean that a person is to agree to.
struct CleanQuestion {
    std::string from;                 ///< what it goes through: "9 categories"
    bool emptiesCustomPaths = false;  ///< whether the custom paths are part of it
    DryRun dryRun;                    ///< what it would do
};

/// Does a dry run, with its progress.
platform::Result<CleanPreview> findWhatWouldGo(Context& context, const DryRun& dryRun,
                                               CleanObserver* observer = nullptr);

/// Asks whether to clean, unless `sure`. The question tells the device, the custom paths, and how
/// many bytes and entries the dry run came to, which is done only when somebody is asked.
Outcome confirmClean(Context& context, const CleanQuestion& clean, bool sure);

}  // namespace sweepwright::cli
