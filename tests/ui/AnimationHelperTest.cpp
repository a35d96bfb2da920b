#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QTest>
#include <algorithm>

#include <gtest/gtest.h>

#include "ui/kit/Appearance.h"
#include "ui/kit/SymbolProvider.h"
#include "ui/support/SteadyFrames.h"
#include "ui/support/TestApp.h"

namespace sweepwright::ui {
namespace {

constexpr const char* kScene = R"(
import QtQuick
import Sweepwright.Kit
Item {
    id: scene
    width: 300
    height: 200
    property int done: 0
    property AnimationHelper motions: AnimationHelper {}
    property Item view: Item {
        transform: Rotation { angle: 0 }
    }
    property real shift: 0
    function bounce() { motions.bounceAnimationForView(view, () => done += 1) }
    function pulse() { motions.pulseAnimationForView(view) }
    function shake() {
        motions.shakeAnimationForView(view);
        const moves = Array.from(view.transform);
        shift = Qt.binding(() => moves[moves.length - 1].x ?? 0);
    }
    function moves() { return Array.from(view.transform).length }
    function fadeIn() { motions.fadeInView(view, 200) }
    function fadeOut() { motions.fadeOutView(view, 200) }
    function rotate() { motions.rotateView(view, 400) }
    function succeed() { motions.showSuccessAnimationInView(scene, () => done += 1) }
    function clean() { motions.showCleaningAnimationInView(scene) }
    function stop() { motions.stopCleaningAnimationInView(scene) }
}
)";

class AnimationHelperTest : public testing::Test {
  protected:
    void SetUp() override {
        Appearance::shared().setReducedMotion(false);
        engine_.addImportPath(QStringLiteral("qrc:/qt/qml"));
        engine_.addImageProvider(SymbolProvider::kIdentifier, new SymbolProvider);
        QQmlComponent component(&engine_);
        component.setData(kScene, {});
        scene_.reset(qobject_cast<QQuickItem*>(component.create()));
        ASSERT_NE(scene_, nullptr) << qPrintable(component.errorString());
        view_ = scene_->property("view").value<QQuickItem*>();
    }
    void TearDown() override { Appearance::shared().setReducedMotion(false); }
    void run(const char* operation) {
        ASSERT_TRUE(QMetaObject::invokeMethod(scene_.get(), operation)) << operation;
    }
    int done() { return scene_->property("done").toInt(); }
    QQuickItem* child(const char* name) {
        for (QQuickItem* each : scene_->childItems())
            if (each->objectName() == QLatin1String(name)) return each;
        return nullptr;
    }
    // Every value that a property takes until `finished`.
    template <class Read>
    std::vector<double> follow(const Read& read, const std::function<bool()>& finished) {
        std::vector<double> seen{read()};
        EXPECT_TRUE(test::waitUntil([&] {
            if (seen.back() != read()) seen.push_back(read());
            return finished();
        }));
        return seen;
    }

