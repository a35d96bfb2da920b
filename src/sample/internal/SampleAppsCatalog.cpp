// The apps of the sample device.
#include <array>

#include "sample/internal/SampleDeviceCatalog.h"

namespace sweepwright::sample::catalog {

namespace {

// clang-format off
constexpr auto kApps = std::to_array<App>({
    // identifier, bundle folder, display name, bundle name, MiB of caches, tmp, web, documents

    // The cleaner itself; its data are in the heaps.
    {"com.sweepwright.app", "Sweepwright.app", "Sweepwright", "Sweepwright", 0, 0, 0, 0, Glyph::Wave, 195, IconStyle::BothScales},

    // What comes with the device.
    {"com.apple.mobilesafari", "MobileSafari.app", "Safari", "Safari", 34, 1, 22, 3, Glyph::Ring, 212},
    {"com.apple.Maps", "Maps.app", "Maps", "Maps", 12, 1, 0, 2, Glyph::Diamond, 120},
    {"com.apple.Music", "Music.app", "Music", "Music", 43, 2, 0, 10, Glyph::Wave, 345, IconStyle::BothScales},
    {"com.apple.podcasts", "Podcasts.app", "Podcasts", "Podcasts", 23, 1, 0, 20, Glyph::Ring, 280},
    {"com.apple.news", "News.app", "News", "News", 18, 1, 6, 0, Glyph::Bars, 350},
    {"com.apple.weather", "Weather.app", "Weather", "Weather", 3, 0, 0, 0, Glyph::Disc, 205},
    {"com.apple.mobilemail", "MobileMail.app", "Mail", "Mail", 9, 1, 2, 0, Glyph::Diamond, 210},
    {"com.apple.tv", "TV.app", "TV", "TV", 20, 1, 0, 0, Glyph::Triangle, 240},
    {"com.apple.iBooks", "Books.app", "Books", "Books", 7, 0, 0, 9, Glyph::Bars, 28},
    {"com.apple.camera", "Camera.app", "Camera", "Camera", 0, 0, 0, 0, Glyph::Ring, 60},
    // Two makers whose apps count as the device's own.
    {"com.facebook.kiosk", "Kiosk.app", "Kiosk", "Kiosk", 18, 1, 4, 1, Glyph::Dots, 220},
    {"com.twitter.gallery", "Gallery.app", "Gallery", "Gallery", 11, 1, 2, 0, Glyph::Diamond, 200},

    // What people install.
    {"cn.qingyun.video", "Qingyun.app", "青云视频", "Qingyun", 111, 12, 8, 15, Glyph::Triangle, 168, IconStyle::BothScales},
    {"cn.xiaolu.shop", "XiaoluShop.app", "小鹿商城", "XiaoluShop", 48, 3, 21, 1, Glyph::Diamond, 18},
    {"cn.chenguang.news", "Chenguang.app", "晨光快讯", "Chenguang", 26, 1, 12, 0, Glyph::Bars, 4, IconStyle::TopLevel, InfoFormat::Xml},
    {"cn.mogu.music", "MoguMusic.app", "蘑菇音乐", "MoguMusic", 54, 4, 1, 12, Glyph::Wave, 265},
    {"jp.hanami.camera", "Hanami.app", "はなみカメラ", "Hanami", 19, 6, 0, 6, Glyph::Ring, 330},
    {"jp.norikae.trains", "Norikae.app", "のりかえ電車", "Norikae", 8, 0, 3, 0, Glyph::Bars, 145, IconStyle::Primary, InfoFormat::Xml},
    {"jp.hondana.manga", "Hondana.app", "マンガ棚", "Hondana", 38, 2, 0, 18, Glyph::Dots, 42},
    {"kr.narae.webtoon", "Narae.app", "나래웹툰", "Narae", 33, 1, 9, 3, Glyph::Diamond, 155},
    {"ae.souqna.market", "Souqna.app", "سوقنا اليوم", "Souqna", 16, 1, 7, 0, Glyph::Cross, 30},
    {"il.shamayim.weather", "Shamayim.app", "שמיים", "Shamayim", 4, 0, 1, 0, Glyph::Disc, 198},
    {"in.rasoi.recipes", "Rasoi.app", "रसोई", "Rasoi", 13, 1, 2, 2, Glyph::Disc, 15},
    {"ru.elektrichka.timetable", "Elektrichka.app", "Электричка", "Elektrichka", 6, 0, 2, 0, Glyph::Bars, 225},
    {"gr.plateia.social", "Plateia.app", "Πλατεία", "Plateia", 24, 2, 5, 1, Glyph::Dots, 250},
    {"th.talad.fresh", "Talad.app", "ตลาดสด", "Talad", 15, 1, 4, 0, Glyph::Cross, 95},
    {"com.confetti.party", "Confetti.app", "🎉 Confetti 🎈", "Confetti", 19, 2, 0, 3, Glyph::Dots, 315},
    {"com.nestmap.family", "Nestmap.app", "👨‍👩‍👧‍👦 Nestmap", "Nestmap", 10, 0, 1, 0, Glyph::Diamond, 130},
    {"fr.brulee.cafe", "Brulee.app", "Café Brûlée", "Brulee", 5, 0, 3, 0, Glyph::Ring, 24, IconStyle::Single},
    {"de.wanderbuch.touren", "Wanderbuch.app", "Wanderbuch – Karten, Touren und Hütten für die ganze Alpenregion", "Wanderbuch", 29, 2, 0, 24, Glyph::Triangle, 110},
    {"com.lanternreader.app", "Lantern.app", "Lantern Reader", "Lantern", 21, 1, 6, 7, Glyph::Disc, 48, IconStyle::TopLevel},
    {"org.openbirds.field", "OpenBirds.app", "Open Birds", "OpenBirds", 15, 1, 0, 13, Glyph::Wave, 175},
    {"com.tidewatch.surf", "Tidewatch.app", "Tidewatch", "Tidewatch", 7, 0, 1, 0, Glyph::Wave, 205, IconStyle::Usual},
    {"com.pixelgarden.draw", "PixelGarden.app", "Pixel Garden", "PixelGarden", 25, 8, 0, 11, Glyph::Dots, 85},
    {"io.marginalia.notes", "Marginalia.app", "marginalia", "Marginalia", 2, 0, 0, 2, Glyph::Bars, 55, IconStyle::UpperCase, InfoFormat::Xml},
    {"tv.streamberry.player", "Streamberry.app", "Streamberry", "Streamberry", 88, 9, 3, 5, Glyph::Triangle, 338, IconStyle::BothScales},
    {"com.ridewell.app", "Ridewell.app", "Ridewell", "Ridewell", 14, 1, 8, 0, Glyph::Ring, 150},
    {"org.chessnut.club", "Chessnut.app", "Chessnut", "Chessnut", 3, 0, 0, 1, Glyph::Cross, 35, IconStyle::None},
    {"com.bobsdeals.coupons", "Deals.app", "Bob's \"Best\" Deals & <More>", "Deals", 17, 1, 9, 0, Glyph::Diamond, 2, IconStyle::Damaged, InfoFormat::Xml},
    {"com.hearthside.ledger", "Ledger.app", "", "Ledger", 1, 0, 0, 2, Glyph::Bars, 160},
    {"net.nameless.tool", "Tool.app", "", "", 2, 1, 0, 0, Glyph::Cross, 0, IconStyle::None},

    // Containers out of the ordinary.
    {"com.plainname.app", "PlainName.app", "Plain Name", "PlainName", 6, 1, 1, 1, Glyph::Disc, 260, IconStyle::Primary, InfoFormat::Binary, Container::NamedByApp},
    {"com.goneapp.leftover", "", "", "", 16, 2, 0, 3, Glyph::Disc, 0, IconStyle::None, InfoFormat::Binary, Container::NoBundle},
    {"com.stranger.unknown", "", "", "", 4, 0, 0, 0, Glyph::Disc, 0, IconStyle::None, InfoFormat::Binary, Container::NoMetadata},
    {"com.neverstarted.app", "NeverStarted.app", "Never Started", "NeverStarted", 0, 0, 0, 0, Glyph::Triangle, 75, IconStyle::Primary, InfoFormat::Binary, Container::NoContainer},
});
// clang-format on

}  // namespace

std::span<const App> apps() {
    return kApps;
}

}  // namespace sweepwright::sample::catalog
