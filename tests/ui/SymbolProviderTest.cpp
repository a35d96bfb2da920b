#include <QDir>
#include <QImage>

#include <gtest/gtest.h>

#include "ui/kit/SymbolProvider.h"

namespace sweepwright::ui {
namespace {

// Every name that a screen or the kit asks for.
const char* const kNames[] = {"house.fill",
                              "app.badge.fill",
                              "gearshape.fill",
                              "tray.full.fill",
                              "clock.arrow.circlepath",
                              "globe.badge.chevron.backward",
                              "list.bullet.rectangle.portrait.fill",
                              "chevron.down",
                              "chevron.up",
                              "chevron.left",
                              "chevron.right",
                              "checkmark",
                              "trash.fill",
                              "checkmark.shield.fill",
                              "minus.circle.fill",
                              "globe",
                              "eye.slash.fill",
                              "doc.text.fill",
                              "folder.badge.plus",
                              "chart.bar.fill",
                              "lock.shield.fill",
                              "info.circle.fill",
                              "questionmark.circle.fill",
                              "hand.raised.fill",
                              "person.circle.fill",
                              "safari.fill",
                              "message.fill",
                              "paperplane.fill",
                              "star.fill",
                              "checkmark.circle.fill",
                              "plus",
                              "circle",
                              "magnifyingglass",
                              "xmark.circle.fill",
                              "sparkles"};

TEST(SymbolProvider, HasEverySymbolInBothSizesWithInkInsideItsEdges) {
    for (const char* name : kNames) {
        for (const int size : {17, 28}) {
            const QImage image = SymbolProvider::symbol(QString::fromLatin1(name), size, Qt::black);
            ASSERT_FALSE(image.isNull()) << name;
            double ink = 0.0;
            double onEdge = 0.0;
            for (int y = 0; y < size; ++y) {
                for (int x = 0; x < size; ++x) {
                    const double alpha = qAlpha(image.pixel(x, y)) / 255.0;
                    ink += alpha;
                    if (x == 0 || y == 0 || x == size - 1 || y == size - 1) onEdge += alpha;
                }
            }
            EXPECT_GT(ink / (size * size), 0.05) << name;
            EXPECT_LT(onEdge, 4.0) << name << " is cut off at " << size;
        }
    }
}

TEST(SymbolProvider, GivesInkItsColourAndLetsWhiteThrough) {
    const QImage image =
        SymbolProvider::symbol(QStringLiteral("checkmark.circle.fill"), 280, QColor(255, 0, 0));
    EXPECT_EQ(image.pixelColor(140, 40), QColor(255, 0, 0));
    // On the check mark.
    EXPECT_EQ(image.pixelColor(127, 181).alpha(), 0);
    EXPECT_EQ(image.pixelColor(2, 2).alpha(), 0);
}

TEST(SymbolProvider, DrawsNothingForAnUnknownName) {
    EXPECT_TRUE(SymbolProvider::symbol(QStringLiteral("nothing.like.it"), 28, Qt::black).isNull());
}

}  // namespace
}  // namespace sweepwright::ui
