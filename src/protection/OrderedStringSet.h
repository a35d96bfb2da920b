#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

namespace sweepwright {

/// A set of strings that keeps the order in which they were added. Strings are compared byte by
/// byte.
class OrderedStringSet {
  public:
    OrderedStringSet() = default;
    /// The members of `strings`, each at its first place.
    explicit OrderedStringSet(const std::vector<std::string>& strings);

    /// True if it was not there.
    bool add(std::string string);
    /// True if it was there.
    bool remove(std::string_view string);

    [[nodiscard]] bool contains(std::string_view string) const { return lookup_.contains(string); }
    [[nodiscard]] const std::vector<std::string>& strings() const { return strings_; }
    [[nodiscard]] std::size_t size() const { return strings_.size(); }

  private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view string) const {
            return std::hash<std::string_view>{}(string);
        }
    };

    std::vector<std::string> strings_;
    std::unordered_set<std::string, Hash, std::equal_to<>> lookup_;
};

}  // namespace sweepwright
