#include "launch/DeviceAddress.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <string_view>
#include <utility>

#include <fmt/format.h>

namespace sweepwright::launch {

namespace {

bool isName(std::string_view text, std::string_view more) {
    const auto allowed = [more](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               more.contains(c);
    };
    return !text.empty() && text.front() != '-' && text.front() != '.' &&
           std::ranges::all_of(text, allowed);
}

bool isHost(std::string_view host) {
    if (!host.starts_with('[')) return isName(host, ".-_");
    return host.size() > 2 && host.ends_with(']') &&
           isName("x" + std::string(host.substr(1, host.size() - 2)), ":.%-_");
}

bool isPort(std::string_view text) {
    std::uint16_t port = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, bad] = std::from_chars(text.data(), end, port);
    return bad == std::errc() && stop == end && port > 0;
}

}  // namespace

platform::Result<DeviceAddress> DeviceAddress::parse(const std::string& text) {
    if (text == "usb") return DeviceAddress{.name = text, .usb = true};
    std::string_view rest = text;
    std::string_view user;
    if (const auto at = rest.rfind('@'); at != std::string_view::npos) {
        user = rest.substr(0, at);
        rest.remove_prefix(at + 1);
    }
    const auto hostEnd = rest.starts_with('[') ? rest.find(']') : rest.find(':');
    const auto colon = rest.find(':', hostEnd == std::string_view::npos ? rest.size() : hostEnd);
    const std::string_view host = rest.substr(0, colon);
    const bool hasPort = colon != std::string_view::npos;
    const std::string_view port = hasPort ? rest.substr(colon + 1) : std::string_view();
    const bool userIsGood = user.data() == nullptr || isName(user, ".-_");
    if (!userIsGood || !isHost(host) || (hasPort && !isPort(port))) {
        return std::unexpected(
            platform::Error{"DeviceAddress", 2,
                            fmt::format("{}: is neither \"usb\" nor [USER@]HOST[:PORT]", text)});
    }
    return DeviceAddress{
        .name = text,
        .login = std::string(text.substr(0, text.size() - rest.size())) + std::string(host),
        .port = std::string(port)};
}

}  // namespace sweepwright::launch
