#pragma once

#include <cstdint>
#include <string_view>

#include "cli/Json.h"
#include "cli/Table.h"
#include "cli/Wording.h"

namespace sweepwright::cli {

/// Sized paths, as a document and as a table.

/// {"path", "size"}
inline Json sizedValue(std::string_view path, std::uint64_t size) {
    Json object = Json::object();
    setPath(object, "path", path);
    object["size"] = size;
    return object;
}

/// A table of sizes and paths.
inline Table sizedTable() {
    return Table({{.title = wording::kSize, .align = Align::Right},
                  {.title = wording::kPath, .holds = Holds::OwnedPath}});
}

}  // namespace sweepwright::cli
