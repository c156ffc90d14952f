#include "Vantrel/ui/MeterRow.h"
#include "Vantrel/ui/MiniSwitch.h"
#include "Vantrel/ui/Palette.h"
#include "Vantrel/ui/PastelBar.h"

#include <QAccessible>
#include <QLabel>
#include <QLayout>

#include <gtest/gtest.h>

#include <limits>

namespace vantrel::ui {
namespace {

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
const QString absent = QStringLiteral("—");
const QString unavailable = QStringLiteral("Nedostupné");
const QString noReading = QStringLiteral("Údaj není dostupný.");

TEST(MeterRowTest, StartsWithItsCaptionADashAndAnUndimmedEmptyBar)
{
    const MeterRow row(QStringLiteral("RAM"), true, Palette::ram());
    EXPECT_EQ(row.label()->text(), QStringLiteral("RAM"));
    EXPECT_EQ(textColor(row.label()), SystemColor::secondaryLabel());
    EXPECT_EQ(row.value()->text(), absent);
    EXPECT_TRUE(row.value()->alignment().testFlag(Qt::AlignRight));
    EXPECT_TRUE(row.remaining());
    EXPECT_EQ(row.progress()->tint(), Palette::ram());
    EXPECT_EQ(row.progress()->doubleValue(), 0.0);
    EXPECT_EQ(row.progress()->alphaValue(), 1.0);
    EXPECT_EQ(row.progress()->accessibleName(), QStringLiteral("RAM"));
    EXPECT_TRUE(row.coreSwitch()->isHidden());
    EXPECT_TRUE(row.toolTip().isEmpty());
}

TEST(MeterRowTest, DefaultsToTheCpuTintAndALoadRow)
{
    const MeterRow row(QStringLiteral("CPU"), false);
    EXPECT_EQ(row.progress()->tint(), Palette::cpu());
    EXPECT_FALSE(row.remaining());
}

struct FontCase {
    bool compact;
    int labelSize;
    int valueSize;
};

class MeterRowFontTest : public ::testing::TestWithParam<FontCase> {};

TEST_P(MeterRowFontTest, UsesMediumCaptionAndSemiboldTabularNumber)
{
    const MeterRow row(QStringLiteral("1"), false, Palette::cpu(), GetParam().compact);
    EXPECT_EQ(row.label()->font().pixelSize(), GetParam().labelSize);
    EXPECT_EQ(row.label()->font().weight(), QFont::Medium);
    EXPECT_EQ(row.value()->font().pixelSize(), GetParam().valueSize);
    EXPECT_EQ(row.value()->font().weight(), QFont::DemiBold);
}

INSTANTIATE_TEST_SUITE_P(Sizes, MeterRowFontTest,
                         ::testing::Values(FontCase{false, 11, 12}, FontCase{true, 9, 9}));

struct UpdateCase {
    const char* name;
    bool remaining;
    std::optional<double> value;
    std::optional<QString> tooltip;
    QString text;
    QColor color;
    double barValue;
    double alpha;
    QVariant accessibleValue;
    QString shownTooltip;
};

class MeterRowUpdateTest : public ::testing::TestWithParam<UpdateCase> {};

TEST_P(MeterRowUpdateTest, ShowsTheReading)
{
    const UpdateCase& expected = GetParam();
    MeterRow row(QStringLiteral("CPU"), expected.remaining);
    row.update(expected.value, expected.tooltip);
    EXPECT_EQ(row.value()->text(), expected.text);
    EXPECT_EQ(textColor(row.value()), expected.color);
    EXPECT_EQ(row.progress()->doubleValue(), expected.barValue);
    EXPECT_EQ(row.progress()->alphaValue(), expected.alpha);
    EXPECT_EQ(row.progress()->accessibilityValue(), expected.accessibleValue);
    EXPECT_EQ(row.toolTip(), expected.shownTooltip);
    // The caption, the tint and the switch are not the reading's business.
    EXPECT_EQ(textColor(row.label()), SystemColor::secondaryLabel());
    EXPECT_EQ(row.progress()->tint(), Palette::cpu());
    EXPECT_TRUE(row.coreSwitch()->isHidden());
}

const QColor& orange = SystemColor::systemOrange();
const QColor& plain = SystemColor::label();
const QColor& dim = SystemColor::secondaryLabel();
const QString tip = QStringLiteral("Logické jádro CPU 1, poslední interval.");

INSTANTIATE_TEST_SUITE_P(
    Readings, MeterRowUpdateTest,
    ::testing::Values(
        UpdateCase{"NoValueNoTooltip", false, std::nullopt, std::nullopt, absent, dim, 0, 0.45, unavailable,
                   noReading},
        UpdateCase{"NoValueWithTooltip", true, std::nullopt, tip, absent, dim, 0, 0.45, unavailable, tip},
        UpdateCase{"Infinite", false, infinity, tip, absent, dim, 0, 0.45, unavailable, tip},
        UpdateCase{"MinusInfinite", true, -infinity, tip, absent, dim, 0, 0.45, unavailable, tip},
        UpdateCase{"NaN", false, nan, tip, absent, dim, 0, 0.45, unavailable, tip},
        UpdateCase{"AboveRangeLoad", false, 120.0, std::nullopt, "100 %", orange, 100, 1.0, 100.0, ""},
        UpdateCase{"AboveRangeRemaining", true, 120.0, tip, "100 %", plain, 100, 1.0, 100.0, tip},
        UpdateCase{"BelowRangeLoad", false, -5.0, std::nullopt, "0 %", plain, 0, 1.0, 0.0, ""},
        UpdateCase{"BelowRangeRemaining", true, -5.0, std::nullopt, "0 %", orange, 0, 1.0, 0.0, ""},
        UpdateCase{"LoadAtBound", false, 85.0, std::nullopt, "85 %", plain, 85, 1.0, 85.0, ""},
        UpdateCase{"LoadAboveBound", false, 85.0001, std::nullopt, "85 %", orange, 85.0001, 1.0, 85.0001, ""},
        UpdateCase{"RemainingAtBound", true, 15.0, std::nullopt, "15 %", plain, 15, 1.0, 15.0, ""},
        UpdateCase{"RemainingBelowBound", true, 14.9, std::nullopt, "15 %", orange, 14.9, 1.0, 14.9, ""},
        UpdateCase{"LowLoadIsNoWarning", false, 14.9, std::nullopt, "15 %", plain, 14.9, 1.0, 14.9, ""},
        UpdateCase{"HighRemainingIsNoWarning", true, 85.0001, std::nullopt, "85 %", plain, 85.0001, 1.0,
                   85.0001, ""},
        UpdateCase{"MeasuredZero", true, 0.0, std::nullopt, "0 %", orange, 0, 1.0, 0.0, ""},
        UpdateCase{"HalfRoundsToEvenDown", false, 42.5, std::nullopt, "42 %", plain, 42.5, 1.0, 42.5, ""},
        UpdateCase{"HalfRoundsToEvenUp", false, 43.5, std::nullopt, "44 %", plain, 43.5, 1.0, 43.5, ""},
        UpdateCase{"HalfBelowOne", false, 0.5, std::nullopt, "0 %", plain, 0.5, 1.0, 0.5, ""},
        UpdateCase{"HalfBelowFull", true, 99.5, std::nullopt, "100 %", plain, 99.5, 1.0, 99.5, ""},
        UpdateCase{"Fraction", false, 42.49, std::nullopt, "42 %", plain, 42.49, 1.0, 42.49, ""},
        UpdateCase{"Full", true, 100.0, std::nullopt, "100 %", plain, 100, 1.0, 100.0, ""}),
    [](const ::testing::TestParamInfo<UpdateCase>& param) { return std::string(param.param.name); });

TEST(MeterRowTest, APresentReadingAfterAnAbsentOneRestoresTheBarAndReplacesTheTooltip)
{
    MeterRow row(QStringLiteral("GPU"), false, Palette::gpu());
    row.update(std::nullopt, std::nullopt);
    row.update(30.0, QStringLiteral("Vytížení GPU"));
    EXPECT_EQ(row.progress()->alphaValue(), 1.0);
    EXPECT_EQ(row.progress()->accessibilityValue(), QVariant(30.0));
    EXPECT_EQ(row.value()->text(), QStringLiteral("30 %"));
    EXPECT_EQ(textColor(row.value()), SystemColor::label());
    EXPECT_EQ(row.toolTip(), QStringLiteral("Vytížení GPU"));

    row.update(std::nullopt, std::nullopt);
    row.update(31.0, std::nullopt);
    EXPECT_EQ(row.progress()->alphaValue(), 1.0);
    EXPECT_TRUE(row.toolTip().isEmpty());
}

TEST(MeterRowTest, TheTooltipBelongsToTheRowItself)
{
    MeterRow row(QStringLiteral("Síť"), false, Palette::network());
    row.update(12.0, QStringLiteral("eth0"));
    EXPECT_EQ(row.toolTip(), QStringLiteral("eth0"));
    for (QWidget* part : {static_cast<QWidget*>(row.label()), static_cast<QWidget*>(row.value()),
                          static_cast<QWidget*>(row.progress())}) {
        EXPECT_TRUE(part->toolTip().isEmpty());
    }
}

TEST(MeterRowTest, CaptionAndTooltipReachAssistiveTechnology)
{
    MeterRow row(QStringLiteral("Zbývá · krátkodobý limit"), true, Palette::quota());
    row.update(std::nullopt, std::nullopt);
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&row);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Zbývá · krátkodobý limit"));
    EXPECT_EQ(accessible->text(QAccessible::Description), noReading);

