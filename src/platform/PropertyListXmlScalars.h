#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/PropertyList.h"

namespace sweepwright::platform {

// What the text of an XML property list's elements means; none when it means nothing. White space
// around a value is allowed.

/// "-5", "18446744073709551615", "0x1F".
std::optional<PropertyList> integerFromXml(std::string_view text);
/// "0.5", "-1e3", "nan", "+infinity".
std::optional<PropertyList> realFromXml(std::string_view text);
/// "2024-02-29T12:00:00Z".
std::optional<PropertyList> dateFromXml(std::string_view text);
/// Base64 with white space anywhere.
std::optional<PropertyList> dataFromXml(std::string_view text);
/// The character that `name` stands for between "&" and ";".
std::optional<char32_t> characterFromXmlEntity(std::string_view name);

/// Whether a byte is white space in XML.
bool isXmlSpace(char byte);

}  // namespace sweepwright::platform
