#include <stdexcept>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "objc/FakeLibrary.h"
#include "platform/system/internal/ObjectiveCBridge.h"

namespace sweepwright::platform {
namespace {

using Object = ObjectiveCBridge::Object;

class ObjectiveCBridgeTest : public test::ObjectiveCTest {
  protected:
    /// A new object of `className`, to be released by the autorelease scope.
    Object make(const char* className) const {
        const Object made = bridge_->send<Object>(
            bridge_->send<Object>(bridge_->classNamed(className), "alloc"), "init");
        return bridge_->send<Object>(made, "autorelease");
    }

    /// The description of the error that sending `selector` to a ProxyThatRaises ends in.
    std::string raisedBy(const char* selector) const {
        const auto outcome = bridge_->guarded(
            [&] { return bridge_->send<Object>(make("ProxyThatRaises"), selector); });
        EXPECT_FALSE(outcome.has_value());
        if (outcome) return "nothing";
        EXPECT_EQ(outcome.error().domain, kObjectiveCErrorDomain);
        return outcome.error().description;
    }
};

TEST_F(ObjectiveCBridgeTest, AClassIsFoundByItsName) {
    ASSERT_NE(bridge_, nullptr);
    EXPECT_NE(bridge_->classNamed("LSApplicationWorkspace"), nullptr);
    EXPECT_EQ(bridge_->classNamed("NoSuchClass"), nullptr);
}

TEST_F(ObjectiveCBridgeTest, NilAnswersNothingAndMessagesToItReturnZero) {
    EXPECT_FALSE(bridge_->responds(nullptr, "description"));
    EXPECT_EQ(bridge_->send<Object>(nullptr, "description"), nullptr);
    EXPECT_EQ(bridge_->send<std::size_t>(nullptr, "count"), 0U);
    EXPECT_EQ(bridge_->ask(nullptr, "description"), nullptr);
    EXPECT_EQ(bridge_->text(nullptr), std::nullopt);
    EXPECT_EQ(bridge_->bytes(nullptr), std::nullopt);
}

TEST_F(ObjectiveCBridgeTest, AnExceptionBecomesAnErrorWithItsReason) {
    EXPECT_EQ(raisedBy("applicationIdentifier"), "标识符 7");
}

TEST_F(ObjectiveCBridgeTest, AnExceptionRaisedWhileAnotherIsHandledGivesItsOwnReason) {
    EXPECT_EQ(raisedBy("dataContainerURL"), "second");
}

TEST_F(ObjectiveCBridgeTest, AThrownObjectWithoutAReasonIsDescribedByItsDescription) {
    EXPECT_EQ(raisedBy("localizedName"), "一个对象");
}

TEST_F(ObjectiveCBridgeTest, AnExceptionOfAnEmptyReasonIsDescribedByItsDescription) {
    EXPECT_EQ(raisedBy("emptyReason"), "described only");
}

TEST_F(ObjectiveCBridgeTest, AnExceptionThatCannotDescribeItselfGetsAFixedText) {
    EXPECT_EQ(raisedBy("bundleURL"), "Objective-C exception");
}

TEST_F(ObjectiveCBridgeTest, AMessageThatIsNotUnderstoodIsAnError) {
    EXPECT_NE(raisedBy("noSuchMessage").find("noSuchMessage"), std::string::npos);
}

TEST_F(ObjectiveCBridgeTest, ACxxExceptionIsAnErrorToo) {
    const auto standard = bridge_->guarded([] { throw std::runtime_error("out of luck"); });
    ASSERT_FALSE(standard.has_value());
    EXPECT_EQ(standard.error().description, "out of luck");
    const auto other = bridge_->guarded([]() -> int { throw 7; });
    ASSERT_FALSE(other.has_value());
    EXPECT_EQ(other.error().description, "Objective-C exception");
}

TEST_F(ObjectiveCBridgeTest, ThousandsOfExceptionsLeaveTheRunTimeSoundAndNothingAlive) {
    const long before = library_.liveObjects();
    for (int i = 0; i < 2000; ++i) {
        ASSERT_EQ(raisedBy("localizedName"), "一个对象");
        ASSERT_EQ(raisedBy("bundleURL"), "Objective-C exception");
    }
    EXPECT_EQ(library_.liveObjects(), before);
}

TEST_F(ObjectiveCBridgeTest, EveryThreadHasItsOwnScopeAndItsOwnExceptions) {
    const long before = library_.liveObjects();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([&] {
            for (int i = 0; i < 200; ++i) {
                EXPECT_EQ(raisedBy("localizedName"), "一个对象");
                EXPECT_EQ(raisedBy("applicationIdentifier"), "标识符 7");
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(library_.liveObjects(), before);
}

TEST_F(ObjectiveCBridgeTest, WhatIsAutoreleasedIsGoneAfterTheScope) {
    const long before = library_.liveObjects();
    const auto inside = bridge_->guarded([&] {
        make("FullProxy");
        return library_.liveObjects();
    });
    EXPECT_EQ(inside, before + 1);
    EXPECT_EQ(library_.liveObjects(), before);
}

TEST_F(ObjectiveCBridgeTest, AReferenceKeepsItsObjectUntilItEnds) {
    const long before = library_.liveObjects();
    {
        auto kept =
            bridge_->guarded([&] { return ObjectiveCReference(*bridge_, make("FullProxy")); });
        ASSERT_TRUE(kept.has_value());
        EXPECT_EQ(library_.liveObjects(), before + 1);
        const ObjectiveCReference moved(std::move(*kept));
        EXPECT_EQ(kept->get(), nullptr);
        EXPECT_NE(moved.get(), nullptr);
        EXPECT_EQ(library_.liveObjects(), before + 1);
    }
    EXPECT_EQ(library_.liveObjects(), before);
}

}  // namespace
}  // namespace sweepwright::platform
