#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cli/Command.h"
#include "cli/Failure.h"
#include "cli/Output.h"
#include "cli/Table.h"
#include "engine/CleanObserver.h"

namespace sweepwright::cli {

/// How a person sees a preview; a program gets every line, or the document, whatever it says.
struct PreviewView {
    /// What a part is called; one of CleanType::All is a clean that knows no parts.
    std::function<std::string(const CleanPart& part)> nameOf;
    /// Whether a path's app stands beside it: not where the parts are apps.
    Holds paths = Holds::OwnedPath;
    bool full = false;  ///< every line
};

/// The options of a command that can preview its clean: --dry-run and --full.
void addPreviewOptions(std::vector<Option>& options);
/// Refuses --full without --dry-run, which alone it is about.
Outcome checkPreviewOptions(const Call& call);

/// Tells what a clean would do. To a person: its parts by size, of each the sum and the largest
/// entries, and what stays by reason.
void showPreview(Output& output, const CleanPreview& preview, const PreviewView& view);

}  // namespace sweepwright::cli
