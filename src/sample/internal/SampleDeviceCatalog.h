#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "sample/internal/SampleIcon.h"

/// What is in the sample device, as tables. In paths "{home}" stands for the cleaner's own data
/// container; in names "{n}" for a number, "{hash}" and "{uuid}" for what caches name files by.
namespace sweepwright::sample::catalog {

/// Many files of one kind. Sizes lie between a quarter and seven quarters of the average, ages
/// between an hour and `oldestDays`.
struct Heap {
    std::string_view folder;
    std::string_view name;
    unsigned files;  ///< times the scale
    unsigned averageKiB;
    unsigned oldestDays;
};

/// A file that is there for its name, its size or its age.
struct Single {
    std::string_view path;
    std::uint64_t bytes;
    std::int64_t ageSeconds;
};

/// A file with content.
struct Text {
    std::string_view path;
    std::string_view content;
};

struct Link {
    std::string_view path;
    std::string_view target;
};

enum class InfoFormat : std::uint8_t { Binary, Xml };

/// How a bundle names its icon, and how the picture is stored.
enum class IconStyle : std::uint8_t {
    Primary,     ///< CFBundleIcons, an @2x file in the device's own PNG variant
    BothScales,  ///< the same with an @3x file beside it
    TopLevel,    ///< CFBundleIconFiles, @2x and @3x files, plain PNG
    Single,      ///< CFBundleIconFile, one file without a scale
    UpperCase,   ///< CFBundleIconFile, extension "PNG"
    Usual,       ///< no name; a file that is called as icons usually are
    Damaged,     ///< CFBundleIcons, a file that holds no picture
    None,
};

enum class Container : std::uint8_t {
    Usual,        ///< named by a UUID, with metadata
    NamedByApp,   ///< named by the identifier, with metadata
    NoMetadata,   ///< named by a UUID that nothing explains
    NoBundle,     ///< what a removed app left behind
    NoContainer,  ///< a bundle only
};

struct App {
    std::string_view identifier;
    std::string_view bundleFolder;  ///< name of the ".app" folder
    std::string_view displayName;   ///< empty: Info.plist has none
    std::string_view bundleName;    ///< empty: Info.plist has none
    unsigned cachesMiB;
    unsigned temporaryMiB;
    unsigned webMiB;
    unsigned documentsMiB;
    Glyph glyph = Glyph::Disc;
    std::uint16_t hue = 0;  ///< degrees
    IconStyle icon = IconStyle::Primary;
    InfoFormat format = InfoFormat::Binary;
    Container container = Container::Usual;
};

std::span<const Heap> heaps();
std::span<const Single> singles();
std::span<const Text> texts();
std::span<const Link> links();
std::span<const std::string_view> emptyFolders();
std::span<const App> apps();

}  // namespace sweepwright::sample::catalog
