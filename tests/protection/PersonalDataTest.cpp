#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "protection/PersonalData.h"

namespace sweepwright {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::string_view kHome = "/var/mobile/Containers/Data/Application/SELF";

auto held(std::string_view path) {
    return personalDataIn(path, kHome);
}

TEST(PersonalData, APlaceIsHeldByItselfWhatIsInItAndWhatIsAboveIt) {
    EXPECT_THAT(held("/var/mobile/Media/DCIM"), ElementsAre("photos"));
    EXPECT_THAT(held("/var/mobile/Media/DCIM/100APPLE"), ElementsAre("photos"));
    EXPECT_THAT(held("/var/mobile/Media"), ElementsAre("photos", "voice memos"));
    EXPECT_THAT(held("/var/mobile/Library/SMS/Attachments"), ElementsAre("messages"));
    EXPECT_THAT(held("/var/mobile/Library"), Contains("messages"));
    EXPECT_THAT(held("/"), Contains("a whole home"));
}

TEST(PersonalData, NamesAreComparedWhole) {
    EXPECT_THAT(held("/var/mobile/Media/DCIM2"), IsEmpty());
    EXPECT_THAT(held("/var/mobile/Media/DC"), IsEmpty());
    EXPECT_THAT(held("/var/mobile/Library/Caches/DCIM"), IsEmpty());
}

TEST(PersonalData, AnyAppsDocumentsCountAndItsCachesDoNot) {
    const std::string app = "/var/mobile/Containers/Data/Application/X";
    for (const std::string& path :
         {app + "/Documents", app + "/Documents/a", app, std::string("/var/mobile/Containers/Data"),
          std::string("/var/mobile/Containers/Shared/AppGroup/Y"),
          std::string(kHome) + "/Documents"})
        EXPECT_THAT(held(path), Contains("documents of apps")) << path;
    EXPECT_THAT(held(app + "/Library/Caches"), IsEmpty());
    EXPECT_THAT(held("/var/mobile/Containers/Shared/AppGroup/Y/Library/Caches"), IsEmpty());
}

TEST(PersonalData, AHomeIsHeldByItselfAndWhatIsAboveItOnly) {
    EXPECT_THAT(held("/var/mobile"), Contains("a whole home"));
    EXPECT_THAT(held("/var"), Contains("a whole home"));
    EXPECT_THAT(held("/var/root"), ElementsAre("a whole home"));
    EXPECT_THAT(held(kHome), ElementsAre("a whole home", "documents of apps"));
    EXPECT_THAT(held("/var/mobile/Library/Caches"), IsEmpty());
    EXPECT_THAT(personalDataIn("/apps/home", "/apps/home"),
                ElementsAre("a whole home", "documents of apps"));
    EXPECT_THAT(personalDataIn("/apps/home/Documents/x", "/apps/home"),
                ElementsAre("documents of apps"));
}

TEST(PersonalData, SpellingsOfOnePlaceAreOnePlace) {
    EXPECT_THAT(held("/private/var/mobile/Media/DCIM/"), ElementsAre("photos"));
    EXPECT_THAT(held("//var//mobile/Media//DCIM"), ElementsAre("photos"));
    EXPECT_THAT(held("/private/mobile/Media/DCIM"), IsEmpty());
}

}  // namespace
}  // namespace sweepwright
