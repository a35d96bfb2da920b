#include "ui/presentation/CleanOutcome.h"

#include <string_view>

#include "engine/Failures.h"
#include "engine/StorageAnalyzer.h"
#include "platform/text/ControlText.h"
#include "ui/presentation/Texts.h"

namespace sweepwright::ui {

namespace {

/// How many there are and the reason of the first; nothing of an empty list.
QString line(const Texts& texts, std::string_view key, const FailureList& list) {
    if (list.count == 0) return {};
    return u'\n' + texts(key, {list.count, platform::escapedControls(list.entries.front().reason)});
}

}  // namespace

QString cleanOutcomeMessage(const Texts& texts, std::uint64_t cleanedBytes, CleanFigure figure,
                            const Failures& failures) {
    QString message = texts("Clean Success Message", {StorageAnalyzer::formatBytes(cleanedBytes)});
    message +=
        line(texts,
             figure == CleanFigure::WhatWent ? "Clean Left Entries" : "Clean Left Counted Entries",
             failures.failedEntries());
    message += line(texts, "Clean Unread Folders", failures.unreadableFolders());
    if (const auto error = failures.recordError())
        message +=
            u'\n' + texts("Clean Not Recorded", {platform::escapedControls(error->description)});
    return message;
}

}  // namespace sweepwright::ui
