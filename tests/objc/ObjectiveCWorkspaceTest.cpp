#include <optional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "objc/FakeLibrary.h"
#include "platform/system/internal/ObjectiveCWorkspace.h"

namespace sweepwright::platform {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;
using Availability = ApplicationWorkspace::Availability;

class ObjectiveCWorkspaceTest : public test::ObjectiveCTest {
  protected:
    ObjectiveCWorkspace workspace(const char* className) const {
        return ObjectiveCWorkspace(bridge_, className);
    }

    /// The places of the fake service's proxies in its list.
    enum Place { Full, WithoutProperties, OfNil, ThatRaises, OfOtherClasses, Forwarding, kPlaces };

    std::unique_ptr<ApplicationProxy> proxy(Place place) const {
        ObjectiveCWorkspace service(bridge_);
        auto all = service.allInstalledApplications();
        if (!all || !*all || (*all)->size() != kPlaces) {
            ADD_FAILURE() << "the fake service lists other proxies than expected";
            std::abort();
        }
        return std::move((**all)[place]);
    }
};

/// What a call answered, as one text: "none", "= <value>" or "raised: <reason>".
std::string outcome(const Result<std::optional<std::string>>& result) {
    if (!result) return "raised: " + result.error().description;
    return *result ? "= " + **result : "none";
}

std::vector<std::string> fields(ApplicationProxy& proxy) {
    return {outcome(proxy.applicationIdentifier()), outcome(proxy.localizedName()),
            outcome(proxy.bundlePath()), outcome(proxy.dataContainerPath())};
}

const std::vector<std::string> kFullFields = {
    "= com.example.notes", "= 清理笔记 📝",
    "= /private/var/containers/Bundle/Application/A B/Notizé.app",
    "= /var/mobile/Containers/Data/Application/清 x"};

TEST_F(ObjectiveCWorkspaceTest, TheServiceIsFoundByItsName) {
    EXPECT_EQ(ObjectiveCWorkspace(bridge_).availability(), Availability::Available);
    EXPECT_EQ(ApplicationWorkspace::ofHost().availability(), Availability::Available);
}

TEST_F(ObjectiveCWorkspaceTest, AMissingClassIsToldFromAMissingInstance) {
    EXPECT_EQ(workspace("NoSuchWorkspace").availability(), Availability::ClassMissing);
    for (const char* without :
         {"WorkspaceWithoutInstance", "WorkspaceWithoutAccessor", "WorkspaceWhoseInstanceRaises"})
        EXPECT_EQ(workspace(without).availability(), Availability::InstanceMissing) << without;
}

TEST_F(ObjectiveCWorkspaceTest, AServiceThatIsNotAvailableListsNothing) {
    for (const char* className : {"NoSuchWorkspace", "WorkspaceWithoutInstance",
                                  "WorkspaceWithoutAccessor", "WorkspaceWhoseInstanceRaises"}) {
        const auto installed = workspace(className).allInstalledApplications();
        ASSERT_TRUE(installed.has_value()) << className;
        EXPECT_FALSE(installed->has_value()) << className;
    }
}

TEST_F(ObjectiveCWorkspaceTest, AnOperationThatIsMissingIsToldFromAnEmptyList) {
    const auto missing = workspace("WorkspaceWithoutLists").allInstalledApplications();
    ASSERT_TRUE(missing.has_value());
    EXPECT_FALSE(missing->has_value());
    EXPECT_FALSE(workspace("WorkspaceWithoutLists").allApplications().value().has_value());

    const auto empty = workspace("EmptyWorkspace").allInstalledApplications();
    ASSERT_TRUE(empty.has_value() && empty->has_value());
    EXPECT_THAT(**empty, IsEmpty());
    const auto nil = workspace("EmptyWorkspace").allApplications();
    ASSERT_TRUE(nil.has_value() && nil->has_value());
    EXPECT_THAT(**nil, IsEmpty());
}

TEST_F(ObjectiveCWorkspaceTest, AnExceptionOfAListIsAnErrorWithItsReason) {
    const auto installed = workspace("WorkspaceThatRaises").allInstalledApplications();
    ASSERT_FALSE(installed.has_value());
    EXPECT_EQ(installed.error().description, "权限不足");
    const auto all = workspace("WorkspaceThatRaises").allApplications();
    ASSERT_FALSE(all.has_value());
    EXPECT_EQ(all.error().description, "旧接口");
}

TEST_F(ObjectiveCWorkspaceTest, TheOlderOperationListsToo) {
    ObjectiveCWorkspace service(bridge_);
    const auto all = service.allApplications();
    ASSERT_TRUE(all.has_value() && all->has_value());
    ASSERT_EQ((*all)->size(), 1U);
    EXPECT_EQ(fields(*(**all)[0]), kFullFields);
}

TEST_F(ObjectiveCWorkspaceTest, AProxyTellsItsFourFields) {
    EXPECT_EQ(fields(*proxy(Full)), kFullFields);
}

TEST_F(ObjectiveCWorkspaceTest, AProxyThatForwardsTellsThemToo) {
    EXPECT_EQ(fields(*proxy(Forwarding)), kFullFields);
    EXPECT_EQ(outcome(proxy(Forwarding)->iconDataForVariant(10)),
              "= " + std::string("\x0A\0\xFF", 3));
}

TEST_F(ObjectiveCWorkspaceTest, WhatAProxyDoesNotAnswerIsNone) {
    for (const Place place : {WithoutProperties, OfNil}) {
        const auto empty = proxy(place);
        EXPECT_THAT(fields(*empty), ElementsAre("none", "none", "none", "none"));
        EXPECT_EQ(outcome(empty->iconDataForVariant(10)), "none");
        EXPECT_THAT(empty->iconsOfAllSizes().value(), IsEmpty());
    }
}

TEST_F(ObjectiveCWorkspaceTest, AnswersOfOtherClassesAreNone) {
    const auto odd = proxy(OfOtherClasses);
    EXPECT_EQ(outcome(odd->applicationIdentifier()), "none");
    EXPECT_EQ(outcome(odd->bundlePath()), "none");
    EXPECT_EQ(outcome(odd->dataContainerPath()), "none");
    EXPECT_EQ(outcome(odd->iconDataForVariant(10)), "none");
    EXPECT_THAT(odd->iconsOfAllSizes().value(), IsEmpty());
}

TEST_F(ObjectiveCWorkspaceTest, EachCallOfAProxyMayRaise) {
    const auto raising = proxy(ThatRaises);
    EXPECT_THAT(fields(*raising), ElementsAre("raised: 标识符 7", "raised: 一个对象",
                                              "raised: Objective-C exception", "raised: second"));
    EXPECT_EQ(outcome(raising->iconDataForVariant(10)), "raised: no icon");
    EXPECT_FALSE(raising->iconsOfAllSizes().has_value()) << "keys that can't be compared";
}

TEST_F(ObjectiveCWorkspaceTest, AnIconIsAskedForByVariant) {
    const auto full = proxy(Full);
    EXPECT_EQ(outcome(full->iconDataForVariant(10)), "= " + std::string("\x0A\0\xFF", 3));
    EXPECT_EQ(outcome(full->iconDataForVariant(2)), "= " + std::string("\x02\0\xFF", 3));
}

TEST_F(ObjectiveCWorkspaceTest, IconsOfAllSizesComeTheGreatestFirst) {
    const auto icons = proxy(Full)->iconsOfAllSizes();
    ASSERT_TRUE(icons.has_value());
    std::vector<std::pair<std::string, std::string>> listed;
    for (const auto& icon : *icons)
        listed.emplace_back(icon.size, icon.data);
    EXPECT_THAT(listed, ElementsAre(Pair("1024", ""), Pair("180", "large"), Pair("60", ""),
                                    Pair("29", "small")));
}

TEST_F(ObjectiveCWorkspaceTest, ProxiesLiveAsLongAsTheirOwnerAndNoLonger) {
    const long before = library_.liveObjects();
    {
        ObjectiveCWorkspace service(bridge_);
        const auto all = service.allInstalledApplications();
        ASSERT_TRUE(all.has_value() && all->has_value());
        const long listed = library_.liveObjects();
        EXPECT_GE(listed, before + kPlaces);
        for (const auto& each : **all) {
            static_cast<void>(fields(*each));
            static_cast<void>(each->iconsOfAllSizes());
        }
        EXPECT_EQ(library_.liveObjects(), listed);
    }
    EXPECT_EQ(library_.liveObjects(), before);
}

TEST_F(ObjectiveCWorkspaceTest, SeveralThreadsMayListAtOnce) {
    const long before = library_.liveObjects();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 50; ++i)
                EXPECT_EQ(fields(*proxy(Full)), kFullFields);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(library_.liveObjects(), before);
}

}  // namespace
}  // namespace sweepwright::platform
