#pragma once

#include <QString>
#include <cstdint>

namespace sweepwright {
class Failures;
}

namespace sweepwright::ui {

class Texts;

/// What the figure of a clean counts: what went, or what was there before and may in part still be.
enum class CleanFigure { WhatWent, WhatWasThere };

/// The message about a clean that is through: what it freed and, a line each, what it could not
/// remove, read or record.
QString cleanOutcomeMessage(const Texts& texts, std::uint64_t cleanedBytes, CleanFigure figure,
                            const Failures& failures);

}  // namespace sweepwright::ui
