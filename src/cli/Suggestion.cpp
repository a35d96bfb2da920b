#include "cli/Suggestion.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

namespace sweepwright::cli {

namespace {

/// How many letters must be put in, left out or replaced to make `b` of `a`.
std::size_t distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> row(b.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = row[0]++;
        for (std::size_t j = 0; j < b.size(); ++j) {
            const std::size_t replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({replaced, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.back();
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
