#include "Vantrel/app/ElidingLabel.h"
#include "Vantrel/app/OverlayPanel.h"
#include "Vantrel/ui/Layout.h"
#include "Vantrel/ui/MeterRow.h"
#include "Vantrel/ui/Palette.h"
#include "Vantrel/ui/PastelBar.h"

#include <QLabel>

#include "DelegateFixture.h"
#include <cmath>

namespace vantrel::testing {
namespace {

QString coreTip(int core)
{
    return QString::fromUtf8("Logické jádro CPU %1, poslední interval.").arg(core);
}

class TelemetryTickTest : public DelegateFixture {};

TEST_F(TelemetryTickTest, PerCoreFiguresGoToTheirCellsWithNumberedTips)
{
    processors = 3;
    AppDelegate& app = withPanel();
    SampleRecord record;
    record.cpuCores = {12.5, std::nullopt, 40.0};
    app.showSample(record);
    ASSERT_EQ(app.cpuRows.size(), 3U);
    EXPECT_EQ(app.cpuRows[0]->value()->text(), QString::fromUtf8("12 %"));
    EXPECT_DOUBLE_EQ(app.cpuRows[0]->progress()->doubleValue(), 12.5);
    EXPECT_EQ(app.cpuRows[1]->value()->text(), QString::fromUtf8("—"));
    EXPECT_EQ(app.cpuRows[2]->value()->text(), QString::fromUtf8("40 %"));
    for (int core = 1; core <= 3; ++core) {
        EXPECT_EQ(app.cpuRows[static_cast<std::size_t>(core - 1)]->toolTip(), coreTip(core));
    }
}

TEST_F(TelemetryTickTest, AnEmptyCoreListKeepsTheGridAndShowsItUnavailable)
{
    processors = 4;
    AppDelegate& app = withPanel();
    SampleRecord first;
    first.cpuCores = {10.0, 20.0, 30.0, 40.0};
    app.showSample(first);
    const std::vector<ui::MeterRow*> rows = app.cpuRows;
    app.showSample(SampleRecord{});
    EXPECT_EQ(app.cpuRows, rows);
    ASSERT_EQ(app.cpuRows.size(), 4U);
    for (int core = 1; core <= 4; ++core) {
        const ui::MeterRow& row = *app.cpuRows[static_cast<std::size_t>(core - 1)];
        EXPECT_EQ(row.value()->text(), QString::fromUtf8("—"));
        EXPECT_EQ(row.toolTip(), coreTip(core));
    }
}

TEST_F(TelemetryTickTest, ADifferentCoreCountRebuildsTheGridAndResizesThePanel)
{
    processors = 4;
    AppDelegate& app = withPanel();
    const int heightBefore = app.canvas->height();
    SampleRecord record;
    record.cpuCores = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0};
    app.showSample(record);
    ASSERT_EQ(app.cpuRows.size(), 6U);
    EXPECT_EQ(app.cpuDetail->arrangedViews().size(), 2); // 4 + 2 with two empty cells
    for (std::size_t index = 0; index < 6; ++index) {
        EXPECT_EQ(app.cpuRows[index]->label()->text(), QString::number(index + 1));
        EXPECT_EQ(app.cpuRows[index]->progress()->tint(), ui::Palette::cpu());
        EXPECT_DOUBLE_EQ(app.cpuRows[index]->progress()->doubleValue(), static_cast<double>(index + 1));
    }
    EXPECT_GT(app.canvas->height(), heightBefore);
}

TEST_F(TelemetryTickTest, TheSummaryRowsGetTheirFiguresAndTips)
{
    AppDelegate& app = withPanel();
    SampleRecord record;
    record.cpu = 42.0;
    record.ram = 90.0;
    record.gpu = 7.0;
    record.network = 3.0;
    record.networkExplanation = "Využití linky eth0 (1000 Mb/s).";
    app.showSample(record);
    EXPECT_EQ(app.cpu->value()->text(), QString::fromUtf8("42 %"));
    EXPECT_EQ(app.cpu->toolTip(), QString::fromUtf8("Vytížení všech jader CPU za poslední interval."));
    EXPECT_EQ(app.ram->value()->text(), QString::fromUtf8("90 %"));
    EXPECT_EQ(app.ram->toolTip(),
              QString::fromUtf8("Aktivní + wired + komprimované fyzické stránky / celková "
                                "RAM. Nejde o indikátor tlaku na paměť."));
    EXPECT_EQ(textColour(*app.ram->value()), ui::SystemColor::systemOrange()); // 90 > 85 on a load row
    EXPECT_EQ(app.gpu->value()->text(), QString::fromUtf8("7 %"));
    EXPECT_EQ(app.gpu->toolTip(), QString::fromUtf8("Vytížení GPU hlášené ovladačem; u více GPU maximum. "
                                                    "Některé ovladače údaj neposkytují."));
    EXPECT_EQ(app.network->value()->text(), QString::fromUtf8("3 %"));
    EXPECT_EQ(app.network->toolTip(), QString::fromUtf8("Využití linky eth0 (1000 Mb/s)."));
}

TEST_F(TelemetryTickTest, AnUnavailableNetworkCarriesTheExplanation)
{
    AppDelegate& app = withPanel();
    SampleRecord record;
    record.networkExplanation = "Rychlost linky je 0, využití nelze spočítat.";
    app.showSample(record);
    EXPECT_EQ(app.network->value()->text(), QString::fromUtf8("—"));
    EXPECT_EQ(app.network->toolTip(), QString::fromUtf8("Rychlost linky je 0, využití nelze spočítat."));
    EXPECT_EQ(app.network->progress()->accessibilityValue().toString(), QString::fromUtf8("Nedostupné"));
}

TEST_F(TelemetryTickTest, TheTickSamplesTheMachine)
{
    telemetryRoot = "/";
    AppDelegate& app = withShownPanel();
    app.sample();
    // The machine's own memory reading: present, unlike the first load figures.
    EXPECT_NE(app.ram->value()->text(), QString::fromUtf8("—"));
}

TEST_F(TelemetryTickTest, AHiddenPanelGetsTheNewestRecordWhenItShows)
{
    telemetryRoot = std::string(VANTREL_FIXTURES) + "/telemetry/machine";
    AppDelegate& app = withPanel();
    app.lastUsage = now - 150;
    app.sample();
    EXPECT_EQ(app.ram->value()->text(), QString::fromUtf8("—"));
    EXPECT_EQ(app.updated->text(), QString::fromUtf8("Limity: načítání…"));

    desktop.frontmost = windowOfClass("Codex");
    app.focusChanged();
    ASSERT_TRUE(app.panel->isVisible());
    // (2 000 000 active + 200 000 wired + 200 000 compressed) kB of 16 000 000 kB.
    EXPECT_EQ(app.ram->value()->text(), QString::fromUtf8("15 %"));
    EXPECT_EQ(app.updated->text(), QString::fromUtf8("Limity: starší údaj (2 min) · nelze obnovit"));
}

TEST_F(TelemetryTickTest, AShownPanelGetsEachRecordAtOnce)
{
    telemetryRoot = std::string(VANTREL_FIXTURES) + "/telemetry/machine";
    AppDelegate& app = withShownPanel();
    app.sample();
    EXPECT_EQ(app.ram->value()->text(), QString::fromUtf8("15 %"));
}

struct StalenessCase {
    const char* description;
    double age;
    bool failed;
    const char* expected; // nullptr: the line is left as it was
};

class StalenessTest : public TelemetryTickTest, public ::testing::WithParamInterface<StalenessCase> {};

TEST_P(StalenessTest, TheStatusLineWarnsOfOldLimits)
{
    AppDelegate& app = withPanel();
    const QString before = QString::fromUtf8("Limity 12:00 · počítač každé 2 s");
    app.updated->setText(before);
    ui::setTextColor(app.updated.get(), ui::SystemColor::secondaryLabel());
    app.lastUsage = now - GetParam().age;
    app.lastFetchFailed = GetParam().failed;
    app.showSample(SampleRecord{});
    if (GetParam().expected == nullptr) {
        EXPECT_EQ(app.updated->text(), before) << GetParam().description;
        EXPECT_EQ(textColour(*app.updated), ui::SystemColor::secondaryLabel());
        return;
    }
    EXPECT_EQ(app.updated->text(), QString::fromUtf8(GetParam().expected)) << GetParam().description;
    EXPECT_EQ(textColour(*app.updated), ui::SystemColor::systemOrange());
}

INSTANTIATE_TEST_SUITE_P(
    Ages, StalenessTest,
    ::testing::Values(StalenessCase{"150 s", 150, false, "Limity: starší údaj (2 min) · nelze obnovit"},
                      StalenessCase{"30 s, failed", 30, true, "Limity: starší údaj (0 min) · nelze obnovit"},
                      StalenessCase{"120 s", 120, false, nullptr},
                      StalenessCase{"121 s", 121, false, "Limity: starší údaj (2 min) · nelze obnovit"},
                      StalenessCase{"fresh", 5, false, nullptr}));

TEST_F(TelemetryTickTest, WithoutLimitsTheStatusLineIsLeftAlone)
{
    AppDelegate& app = withPanel();
    app.lastFetchFailed = true;
    app.showSample(SampleRecord{});
    EXPECT_EQ(app.updated->text(), QString::fromUtf8("Limity: načítání…"));
}

} // namespace
} // namespace vantrel::testing
