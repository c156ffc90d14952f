#include "Vantrel/ui/Palette.h"

#include <QLabel>
#include <QWidget>

#include <gtest/gtest.h>

namespace vantrel::ui {
namespace {

struct PaletteCase {
    const char* name;
    const QColor& (*color)();
    float red, green, blue;
};

class PaletteTest : public ::testing::TestWithParam<PaletteCase> {};

TEST_P(PaletteTest, ReturnsTheSameObjectOnEveryRead)
{
    const PaletteCase& entry = GetParam();
    EXPECT_EQ(&entry.color(), &entry.color());
}

TEST_P(PaletteTest, HasExactlyTheTableComponentsInSrgb)
{
    const PaletteCase& entry = GetParam();
    const QColor& color = entry.color();
    EXPECT_EQ(color.spec(), QColor::Rgb);
    EXPECT_EQ(color, QColor::fromRgbF(entry.red, entry.green, entry.blue, 1.0F));
    // QColor keeps 16 bits per component: the nearest step to the table's value.
    EXPECT_EQ(color.rgba64().red(), qRound(entry.red * 65535.0F));
    EXPECT_EQ(color.rgba64().green(), qRound(entry.green * 65535.0F));
    EXPECT_EQ(color.rgba64().blue(), qRound(entry.blue * 65535.0F));
    EXPECT_EQ(color.rgba64().alpha(), 65535);
}

INSTANTIATE_TEST_SUITE_P(Palette, PaletteTest,
                         ::testing::Values(PaletteCase{"quota", &Palette::quota, 0.65F, 0.87F, 0.74F},
                                           PaletteCase{"weekly", &Palette::weekly, 0.97F, 0.86F, 0.57F},
                                           PaletteCase{"cpu", &Palette::cpu, 0.63F, 0.79F, 0.97F},
                                           PaletteCase{"ram", &Palette::ram, 0.96F, 0.70F, 0.75F},
                                           PaletteCase{"gpu", &Palette::gpu, 0.79F, 0.70F, 0.95F},
                                           PaletteCase{"network", &Palette::network, 0.62F, 0.87F, 0.88F}),
                         [](const ::testing::TestParamInfo<PaletteCase>& param) {
                             return std::string(param.param.name);
                         });

TEST(SystemColorTest, DarkAppearanceTextColours)
{
    EXPECT_EQ(SystemColor::label(), QColor::fromRgbF(1.0F, 1.0F, 1.0F, 0.85F));
    EXPECT_EQ(SystemColor::secondaryLabel(), QColor::fromRgbF(1.0F, 1.0F, 1.0F, 0.55F));
    EXPECT_EQ(SystemColor::tertiaryLabel(), QColor::fromRgbF(1.0F, 1.0F, 1.0F, 0.25F));
    EXPECT_EQ(SystemColor::systemOrange(), QColor(255, 159, 10));
    EXPECT_EQ(&SystemColor::systemOrange(), &SystemColor::systemOrange());
}

TEST(SystemColorTest, DarkPaletteDrawsDefaultTextInTheLabelColour)
{
    const QPalette palette = darkPalette();
    EXPECT_EQ(palette.color(QPalette::WindowText), SystemColor::label());
    EXPECT_EQ(palette.color(QPalette::Window).alpha(), 0);
}

TEST(SystemColorTest, TextColourSetOnALabelSurvivesItsParentsPalette)
{
    QWidget parent;
    auto* label = new QLabel(QStringLiteral("CPU"), &parent);
    setTextColor(label, SystemColor::secondaryLabel());
    parent.setPalette(darkPalette());
    EXPECT_EQ(textColor(label), SystemColor::secondaryLabel());
    EXPECT_EQ(textColor(&parent), SystemColor::label());
}

} // namespace
} // namespace vantrel::ui
