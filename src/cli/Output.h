#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "cli/Json.h"
#include "cli/Table.h"
#include "platform/base/Error.h"

namespace sweepwright::cli {

/// A byte count as people read it; the same text everywhere in the product.
std::string sizeText(std::uint64_t bytes);

/// Standard output: text for people and `awk`, or one JSON document for programs. What is put here
/// is written by flush(), so that a command that fails leaves no half document.
class Output {
  public:
    /// Names the app that a path belongs to; asked only for a person.
    using OwnerOf = std::function<std::optional<std::string>(const std::string& path)>;

    Output(bool json, bool terminal, OwnerOf ownerOf = {})
        : json_(json), terminal_(terminal), ownerOf_(std::move(ownerOf)) {}

    [[nodiscard]] bool json() const { return json_; }
    /// Whether a person reads standard output; false for a document.
    [[nodiscard]] bool toPerson() const { return terminal_ && !json_; }

    /// A name as text shows it, whoever reads: control characters escaped, so that a name with a
    /// newline can't forge a line. Programs that need the very bytes read the document.
    [[nodiscard]] static std::string shown(std::string_view bytes);

    /// Text; nothing in JSON mode. Names in it have gone through shown().
    void line(std::string_view text);
    /// A paragraph for a person only, in as many lines as it takes. Names in it have gone through
    /// shown().
    void note(std::string_view text);
    void table(const Table& table);

    /// The document; nothing outside JSON mode. A second one takes the first one's place.
    void document(Json document);
    /// Adds keys to the document; false when there is none or it is no object.
    bool addToDocument(const Json& keys);

    /// Writes everything; an error when standard output does not take it.
    platform::Result<> flush();

  private:
    [[nodiscard]] Page page() const;

    bool json_;
    bool terminal_;
    OwnerOf ownerOf_;
    std::string pending_;
    std::optional<Json> document_;
};

/// Writes "sweepctl: <text>" as one line on standard error, whatever `text` holds.
void complain(std::string_view text);
/// The same as a dim line for a person at a terminal; for nobody else.
void remark(std::string_view text);

}  // namespace sweepwright::cli
