#pragma once

#include <chrono>
#include <string_view>

#include "platform/base/Error.h"
#include "platform/plist/PropertyList.h"

/// What PropertyList and its two file formats share. Private to the platform layer.
namespace sweepwright::platform {

/// Errors as PropertyList::parse(). `limits.depth` must be so small that recursion is safe.
Result<PropertyList> readBinaryPropertyList(std::string_view bytes,
                                            const PropertyList::Limits& limits);

/// As readBinaryPropertyList(). A document type may be named but can't define anything, so that
/// there is no entity to expand and no file to fetch.
Result<PropertyList> readXmlPropertyList(std::string_view text, const PropertyList::Limits& limits);

/// Whether `text` is UTF-8 without a NUL.
bool isPlainText(std::string_view text);

/// Logs that `key`, which a file can't hold, is left out of it.
void logOmittedKey(std::string_view key);

/// Whether `text` is ASCII without a NUL.
bool isPlainAscii(std::string_view text);

/// What a dictionary that stands for a reference holds its number under, in XML.
inline constexpr std::string_view kUidKey = "CF$UID";

inline constexpr std::string_view kBase64Digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// --- The binary file ---

inline constexpr std::string_view kBinaryHeader = "bplist00";
inline constexpr std::chrono::seconds kStartOf2001{978'307'200};

/// The upper half of the byte that an object begins with, its marker.
enum class BinaryKind : std::uint8_t {
    Simple,
    Integer,
    Real,
    Date,
    Data,
    Ascii,
    Utf16,
    Uid = 8,
    Array = 10,
    Dictionary = 13
};

// The lower half of a marker, for a simple value and for a length that does not fit in it.
inline constexpr unsigned kFalse = 0x8;
inline constexpr unsigned kTrue = 0x9;
inline constexpr unsigned kLengthFollows = 0xF;

}  // namespace sweepwright::platform
