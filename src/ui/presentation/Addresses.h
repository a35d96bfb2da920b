#pragma once

#include <string_view>

// Where the maker is to be found. These are placeholders: whoever publishes the app writes the own
// addresses here, and nowhere else.
namespace sweepwright::ui::addresses {

inline constexpr std::string_view kWebsite = "https://sweepwright.example/";
inline constexpr std::string_view kWeChat = "https://sweepwright.example/wechat";
inline constexpr std::string_view kTelegram = "https://sweepwright.example/telegram";
inline constexpr std::string_view kRepository = "https://sweepwright.example/repository";
/// The credit line's name for the maker.
inline constexpr std::string_view kHandle = "@sweepwright";

}  // namespace sweepwright::ui::addresses
