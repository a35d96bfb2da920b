#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "platform/Error.h"
#include "platform/PropertyList.h"

namespace sweepwright::platform {

/// What a binary property list begins with.
inline constexpr std::string_view kBinaryListHeader = "bplist00";

/// Judges a binary property list before anything is built from it.
///
/// The objects of a binary list form a graph: shared references may expand to any size, lead in a
/// circle or nest as deep as there are objects, and every length in it is a claim. The guard walks
/// each object once and adds up what a reader that follows every reference would build. Its work
/// and memory are linear in the file and in the limits.
class PropertyListBinaryGuard {
  public:
    /// `bytes` must outlive this.
    PropertyListBinaryGuard(std::string_view bytes, const PropertyList::Limits& limits);

    /// Nothing when the list is whole, holds only what PropertyList can hold and stays within the
    /// limits; else why not.
    Result<> check();

  private:
    enum class State : std::uint8_t { New, Open, Done };
    /// What following one reference costs.
    struct Cost {
        std::uint64_t bytes = 0;
        std::uint32_t nodes = 0;
        std::uint16_t height = 0;  // levels of containers, itself included
        State state = State::New;
    };
    struct Object {
        unsigned type = 0;
        std::uint64_t length = 0;   // elements, as the type counts them
        std::uint64_t content = 0;  // offset of what follows the marker and the length
    };
    /// A container whose references are being followed.
    struct Frame {
        std::uint64_t index = 0;
        std::uint64_t references = 0;  // offset
        std::uint64_t count = 0;
        std::uint64_t keys = 0;  // how many of the references are keys
        std::uint64_t next = 0;
        Cost cost;
    };

    Result<> readTrailer();
    Result<Object> readObject(std::uint64_t index) const;
    Result<> enter(std::uint64_t index);
    Result<> enterContainer(std::uint64_t index, const Object& object);
    Result<> followNext();
    Result<> count(const Cost& cost);
    void join(const Cost& cost);
    void close();
    Result<std::uint64_t> contentBytes(const Object& object) const;
    Result<> checkContent(const Object& object, std::uint64_t bytes) const;
    [[nodiscard]] std::uint64_t number(std::uint64_t offset, std::uint64_t width) const;
    [[nodiscard]] bool fits(std::uint64_t offset, std::uint64_t bytes) const {
        return offset <= end_ && bytes <= end_ - offset;
    }

    std::string_view bytes_;
    PropertyList::Limits limits_;
    std::uint64_t end_ = 0;  // of the objects: where the offset table begins
    std::uint64_t offsetWidth_ = 0;
    std::uint64_t referenceWidth_ = 0;
    std::uint64_t root_ = 0;
    Cost total_;               // of all that was followed so far
    std::vector<Cost> costs_;  // of each object
    std::vector<Frame> open_;  // the way from the root
};

}  // namespace sweepwright::platform
