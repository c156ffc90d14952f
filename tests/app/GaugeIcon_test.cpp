#include "Vantrel/app/GaugeIcon.h"

#include <QImage>
#include <QPixmap>

#include <gtest/gtest.h>

#include <algorithm>

namespace vantrel {
namespace {

class GaugeIconTest : public testing::TestWithParam<int> {};

TEST_P(GaugeIconTest, IsPaintedAtExactlyTheSizeAsked)
{
    const int side = GetParam();
    const QPixmap pixmap = gaugeIcon().pixmap(QSize(side, side));
    EXPECT_EQ(pixmap.size(), QSize(side, side));
    EXPECT_TRUE(pixmap.hasAlphaChannel());
}

TEST_P(GaugeIconTest, DrawsTheNeedleWithFullyInkedPixels)
{
    // A bitmap scaled to the size would smear the one-pixel needle over two half-inked columns; painted
    // for the size, the vertical needle is a run of fully opaque light pixels in one column.
    const int side = GetParam();
    const QImage image =
        gaugeIcon().pixmap(QSize(side, side)).toImage().convertToFormat(QImage::Format_ARGB32);
    int longestRun = 0;
    for (int x = 0; x < side; ++x) {
        int run = 0;
        for (int y = 0; y < side; ++y) {
            const QColor colour = image.pixelColor(x, y);
            run = colour.alpha() == 255 && colour.lightness() > 200 ? run + 1 : 0;
            longestRun = std::max(longestRun, run);
        }
    }
    EXPECT_GE(longestRun, std::max(3, side / 5)) << side;
    EXPECT_EQ(image.pixelColor(0, 0).alpha(), 0); // the corners stay clear
}

INSTANTIATE_TEST_SUITE_P(Sizes, GaugeIconTest, testing::Values(16, 20, 22, 24, 32, 48, 64, 128));

TEST(GaugeIcon, DisabledIsFainter)
{
    const QImage normal = gaugeIcon().pixmap(QSize(32, 32)).toImage();
    const QImage disabled = gaugeIcon().pixmap(QSize(32, 32), QIcon::Disabled).toImage();
    EXPECT_NE(normal, disabled);
}

TEST(GaugeIcon, TheTemplateIsTheStrokesAloneInAMaskIcon)
{
    EXPECT_FALSE(gaugeIcon().isMask());
    EXPECT_TRUE(gaugeTemplateIcon().isMask());
    const QImage face = gaugeIcon().pixmap(QSize(32, 32)).toImage().convertToFormat(QImage::Format_ARGB32);
    const QImage strokes =
        gaugeTemplateIcon().pixmap(QSize(32, 32)).toImage().convertToFormat(QImage::Format_ARGB32);
    // Inside the dial, below its centre, where no stroke runs: the face covers it, the template leaves it
    // clear.
    EXPECT_GT(face.pixelColor(16, 23).alpha(), 200);
    EXPECT_EQ(strokes.pixelColor(16, 23).alpha(), 0);
    // The needle is there, opaque and black.
    int inked = 0;
    for (int y = 0; y < 16; ++y) {
        const QColor colour = strokes.pixelColor(16, y);
        if (colour.alpha() == 255) {
            EXPECT_EQ(colour.lightness(), 0);
            ++inked;
        }
    }
    EXPECT_GE(inked, 6);
}

} // namespace
} // namespace vantrel