    test::SteadyFrames frames_;
    QQmlEngine engine_;
    std::unique_ptr<QQuickItem> scene_;
    QQuickItem* view_ = nullptr;
};

TEST_F(AnimationHelperTest, BouncesFromHalfSizeBeyondItsSizeAndBack) {
    run("bounce");
    EXPECT_DOUBLE_EQ(view_->scale(), 0.5);
    const auto scales = follow([&] { return view_->scale(); }, [&] { return done() == 1; });
    EXPECT_GT(*std::max_element(scales.begin(), scales.end()), 1.0);
    EXPECT_DOUBLE_EQ(view_->scale(), 1.0);
}

TEST_F(AnimationHelperTest, PulsesForEver) {
    run("pulse");
    ASSERT_TRUE(test::waitUntil([&] { return view_->scale() > 1.09; }));
    ASSERT_TRUE(test::waitUntil([&] { return view_->scale() < 1.01; }));
    ASSERT_TRUE(test::waitUntil([&] { return view_->scale() > 1.09; }));
}

TEST_F(AnimationHelperTest, ShakesFromTheLeftToEitherSideAndEndsInItsPlace) {
    run("shake");
    const auto shift = [&] { return scene_->property("shift").toDouble(); };
    EXPECT_DOUBLE_EQ(shift(), -20.0);
    const auto places = follow(shift, [&] { return shift() == 0.0; });
    EXPECT_GT(*std::max_element(places.begin(), places.end()), 10.0);
}

TEST_F(AnimationHelperTest, ShakesTwiceWithOneMoveAndKeepsOthers) {
    run("shake");
    run("shake");
    QVariant moves;
    ASSERT_TRUE(QMetaObject::invokeMethod(scene_.get(), "moves", Q_RETURN_ARG(QVariant, moves)));
    EXPECT_EQ(moves.toInt(), 2);
}

TEST_F(AnimationHelperTest, FadesOutAndIn) {
    run("fadeOut");
    EXPECT_DOUBLE_EQ(view_->opacity(), 1.0);
    ASSERT_TRUE(test::waitUntil([&] { return view_->opacity() == 0.0; }));
    run("fadeIn");
    EXPECT_DOUBLE_EQ(view_->opacity(), 0.0);
    ASSERT_TRUE(test::waitUntil([&] { return view_->opacity() == 1.0; }));
}

TEST_F(AnimationHelperTest, TurnsForEver) {
    run("rotate");
    ASSERT_TRUE(test::waitUntil([&] { return view_->rotation() > 270.0; }));
    ASSERT_TRUE(test::waitUntil([&] { return view_->rotation() < 90.0; }));
    ASSERT_TRUE(test::waitUntil([&] { return view_->rotation() > 270.0; }));
}

TEST_F(AnimationHelperTest, ShowsASuccessForAMomentThenTellsAndIsGone) {
    run("succeed");
    const QQuickItem* badge = child("successBadge");
    ASSERT_NE(badge, nullptr);
    EXPECT_DOUBLE_EQ(badge->width(), 100.0);
    EXPECT_DOUBLE_EQ(badge->x(), 100.0);
    EXPECT_DOUBLE_EQ(badge->y(), 50.0);
    EXPECT_NEAR(badge->scale(), 0.1, 0.05);
    ASSERT_TRUE(test::waitUntil([&] { return badge->scale() == 1.0 && done() == 0; }));
    ASSERT_TRUE(test::waitUntil([&] { return done() == 1; }));
    ASSERT_TRUE(test::waitUntil([&] { return child("successBadge") == nullptr; }));
}

TEST_F(AnimationHelperTest, ShowsThreeRingsWhileItCleansUntilItIsStopped) {
    run("clean");
    QQuickItem* rings = child("cleaningIndicator");
    ASSERT_NE(rings, nullptr);
    EXPECT_DOUBLE_EQ(rings->width(), 80.0);
    EXPECT_DOUBLE_EQ(rings->x(), 110.0);
    QList<QQuickItem*> circles;
    for (QQuickItem* each : rings->childItems())
        if (each->inherits("QQuickRectangle")) circles.append(each);
    ASSERT_EQ(circles.size(), 3);
    ASSERT_TRUE(test::waitUntil([&] { return circles[0]->opacity() > 0.3; }));
    EXPECT_DOUBLE_EQ(circles[2]->opacity(), 0.0);
    ASSERT_TRUE(test::waitUntil([&] { return circles[2]->opacity() > 0.3; }));
    EXPECT_GT(rings->rotation(), 0.0);
    run("stop");
    EXPECT_EQ(child("cleaningIndicator"), nullptr);
    run("stop");
}

TEST_F(AnimationHelperTest, MovesNothingForWhoWantsReducedMotion) {
    Appearance::shared().setReducedMotion(true);
    run("bounce");
    EXPECT_DOUBLE_EQ(view_->scale(), 1.0);
    EXPECT_EQ(done(), 1);
    run("fadeOut");
    EXPECT_DOUBLE_EQ(view_->opacity(), 0.0);
    run("pulse");
    run("rotate");
    run("clean");
    const QQuickItem* rings = child("cleaningIndicator");
    ASSERT_NE(rings, nullptr);
    run("succeed");
    ASSERT_TRUE(test::waitUntil([&] { return done() == 2; }));
    EXPECT_DOUBLE_EQ(view_->scale(), 1.0);
    EXPECT_DOUBLE_EQ(view_->rotation(), 0.0);
    EXPECT_DOUBLE_EQ(rings->rotation(), 0.0);
}

}  // namespace
}  // namespace sweepwright::ui
