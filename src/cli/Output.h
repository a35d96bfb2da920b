#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "cli/Json.h"
#include "cli/Table.h"
#include "platform/Error.h"

namespace sweepwright::cli {

/// A byte count as people read it; the same text everywhere in the product.
std::string sizeText(std::uint64_t bytes);

/// Standard output: text for people and `awk`, or one JSON document for programs. What is put here
/// is written by flush(), so that a command that fails leaves no half document.
class Output {
  public:
    Output(bool json, bool terminal) : json_(json), terminal_(terminal) {}

    [[nodiscard]] bool json() const { return json_; }
    /// Whether a person reads standard output; false for a document.
    [[nodiscard]] bool toPerson() const { return terminal_ && !json_; }

    /// A name as it may be shown: escaped on a terminal, the very bytes into a pipe.
    [[nodiscard]] std::string shown(std::string_view bytes) const;

    /// Text; nothing in JSON mode. Names in it have gone through shown().
    void line(std::string_view text);
    void table(const Table& table);

    /// The document; nothing outside JSON mode. A second one takes the first one's place.
    void document(Json document);
    /// Adds keys to the document; false when there is none or it is no object.
    bool addToDocument(const Json& keys);

    /// Writes everything; an error when standard output does not take it.
    platform::Result<> flush();

  private:
    bool json_;
    bool terminal_;
    std::string pending_;
    std::optional<Json> document_;
};

/// Writes "sweepctl: <text>" as one line on standard error, whatever `text` holds.
void complain(std::string_view text);

}  // namespace sweepwright::cli
