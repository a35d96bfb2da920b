#pragma once

#include <string>

#include "platform/base/Error.h"

namespace sweepwright::launch {

/// What a person names to connect to a device: "usb" or [USER@]HOST[:PORT].
struct DeviceAddress {
    std::string name;  ///< as it was given; the name of the connection, and of its folder
    bool usb = false;
    std::string login{};  ///< [USER@]HOST, as ssh takes it; an IPv6 address in brackets
    std::string port{};   ///< empty: ssh's own choice

    /// Understands `text`. Nothing that ssh could take for an option, or that is no name of a
    /// folder, is an address.
    static platform::Result<DeviceAddress> parse(const std::string& text);
};

}  // namespace sweepwright::launch
