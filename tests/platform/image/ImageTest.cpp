#include <algorithm>
#include <array>
#include <random>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "platform/image/Image.h"
#include "platform/image/PngBuilder.h"

namespace sweepwright::platform {
namespace {

using test::filteredRows;
using test::interlacedRows;
using test::PngBuilder;
using test::rawStream;
using test::zlibStream;

std::string asText(const std::vector<std::uint8_t>& bytes) {
    return {bytes.begin(), bytes.end()};
}

/// A picture of noise; `opaque` makes every pixel's alpha 255.
Image noise(std::uint32_t width, std::uint32_t height, bool opaque, unsigned seed = 1) {
    std::mt19937 random(seed);
    Image image{width, height, {}};
    for (std::size_t i = 0; i < std::size_t{width} * height * 4; ++i) {
        image.rgba.push_back(opaque && i % 4 == 3 ? std::uint8_t{255}
                                                  : static_cast<std::uint8_t>(random()));
    }
    return image;
}

/// The picture as the device's variant holds it, one channel at a time, before any filter.
std::string deviceRows(const Image& image, std::size_t channels) {
    std::string rows;
    for (std::size_t i = 0; i < image.rgba.size(); i += 4) {
        for (const std::size_t channel : {2U, 1U, 0U}) {
            rows += static_cast<char>(image.rgba[i + channel]);
        }
        if (channels == 4) rows += static_cast<char>(image.rgba[i + 3]);
    }
    return rows;
}

std::string deviceFile(std::uint32_t width, std::uint32_t height, int colour,
                       std::string_view filtered, int interlaced = 0) {
    return PngBuilder()
        .deviceMark()
        .header(width, height, 8, colour, interlaced)
        .chunk("IDAT", rawStream(filtered))
        .end()
        .bytes();
}

void expectRefused(std::string_view bytes, std::string_view why) {
    const auto image = decode(bytes);
    ASSERT_FALSE(image.has_value()) << why;
    EXPECT_EQ(image.error().domain, kFormatErrorDomain);
    EXPECT_NE(image.error().description.find(why), std::string::npos) << image.error().description;
}

// --- There and back ---

TEST(Image, AStandardFileReadsBackEveryPixel) {
    const Image image = noise(37, 21, false);
    EXPECT_EQ(decode(encodePng(image).value()).value(), image);
}

TEST(Image, ADeviceFileReadsBackEveryOpaquePixel) {
    const Image image = noise(37, 21, true);
    EXPECT_EQ(decode(encodeDevicePng(image).value()).value(), image);
}

RC_GTEST_PROP(Image, AnyPictureSurvivesTheStandardFile, ()) {
    const auto width = *rc::gen::inRange<std::uint32_t>(1, 40);
    const auto height = *rc::gen::inRange<std::uint32_t>(1, 40);
    const auto rgba = *rc::gen::container<std::vector<std::uint8_t>>(
        std::size_t{width} * height * 4, rc::gen::arbitrary<std::uint8_t>());
    const Image image{width, height, rgba};
    RC_ASSERT(decode(encodePng(image).value()).value() == image);
}

RC_GTEST_PROP(Image, WritingADeviceFileAgainChangesNothingMore, ()) {
    const auto width = *rc::gen::inRange<std::uint32_t>(1, 40);
    const auto height = *rc::gen::inRange<std::uint32_t>(1, 40);
    const auto rgba = *rc::gen::container<std::vector<std::uint8_t>>(
        std::size_t{width} * height * 4, rc::gen::arbitrary<std::uint8_t>());
    const Image once = decode(encodeDevicePng({width, height, rgba}).value()).value();
    RC_ASSERT(decode(encodeDevicePng(once).value()).value() == once);
    for (std::size_t i = 3; i < rgba.size(); i += 4)
        RC_ASSERT(once.rgba[i] == rgba[i]);
}

TEST(Image, EveryColourThatADeviceFileCanHoldReadsAndWritesBackExactly) {
    // All 32,896 pairs of alpha and multiplied value, as one picture of 256 columns a row.
    std::string rows;
    for (int alpha = 0; alpha < 256; ++alpha) {
        for (int value = 0; value < 256; ++value) {
            const auto stored = static_cast<char>(std::min(value, alpha));
            rows.append({stored, stored, stored, static_cast<char>(alpha)});
        }
    }
    const auto read = decode(deviceFile(256, 256, 6, filteredRows(rows, 1024, 4, {0})));
    ASSERT_TRUE(read.has_value()) << read.error().description;
    const auto pixel = [&](std::size_t alpha, std::size_t value) {
        const auto at = (alpha * 256 + value) * 4;
        return std::array{int{read->rgba[at]}, int{read->rgba[at + 1]}, int{read->rgba[at + 2]},
                          int{read->rgba[at + 3]}};
    };
    EXPECT_EQ(pixel(0, 0), (std::array{0, 0, 0, 0}));
    EXPECT_EQ(pixel(1, 1), (std::array{255, 255, 255, 1}));
    EXPECT_EQ(pixel(128, 64), (std::array{128, 128, 128, 128}));  // 127.5, rounded up
    EXPECT_EQ(pixel(200, 100), (std::array{128, 128, 128, 200}));
    EXPECT_EQ(pixel(255, 77), (std::array{77, 77, 77, 255}));
    EXPECT_EQ(decode(encodeDevicePng(*read).value()).value(), *read);
}

TEST(Image, AColourAboveItsAlphaReadsAsFull) {
    const std::string row("\x00\xFF\x40\x10\x20", 5);  // filter, blue, green, red, alpha
    const auto read = decode(deviceFile(1, 1, 6, row));
    ASSERT_TRUE(read.has_value()) << read.error().description;
    EXPECT_EQ(read->rgba, (std::vector<std::uint8_t>{128, 255, 255, 32}));
}

TEST(Image, ADeviceFileBeginsWithItsMarkAndHoldsItsPixelsMultipliedAndReversed) {
    const std::string file = encodeDevicePng({1, 1, {200, 100, 50, 128}}).value();
    EXPECT_EQ(file.substr(12, 4), "CgBI");
    EXPECT_EQ(file.substr(28, 4), "IHDR");
    const std::string row("\x00\x19\x32\x64\x80", 5);  // 50, 100 and 200 times 128 / 255, rounded
    EXPECT_EQ(decode(deviceFile(1, 1, 6, row)).value(), decode(file).value());
}

TEST(Image, APictureWhoseBytesDoNotFitItsSidesIsNotWritten) {
    for (const Image& image : {Image{}, Image{1, 1, {1, 2, 3}}, Image{0, 1, {}},
                               Image{4097, 1, std::vector<std::uint8_t>(4097 * 4)},
                               Image{1, 4097, std::vector<std::uint8_t>(4097 * 4)}}) {
        EXPECT_FALSE(encodePng(image).has_value());
        EXPECT_FALSE(encodeDevicePng(image).has_value());
    }
}

TEST(Image, TheLongestSideIsWrittenAndRead) {
    const Image image = noise(kMaxImageSide, 1, true);
    EXPECT_EQ(decode(encodePng(image).value()).value(), image);
    EXPECT_EQ(decode(encodeDevicePng(image).value()).value(), image);
}

// --- What others write ---

TEST(Image, EveryFilterOfADeviceFileIsUndone) {
    const Image image = noise(13, 11, true);
    for (const auto& filters :
         std::vector<std::vector<int>>{{0}, {1}, {2}, {3}, {4}, {4, 3, 2, 1, 0}, {1, 4, 2, 2, 3}}) {
        for (const std::size_t channels : {3U, 4U}) {
            const std::string rows =
                filteredRows(deviceRows(image, channels), 13 * channels, channels, filters);
            const auto read = decode(deviceFile(13, 11, channels == 4 ? 6 : 2, rows));
            ASSERT_TRUE(read.has_value()) << read.error().description;
            EXPECT_EQ(*read, image) << filters.front() << " with " << channels << " channels";
        }
    }
}

TEST(Image, EveryFilterOfAStandardFileIsUndone) {
    const Image image = noise(13, 11, false);
    for (int filter = 0; filter <= 4; ++filter) {
        const std::string rows = filteredRows(asText(image.rgba), 13 * 4, 4, {filter});
        const auto read =
            decode(PngBuilder().header(13, 11, 8, 6).chunk("IDAT", zlibStream(rows)).end().bytes());
        ASSERT_TRUE(read.has_value()) << read.error().description;
        EXPECT_EQ(*read, image) << filter;
    }
}

TEST(Image, AnInterlacedDeviceFileReadsAsTheOtherOnesDo) {
    for (std::uint32_t width = 1; width <= 17; ++width) {
        for (std::uint32_t height = 1; height <= 17; ++height) {
            const Image image = noise(width, height, true, width * 100 + height);
            const std::string rows = interlacedRows(deviceRows(image, 4), width, 4, 4);
            const auto read = decode(deviceFile(width, height, 6, rows, 1));
            ASSERT_TRUE(read.has_value()) << read.error().description;
            ASSERT_EQ(*read, image) << width << " by " << height;
        }
    }
}

TEST(Image, AnInterlacedStandardFileReadsAsTheOtherOnesDo) {
    const Image image = noise(11, 9, false);
    const auto read =
        decode(PngBuilder()
                   .header(11, 9, 8, 6, 1)
                   .chunk("IDAT", zlibStream(interlacedRows(asText(image.rgba), 11, 4, 1)))
                   .end()
                   .bytes());
    ASSERT_TRUE(read.has_value()) << read.error().description;
    EXPECT_EQ(*read, image);
}

TEST(Image, ADeviceFileMayBeSentInManyPiecesAmongOtherChunks) {
    const Image image = noise(20, 20, true);
    const std::string stream = rawStream(filteredRows(deviceRows(image, 4), 80, 4, {1}));
    PngBuilder file;
    file.deviceMark().header(20, 20, 8, 6).chunk("sRGB", std::string_view("\0", 1));
    for (std::size_t at = 0; at < stream.size(); at += 7) {
        file.chunk("IDAT", stream.substr(at, 7)).chunk("IDAT", {});
    }
    const auto read = decode(file.end().bytes());
    ASSERT_TRUE(read.has_value()) << read.error().description;
    EXPECT_EQ(*read, image);
}

TEST(Image, GreyPaletteAndSixteenBitFilesReadAsEightBitColourWithAlpha) {
    const auto read = [](int depth, int colour, std::string_view row, std::string_view palette,
                         std::string_view transparency) {
        PngBuilder file;
        file.header(1, 1, depth, colour);
        if (!palette.empty()) file.chunk("PLTE", palette);
        if (!transparency.empty()) file.chunk("tRNS", transparency);
        return decode(file.chunk("IDAT", zlibStream(row)).end().bytes()).value().rgba;
    };
    using Pixel = std::vector<std::uint8_t>;
    using namespace std::string_view_literals;
    EXPECT_EQ(read(8, 0, "\x00\x2A"sv, {}, {}), (Pixel{42, 42, 42, 255}));
    EXPECT_EQ(read(1, 0, "\x00\x80"sv, {}, {}), (Pixel{255, 255, 255, 255}));
    EXPECT_EQ(read(8, 4, "\x00\x2A\x07"sv, {}, {}), (Pixel{42, 42, 42, 7}));
    EXPECT_EQ(read(8, 2, "\x00\x01\x02\x03"sv, {}, {}), (Pixel{1, 2, 3, 255}));
    EXPECT_EQ(read(8, 2, "\x00\x01\x02\x03"sv, {}, "\0\x01\0\x02\0\x03"sv), (Pixel{1, 2, 3, 0}));
    EXPECT_EQ(read(8, 3, "\x00\x01"sv, "\1\2\3\4\5\6"sv, "\xFF\x09"sv), (Pixel{4, 5, 6, 9}));
    EXPECT_EQ(read(16, 6, "\x00\x10\x10\x20\x20\x30\x30\x40\x40"sv, {}, {}),
              (Pixel{16, 32, 48, 64}));
}

// --- What means harm ---

TEST(Image, AFileCutShortAnywhereIsRefused) {
    const Image image = noise(9, 7, false);
    for (const std::string& file : {encodePng(image).value(), encodeDevicePng(image).value()}) {
        for (std::size_t length = 0; length < file.size(); ++length) {
            EXPECT_FALSE(decode(std::string_view(file).substr(0, length)).has_value()) << length;
        }
        EXPECT_TRUE(decode(file).has_value());
    }
}

TEST(Image, AFileWithAnyBitFlippedIsRefusedOrReadWithoutHarm) {
    const Image image = noise(5, 4, false);
    for (std::string file : {encodePng(image).value(), encodeDevicePng(image).value()}) {
        for (std::size_t bit = 0; bit < file.size() * 8; ++bit) {
            const auto flip = static_cast<char>(1U << (bit % 8));
            file[bit / 8] = static_cast<char>(file[bit / 8] ^ flip);
            const auto read = decode(file);
            if (read) {
                EXPECT_EQ(read->rgba.size(), std::size_t{read->width} * read->height * 4);
            }
            file[bit / 8] = static_cast<char>(file[bit / 8] ^ flip);
        }
    }
}

TEST(Image, AChangedPixelStreamIsRefusedByItsChecksum) {
    for (std::string file :
         {encodePng(noise(5, 4, false)).value(), encodeDevicePng(noise(5, 4, false)).value()}) {
        const std::size_t stream = file.find("IDAT") + 4;
        file[stream + 9] = static_cast<char>(file[stream + 9] ^ 1);
        EXPECT_FALSE(decode(file).has_value());
    }
}

TEST(Image, AWrongChecksumOfAnyChunkIsRefused) {
    const Image image = noise(3, 2, true);
    const std::string pixels = filteredRows(asText(image.rgba), 12, 4, {0});
    const auto standard = PngBuilder()
                              .header(3, 2, 8, 6)
                              .chunk("tEXt", std::string_view("a\0b", 3))
                              .chunk("IDAT", zlibStream(pixels))
                              .end()
                              .bytes();
    const auto device = PngBuilder()
                            .deviceMark()
                            .header(3, 2, 8, 6)
                            .chunk("tEXt", std::string_view("a\0b", 3))
                            .chunk("IDAT", rawStream(pixels))
                            .end()
                            .bytes();
    for (const std::string& whole : {standard, device}) {
        EXPECT_TRUE(decode(whole).has_value());
        for (const std::string_view type : {"CgBI", "IHDR", "tEXt", "IDAT", "IEND"}) {
            const std::size_t name = whole.find(type);
            if (name == std::string::npos) continue;
            const auto length = static_cast<std::uint8_t>(whole[name - 1]);
            std::string damaged = whole;
            damaged[name + 4 + length] = static_cast<char>(damaged[name + 4 + length] ^ 1);
            EXPECT_FALSE(decode(damaged).has_value()) << type;
        }
    }
}

TEST(Image, GarbageIsRefused) {
    expectRefused("", "not a PNG file");
    expectRefused("GIF89a", "not a PNG file");
    std::mt19937 random(7);
    for (int round = 0; round < 2000; ++round) {
        std::string bytes =
            round % 2 == 0 ? PngBuilder().bytes() : PngBuilder().deviceMark().bytes();
        for (auto i = random() % 200; i > 0; --i)
            bytes += static_cast<char>(random());
        EXPECT_FALSE(decode(bytes).has_value());
    }
}

TEST(Image, ASizeBeyondTheLimitIsRefusedBeforeMemoryIsAskedFor) {
    for (const auto& [width, height] :
         {std::pair{4097U, 1U}, std::pair{1U, 4097U}, std::pair{0x7FFFFFFFU, 0x7FFFFFFFU}}) {
        const std::string stream(1000, 'x');
        expectRefused(PngBuilder()
                          .deviceMark()
                          .header(width, height, 8, 6)
                          .chunk("IDAT", stream)
                          .end()
                          .bytes(),
                      "the picture is too large");
        EXPECT_FALSE(
            decode(PngBuilder().header(width, height, 8, 6).chunk("IDAT", stream).end().bytes())
                .has_value());
    }
    expectRefused(PngBuilder().deviceMark().header(0, 5, 8, 6).end().bytes(), "Invalid IHDR");
    EXPECT_FALSE(decode(PngBuilder().header(0, 5, 8, 6).end().bytes()).has_value());
}

TEST(Image, ASmallFileThatClaimsMorePixelsThanItCanHoldIsRefused) {
    const std::string stream = zlibStream("x");
    expectRefused(PngBuilder().header(4096, 4096, 8, 6).chunk("IDAT", stream).end().bytes(),
                  "too short for its pixels");
    expectRefused(
        PngBuilder().deviceMark().header(4096, 4096, 8, 6).chunk("IDAT", stream).end().bytes(),
        "too short for its pixels");
}

TEST(Image, PixelsBeyondThePictureAreNotInflated) {
    const std::string bomb(std::size_t{8} << 20U, '\0');
    const auto read = decode(deviceFile(2, 2, 6, bomb));
    ASSERT_TRUE(read.has_value()) << read.error().description;
    EXPECT_EQ(read->rgba, std::vector<std::uint8_t>(16));
}

TEST(Image, PixelsAreReadWhateverTheOptionalChunksHold) {
    const std::string bomb = zlibStream(std::string(std::size_t{16} << 20U, 'A'));
    const std::string row("\x00\x01\x02\x03\x04", 5);
    const auto read = decode(PngBuilder()
                                 .header(1, 1, 8, 6)
                                 .chunk("iCCP", std::string("p\0\0", 3) + bomb)
                                 .chunk("zTXt", std::string("t\0\0", 3) + bomb)
                                 .chunk("IDAT", zlibStream(row))
                                 .end()
                                 .bytes());
    ASSERT_TRUE(read.has_value()) << read.error().description;
    EXPECT_EQ(read->rgba, (std::vector<std::uint8_t>{1, 2, 3, 4}));
}

TEST(Image, AFileBeyondTheLimitIsRefusedUnread) {
    std::string file = encodePng(noise(1, 1, true)).value();
    file.resize(kMaxImageBytes + 1);
    expectRefused(file, "too long");
}

TEST(Image, ADeviceFileOfAnotherFormIsRefused) {
    const std::string stream = rawStream(std::string(64, '\0'));
    const auto file = [&](int depth, int colour, int interlaced) {
        PngBuilder builder;
        builder.deviceMark().header(2, 2, depth, colour, interlaced);
        if (colour == 3) builder.chunk("PLTE", "rgb");
        return builder.chunk("IDAT", stream).end().bytes();
    };
    expectRefused(file(16, 6, 0), "8 bits only");
    expectRefused(file(8, 3, 0), "8 bits only");
    expectRefused(file(8, 0, 0), "8 bits only");
    expectRefused(file(8, 4, 0), "8 bits only");
    expectRefused(file(8, 6, 2), "Invalid IHDR");
    expectRefused(PngBuilder().deviceMark().chunk("IDAT", stream).end().bytes(), "Missing IHDR");
}

TEST(Image, ADeviceFileWithDamagedPixelsIsRefused) {
    expectRefused(deviceFile(2, 2, 6, std::string(17, '\0')), "Not enough image data");
    std::string rows(18, '\0');
    rows[9] = '\x05';
    expectRefused(deviceFile(2, 2, 6, rows), "bad adaptive filter");
    expectRefused(
        PngBuilder().deviceMark().header(2, 2, 8, 6).chunk("IDAT", "\xFF\xFF\xFF").end().bytes(),
        "invalid block type");
    expectRefused(PngBuilder().deviceMark().header(2, 2, 8, 6).end().bytes(), "IEND");
}

}  // namespace
}  // namespace sweepwright::platform
