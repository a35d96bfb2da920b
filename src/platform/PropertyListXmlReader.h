#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "platform/Error.h"
#include "platform/PropertyList.h"

namespace sweepwright::platform {

/// Reads an XML property list in one pass, linear in the text and bounded by the limits.
///
/// It knows what property lists are made of and nothing else of XML: the ten elements, comments,
/// processing instructions, CDATA, the five named entities and characters by number. A document
/// type may be named but can't define anything, so that there is no entity to expand and no file
/// to fetch.
class PropertyListXmlReader {
  public:
    /// `text` must outlive this.
    PropertyListXmlReader(std::string_view text, const PropertyList::Limits& limits)
        : text_(text), limits_(limits) {}

    /// The list, or an error in kFormatErrorDomain. Call once.
    Result<PropertyList> read();

  private:
    enum class Form { Opening, Closing, Empty };
    struct Tag {
        std::string_view name;
        Form form = Form::Opening;
    };

    Result<> checkText() const;
    Result<> skipToMarkup();
    Result<> skipPast(std::string_view opening, std::string_view closing);
    Result<> skipDocumentType();
    Result<Tag> readTag();
    Result<> readClosingTag(std::string_view name);
    Result<PropertyList> readDocument();
    Result<PropertyList> readValue(const Tag& tag, std::size_t depth);
    Result<PropertyList> readArray(const Tag& tag, std::size_t depth);
    Result<PropertyList> readDictionary(const Tag& tag, std::size_t depth);
    Result<std::string> readText(const Tag& tag);
    Result<> appendCharacters(std::string& text, std::string_view raw) const;

    [[nodiscard]] std::string_view rest() const { return text_.substr(position_); }

    std::string_view text_;
    PropertyList::Limits limits_;
    std::size_t position_ = 0;
    std::size_t nodes_ = 0;
};

}  // namespace sweepwright::platform
