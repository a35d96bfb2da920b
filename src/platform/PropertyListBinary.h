#pragma once

#include <string_view>

#include "platform/PropertyList.h"

namespace sweepwright::platform {

/// Whether `bytes` begin as a binary property list does.
bool isBinaryPropertyList(std::string_view bytes);

/// Reads a binary list after the guard has judged it. Error domain kFormatErrorDomain.
Result<PropertyList> readBinaryPropertyList(std::string_view bytes,
                                            const PropertyList::Limits& limits);

}  // namespace sweepwright::platform
