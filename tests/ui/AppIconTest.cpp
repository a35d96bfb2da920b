#include <QImage>
#include <atomic>
#include <memory>
#include <semaphore>

#include <gtest/gtest.h>

#include "support/FaultyFileManager.h"
#include "support/TemporaryDevice.h"
#include "ui/apps/AppIconProvider.h"
#include "ui/apps/AppIconStore.h"
#include "ui/support/InstalledApps.h"

namespace sweepwright::ui {
namespace {

using test::plainIcon;

class AppIconViewTest : public testing::Test {
  protected:
    static AppIcon icon(const std::string& bytes) { return AppIcon::fromBytes(bytes).value(); }
    // Half red, half blue, and a colour that shows when it is cut wrongly.
    static platform::Image wide() {
        platform::Image image{6, 2, {}};
        for (int y = 0; y < 2; ++y) {
            for (int x = 0; x < 6; ++x) {
                const bool middle = x == 2 || x == 3;
                const std::uint8_t red = middle ? 255 : 0;
                const std::uint8_t green = middle ? 0 : 255;
                image.rgba.insert(image.rgba.end(), {red, green, 0, 255});
            }
        }
        return image;
    }

    test::TemporaryDevice device_;
    AppIconStore store_{device_.files()};
    AppIconProvider provider_{store_};
};

TEST_F(AppIconViewTest, KeepsAnIconForAsLongAsItsHandleLives) {
    AppIconStore::Handle handle = store_.add(icon(plainIcon(255, 0, 0)));
    const std::uint64_t number = handle->number;
    EXPECT_TRUE(store_.image(number).has_value());
    EXPECT_EQ(store_.count(), 1U);
    handle.reset();
    EXPECT_FALSE(store_.image(number).has_value());
    EXPECT_EQ(store_.count(), 0U);
}

TEST_F(AppIconViewTest, GivesIconsThatShareTheirBytesOneHandle) {
    const AppIcon shared = icon(plainIcon(255, 0, 0));
    const AppIconStore::Handle first = store_.add(shared);
    EXPECT_EQ(store_.add(shared), first);
    EXPECT_NE(store_.add(icon(plainIcon(255, 0, 0))), first);
}

TEST_F(AppIconViewTest, ForgetsWhatNobodyHoldsAsItGrows) {
    const AppIconStore::Handle kept = store_.add(icon(plainIcon(1, 2, 3)));
    for (int i = 0; i < 500; ++i)
        (void)store_.add(icon(plainIcon(4, 5, 6)));
    EXPECT_EQ(store_.count(), 1U);
    EXPECT_TRUE(store_.image(kept->number).has_value());
}

TEST_F(AppIconViewTest, ReadsTheFileOfAnIconThatHasOne) {
    device_.fileWith("/icon.png", plainIcon(0, 255, 0));
    const AppIconStore::Handle handle = store_.add(std::string("/icon.png"));
    EXPECT_EQ(provider_.icon(handle->number, 100).pixelColor(50, 50), QColor(0, 255, 0));
}

TEST_F(AppIconViewTest, ReadsTheDevicesOwnVariantOfPictures) {
    const platform::Image blue{1, 1, {0, 0, 255, 255}};
    const AppIconStore::Handle handle = store_.add(icon(platform::encodeDevicePng(blue).value()));
    EXPECT_EQ(provider_.icon(handle->number, 100).pixelColor(50, 50), QColor(0, 0, 255));
}

TEST_F(AppIconViewTest, RoundsTheCornersByAFifthOfTheSide) {
    const QImage drawn = AppIconProvider::rounded({1, 1, {255, 0, 0, 255}}, 100);
    EXPECT_EQ(drawn.size(), QSize(100, 100));
    EXPECT_EQ(qAlpha(drawn.pixel(0, 0)), 0);
    EXPECT_EQ(qAlpha(drawn.pixel(99, 99)), 0);
    // On the arc's chord: its point at 45° is radius · (1 − 1/√2) ≈ 5.9 pixels from each side.
    EXPECT_EQ(qAlpha(drawn.pixel(4, 4)), 0);
    EXPECT_EQ(qAlpha(drawn.pixel(7, 7)), 255);
    EXPECT_EQ(qAlpha(drawn.pixel(20, 0)), 255);
    EXPECT_EQ(qAlpha(drawn.pixel(0, 20)), 255);
    EXPECT_EQ(drawn.pixelColor(50, 50), QColor(255, 0, 0));
}

TEST_F(AppIconViewTest, TakesTheMiddleOfAPictureThatIsNoSquare) {
    const QImage drawn = AppIconProvider::rounded(wide(), 100);
    EXPECT_EQ(drawn.pixelColor(2, 50), QColor(255, 0, 0));
    EXPECT_EQ(drawn.pixelColor(97, 50), QColor(255, 0, 0));
}

TEST_F(AppIconViewTest, DrawsNothingForWhatIsNoPicture) {
    device_.fileWith("/icon.png", "not a picture");
    const AppIconStore::Handle handle = store_.add(std::string("/icon.png"));
    EXPECT_EQ(qAlpha(provider_.icon(handle->number, 100).pixel(50, 50)), 0);
    EXPECT_EQ(qAlpha(provider_.icon(handle->number + 1, 100).pixel(50, 50)), 0);
}

TEST_F(AppIconViewTest, RemembersWhatItDrewWithinItsBounds) {
    device_.fileWith("/icon.png", plainIcon(0, 255, 0));
    const AppIconStore::Handle handle = store_.add(std::string("/icon.png"));
    (void)provider_.icon(handle->number, 100);
    EXPECT_EQ(provider_.cachedBytes(), 100 * 100 * 4);
    // Still the same though the file is another one.
    device_.fileWith("/icon.png", plainIcon(255, 0, 0));
    EXPECT_EQ(provider_.icon(handle->number, 100).pixelColor(50, 50), QColor(0, 255, 0));
    for (std::uint64_t number = 0; number < 600; ++number)
        (void)provider_.icon(1000 + number, 100);
    EXPECT_LE(provider_.cachedBytes(), AppIconProvider::kCacheBytes);
    EXPECT_GT(provider_.cachedBytes(), AppIconProvider::kCacheBytes / 2);
}

TEST_F(AppIconViewTest, AnswersARequestOnAnotherThreadInTheSizeAskedFor) {
    device_.fileWith("/icon.png", plainIcon(10, 20, 30));
    test::FaultyFileManager files(device_.files(), {test::Operation::ReadFile});
    std::binary_semaphore listening(0);
    files.before([&](test::Operation, const std::string&) { listening.acquire(); });
    AppIconStore store(files);
    auto provider = std::make_unique<AppIconProvider>(store);
    const AppIconStore::Handle handle = store.add(std::string("/icon.png"));
    const QString id = handle->url().section(QLatin1Char('/'), -1);
    const std::unique_ptr<QQuickImageResponse> response(
        provider->requestImageResponse(id, QSize(150, 150)));
    std::atomic<int> finished = 0;
    QObject::connect(
        response.get(), &QQuickImageResponse::finished, response.get(), [&] { ++finished; },
        Qt::DirectConnection);
    listening.release();
    provider.reset();  // waits for what it draws
    EXPECT_EQ(finished, 1);
    const std::unique_ptr<QQuickTextureFactory> factory(response->textureFactory());
    ASSERT_NE(factory, nullptr);
    EXPECT_EQ(factory->image().size(), QSize(150, 150));
    EXPECT_EQ(factory->image().pixelColor(75, 75), QColor(10, 20, 30));
    EXPECT_TRUE(response->errorString().isEmpty());
}

}  // namespace
}  // namespace sweepwright::ui
