#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

#include "platform/base/Error.h"

namespace sweepwright::cli {

/// JSON in which keys keep the order in which they were set.
using Json = nlohmann::ordered_json;

/// A path, or any other text that comes from the device, as a value of its own: a string, or, when
/// it is not UTF-8, {"path", "pathBytes"}.
Json pathValue(std::string_view bytes);

/// An array of pathValue().
Json pathArray(const std::vector<std::string>& paths);

/// Sets `key` of `object` to a path; when it is not UTF-8, also `key` + "Bytes", its base64.
void setPath(Json& object, const std::string& key, std::string_view bytes);

/// {"domain", "code", "description"}
Json errorValue(const platform::Error& error);

}  // namespace sweepwright::cli
