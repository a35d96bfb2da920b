#include "cli/Json.h"

#include "cli/Text.h"
#include "platform/text/Utf8.h"

namespace sweepwright::cli {

Json pathValue(std::string_view bytes) {
    if (platform::isUtf8(bytes)) return bytes;
    Json object = Json::object();
    setPath(object, "path", bytes);
    return object;
}

Json pathArray(const std::vector<std::string>& paths) {
    Json array = Json::array();
    for (const std::string& path : paths)
        array.push_back(pathValue(path));
    return array;
}

void setPath(Json& object, const std::string& key, std::string_view bytes) {
    object[key] = replacingBadBytes(bytes);
    if (!platform::isUtf8(bytes)) object[key + "Bytes"] = base64(bytes);
}

Json errorValue(const platform::Error& error) {
    Json object = Json::object();
    object["domain"] = replacingBadBytes(error.domain);
    object["code"] = error.code;
    object["description"] = replacingBadBytes(error.description);
    return object;
}

}  // namespace sweepwright::cli
