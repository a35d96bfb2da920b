#include "cli/PreviewOutput.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <limits>
#include <span>
#include <vector>

#include <fmt/format.h>

#include "cli/Json.h"
#include "cli/SizedRows.h"
#include "cli/Translation.h"
#include "cli/Wording.h"

namespace sweepwright::cli {

namespace {

using Entry = CleanPreview::Entry;
using Kept = CleanPreview::Kept;

/// How many parts, entries of each and kept entries of each reason a person sees unasked.
constexpr std::size_t kMostShown = 10;

struct PreviewPart {
    CleanPart part;
    std::uint64_t bytes = 0;
    std::vector<Entry> entries;  ///< largest first
};

/// The parts that would free something or lose an entry, largest first.
std::vector<PreviewPart> partsOf(const CleanPreview& preview) {
    std::vector<CleanPreview::Part> all = preview.parts;
    if (all.empty()) all.push_back({{}, preview.wouldFree, preview.entries.size()});
    std::vector<PreviewPart> parts;
    std::span<const Entry> rest(preview.entries);
    for (const CleanPreview::Part& each : all) {
        const auto own = rest.first(each.entries);
        rest = rest.subspan(each.entries);
        if (own.empty() && each.wouldFree == 0) continue;
        PreviewPart& part = parts.emplace_back(each.part, each.wouldFree);
        part.entries.assign(own.begin(), own.end());
        std::ranges::stable_sort(part.entries, std::ranges::greater{}, &Entry::size);
    }
    std::ranges::stable_sort(parts, std::ranges::greater{}, &PreviewPart::bytes);
    return parts;
}

void showParts(Output& output, const std::vector<PreviewPart>& parts, const PreviewView& view,
               std::size_t most) {
    Table table({{.title = wording::kSize, .align = Align::Right},
                 {.title = wording::kPath, .holds = view.paths}});
    std::uint64_t bytesLeft = 0;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const auto& [part, bytes, entries] = parts[i];
        if (i >= most) {
            bytesLeft += bytes;
            continue;
        }
        table.section(wording::partHeading(output.shown(view.nameOf(part)), bytes, entries.size()));
        for (const Entry& entry : std::span(entries).first(std::min(most, entries.size())))
            table.row({sizeText(entry.size), entry.path});
        if (entries.size() > most) table.remark(wording::moreEntries(entries.size() - most));
    }
    if (parts.size() > most) table.section(wording::moreApps(parts.size() - most, bytesLeft));
    output.table(table);
}

void showKept(Output& output, std::vector<Kept> kept, std::size_t most) {
    if (kept.empty()) return;
    output.line("");
    output.note(wording::keptHeading(kept.size()));
    std::ranges::stable_sort(kept, {}, &Kept::reason);
    Table table(
        {{.title = wording::kReason}, {.title = wording::kPath, .holds = Holds::OwnedPath}});
    std::size_t ofReason = 0;
    for (std::size_t i = 0; i < kept.size(); ++i) {
        const KeptReason reason = kept[i].reason;
        if (ofReason++ < most) table.row({translated(keptReasonName(reason)), kept[i].path});
        if (i + 1 < kept.size() && kept[i + 1].reason == reason) continue;
        if (ofReason > most) table.remark(wording::moreEntries(ofReason - most));
        ofReason = 0;
    }
    output.table(table);
}

void showToPerson(Output& output, const CleanPreview& preview, const PreviewView& view) {
    const std::size_t most = view.full ? std::numeric_limits<std::size_t>::max() : kMostShown;
    if (const auto parts = partsOf(preview); !parts.empty()) showParts(output, parts, view, most);
    showKept(output, preview.kept, most);
    output.line("");
}

void showToProgram(Output& output, const CleanPreview& preview) {
    Table table({{}, {.align = Align::Right}, {.holds = Holds::Path}});
    for (const Entry& entry : preview.entries)
        table.row({"remove", sizeText(entry.size), entry.path});
    for (const Kept& entry : preview.kept)
        table.row({"keep", std::string(keptReasonName(entry.reason)), entry.path});
    output.table(table);
}

Json previewDocument(const CleanPreview& preview) {
    Json entries = Json::array();
    for (const Entry& entry : preview.entries)
        entries.push_back(sizedValue(entry.path, entry.size));
    Json kept = Json::array();
    for (const Kept& entry : preview.kept) {
        Json value = Json::object();
        setPath(value, "path", entry.path);
        value["reason"] = keptReasonName(entry.reason);
        setPath(value, "by", entry.by);
        kept.push_back(std::move(value));
    }
    return Json{{"wouldFree", preview.wouldFree},
                {"entries", std::move(entries)},
                {"kept", std::move(kept)}};
}

}  // namespace

void addPreviewOptions(std::vector<Option>& options) {
    options.push_back({.name = "--dry-run",
                       .value = "",
                       .help = "tell what would go and what stays; remove nothing"});
    options.push_back(
        {.name = "--full", .value = "", .help = "with --dry-run: every entry on a terminal, too"});
}

Outcome checkPreviewOptions(const Call& call) {
    if (call.has("--full") && !call.has("--dry-run"))
        return wrongWords(translated("--full goes with --dry-run"));
    return {};
}

void showPreview(Output& output, const CleanPreview& preview, const PreviewView& view) {
    if (output.json()) return output.document(previewDocument(preview));
    if (output.toPerson()) {
        showToPerson(output, preview, view);
    } else {
        showToProgram(output, preview);
    }
    output.line(told("would free {}", sizeText(preview.wouldFree)));
}

}  // namespace sweepwright::cli
