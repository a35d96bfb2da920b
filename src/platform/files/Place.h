#pragma once

#include <memory>
#include <string>
#include <string_view>

namespace sweepwright::platform {

class Place;
using PlacePointer = std::shared_ptr<const Place>;

/// A device path in parts, each shared by all that was opened beneath it: in a deep tree a
/// directory costs the bytes of its name, not those of its path. Immutable.
class Place {
  public:
    explicit Place(std::string path) : part_(std::move(path)) {}
    Place(PlacePointer above, std::string_view relative)
        : above_(std::move(above)), part_(relative) {}
    ~Place();
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

    /// Where the directory lies that this was opened beneath; none when it was opened by its path.
    [[nodiscard]] const PlacePointer& above() const { return above_; }
    /// What follows the path above; an entry's name, or several with "/" between them.
    [[nodiscard]] const std::string& part() const { return part_; }
    /// The whole path.
    [[nodiscard]] std::string path() const;

  private:
    PlacePointer above_;
    std::string part_;
};

}  // namespace sweepwright::platform