    row.label()->setText(QStringLiteral("Zbývá · 5 h"));
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("Zbývá · 5 h"));

    QAccessibleInterface* bar = QAccessible::queryAccessibleInterface(row.progress());
    EXPECT_EQ(bar->text(QAccessible::Name), QStringLiteral("Zbývá · krátkodobý limit"));
    EXPECT_EQ(bar->valueInterface()->currentValue(), QVariant(unavailable));
}

TEST(MeterRowTest, LaysOutTheTextLineAboveTheFullWidthBar)
{
    MeterRow row(QStringLiteral("CPU"), false);
    row.update(42.0, std::nullopt);
    row.resize(256, row.sizeHint().height());
    row.layout()->activate();

    const QRect label = row.label()->geometry();
    const QRect value = row.value()->geometry();
    const QRect bar = row.progress()->geometry();
    EXPECT_EQ(label.left(), 0);
    EXPECT_EQ(value.right(), 255); // pushed to the far end by the flexible space
    EXPECT_EQ(bar, QRect(0, std::max(label.bottom(), value.bottom()) + 1 + 5, 256, 6));
    EXPECT_EQ(row.sizeHint().height(), bar.bottom() + 1);
}

TEST(MeterRowTest, AShownSwitchSitsAfterTheNumber)
{
    MeterRow row(QStringLiteral("CPU"), false);
    row.coreSwitch()->show();
    row.resize(256, row.sizeHint().height());
    row.layout()->activate();
    const QRect control = row.coreSwitch()->geometry();
    EXPECT_EQ(control.right(), 255);
    EXPECT_EQ(row.value()->geometry().right() + 1 + 8, control.left());
}

} // namespace
} // namespace vantrel::ui
