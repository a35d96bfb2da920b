#pragma once

#include <string>
#include <string_view>

#include "cli/Command.h"

namespace sweepwright::cli {

/// What the manual pages tell beside what the tables of commands and options say.
struct ManualFacts {
    std::string date;  ///< of the release, "2026-11-21"
    std::string website;
};

/// sweepctl(1) in mdoc, made of the tables that parsing and help are made of.
std::string commandManual(const Commands& commands, const ManualFacts& facts);

/// sweepwright(1).
std::string appManual(const ManualFacts& facts);

/// `text` as lines of mdoc input: broken after sentences and before column 80, with what mdoc would
/// take for a request or an escape made harmless. No line break ends it.
std::string mdocText(std::string_view text);

}  // namespace sweepwright::cli
