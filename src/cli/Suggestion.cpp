#include "cli/Suggestion.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <utility>

namespace sweepwright::cli {

namespace {

/// How many letters must be put in, left out, replaced or swapped with their neighbour to make `b`
/// of `a`.
std::size_t distance(std::string_view a, std::string_view b) {
    using Row = std::vector<std::size_t>;
    Row beforeLast;
    Row last(b.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        Row row(b.size() + 1, i + 1);
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = last[j] + (a[i] == b[j] ? 0 : 1);
            row[j + 1] = std::min({replaced, row[j] + 1, last[j + 1] + 1});
            const bool swapped = i > 0 && j > 0 && a[i] == b[j - 1] && a[i - 1] == b[j];
            if (swapped) row[j + 1] = std::min(row[j + 1], beforeLast[j - 1] + 1);
        }
        beforeLast = std::exchange(last, std::move(row));
    }
    return last.back();
}

}  // namespace

std::optional<std::string> nearest(std::string_view word, const std::vector<std::string>& known) {
    constexpr std::size_t kMaxWrong = 2;
    std::optional<std::string> best;
    std::size_t least = kMaxWrong + 1;
    for (const std::string& candidate : known) {
        const std::size_t wrong = distance(word, candidate);
        if (wrong < least && 2 * wrong < candidate.size()) {
            least = wrong;
            best = candidate;
        }
    }
    return best;
}

}  // namespace sweepwright::cli
