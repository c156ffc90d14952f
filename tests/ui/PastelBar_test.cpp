#include "Vantrel/ui/Palette.h"
#include "Vantrel/ui/PastelBar.h"

#include <QAccessibleValueInterface>
#include <QApplication>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

#include <gtest/gtest.h>

#include "tests/ui/Rendering.h"
#include <cmath>
#include <limits>

namespace vantrel::ui {
namespace {

using testing::alphaAt;
using testing::render;

constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr int trackAlpha = 41; // 0.16 of 255
constexpr int middleRow = 3;

// Columns of the middle row painted by the opaque fill rather than by the translucent track.
int filledColumns(const QImage& image)
{
    int columns = 0;
    for (int x = 0; x < image.width(); ++x) {
        if (alphaAt(image, x, middleRow) > (trackAlpha + 255) / 2) {
            ++columns;
        }
    }
    return columns;
}

QImage renderBar(double value, int width = 200, double alpha = 1.0)
{
    PastelBar bar;
    bar.resize(width, PastelBar::barHeight);
    bar.setDoubleValue(value);
    bar.setAlphaValue(alpha);
    return render(bar);
}

TEST(PastelBarTest, StartsAtZeroInTheCpuTint)
{
    const PastelBar bar;
    EXPECT_EQ(bar.doubleValue(), 0.0);
    EXPECT_EQ(bar.tint(), Palette::cpu());
    EXPECT_EQ(bar.alphaValue(), 1.0);
}

struct FillCase {
    double value;
    double expectedWidth;
};

class PastelBarFillWidthTest : public ::testing::TestWithParam<FillCase> {};

TEST_P(PastelBarFillWidthTest, ClampsToTheDrawnRangeWithNanFull)
{
    EXPECT_EQ(pastelBarFillWidth(200.0, GetParam().value), GetParam().expectedWidth);
}

INSTANTIATE_TEST_SUITE_P(Values, PastelBarFillWidthTest,
                         ::testing::Values(FillCase{0.0, 0.0}, FillCase{-5.0, 0.0}, FillCase{-infinity, 0.0},
                                           FillCase{50.0, 100.0}, FillCase{12.5, 25.0},
                                           FillCase{100.0, 200.0}, FillCase{150.0, 200.0},
                                           FillCase{infinity, 200.0}, FillCase{nan, 200.0}));

struct PaintCase {
    const char* name;
    double value;
    int filled;
};

class PastelBarPaintTest : public ::testing::TestWithParam<PaintCase> {};

TEST_P(PastelBarPaintTest, FillsFromTheLeftEdgeOverTheTrack)
{
    const QImage image = renderBar(GetParam().value);
    EXPECT_EQ(filledColumns(image), GetParam().filled);
    for (int x = 3; x < GetParam().filled - 3; ++x) {
        ASSERT_EQ(image.pixelColor(x, middleRow).rgb(), Palette::cpu().rgb()) << "x=" << x;
        ASSERT_EQ(alphaAt(image, x, middleRow), 255) << "x=" << x;
    }
    // Where the fill does not reach, only the track is drawn: the tint at 0.16 opacity.
    for (int x = std::max(GetParam().filled + 3, 3); x < 197; ++x) {
        ASSERT_NEAR(alphaAt(image, x, middleRow), trackAlpha, 1) << "x=" << x;
    }
}

INSTANTIATE_TEST_SUITE_P(Values, PastelBarPaintTest,
                         ::testing::Values(PaintCase{"Zero", 0.0, 0}, PaintCase{"Negative", -5.0, 0},
                                           PaintCase{"Half", 50.0, 100}, PaintCase{"AboveRange", 150.0, 200},
                                           PaintCase{"NaN", nan, 200}),
                         [](const ::testing::TestParamInfo<PaintCase>& param) {
                             return std::string(param.param.name);
                         });

TEST(PastelBarTest, TrackIsTheTintAtAlphaPointSixteenOverTheWholeBar)
{
    const QImage image = renderBar(0.0);
    const QColor middle = image.pixelColor(100, middleRow);
    EXPECT_EQ(middle.alpha(), trackAlpha);
    EXPECT_NEAR(middle.red(), Palette::cpu().red(), 3);
    EXPECT_NEAR(middle.green(), Palette::cpu().green(), 3);
    EXPECT_NEAR(middle.blue(), Palette::cpu().blue(), 3);
    for (int y = 0; y < PastelBar::barHeight; ++y) {
        EXPECT_NEAR(alphaAt(image, 100, y), trackAlpha, 1) << "y=" << y;
    }
}

TEST(PastelBarTest, HalfOfATwoHundredPixelBarIsAHundredPixelsWithBothEndsRounded)
{
    const QImage image = renderBar(50.0);
    // Rounded at both ends: the corners of the fill are far more transparent than its edges' middles.
    EXPECT_LT(alphaAt(image, 0, 0), 128);
    EXPECT_LT(alphaAt(image, 99, 0), 128);
    EXPECT_LT(alphaAt(image, 0, 5), 128);
    EXPECT_LT(alphaAt(image, 99, 5), 128);
    EXPECT_GT(alphaAt(image, 50, 0), 250);
    EXPECT_GT(alphaAt(image, 50, 5), 250);
    EXPECT_EQ(alphaAt(image, 101, middleRow), trackAlpha);
}

// The bar drawn as it must be: a rounded track and a rounded fill of the given corner radius.
QImage expectedBar(QSize size, double value, double radius)
{
    QImage image(size, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor track = Palette::cpu();
    track.setAlphaF(0.16F);
    QPainterPath trackPath;
    trackPath.addRoundedRect(QRectF(QPointF(), size), radius, radius);
    painter.fillPath(trackPath, track);
    QPainterPath fill;
    fill.addRoundedRect(QRectF(0, 0, size.width() * value / 100.0, size.height()), radius, radius);
    painter.fillPath(fill, Palette::cpu());
    return image;
}

TEST(PastelBarTest, CornersHaveRadiusThree)
{
    // A taller bar tells the radii apart: in a 6-pixel bar every radius from 3 up looks the same.
    const QSize size(200, 20);
    PastelBar bar;
    bar.resize(size);
    bar.setDoubleValue(50.0);
    const QImage image = render(bar);
    EXPECT_EQ(image, expectedBar(size, 50.0, 3.0));
    EXPECT_NE(image, expectedBar(size, 50.0, 2.0));
    EXPECT_NE(image, expectedBar(size, 50.0, 4.0));
}

TEST(PastelBarTest, IsSixPixelsHighAndAsWideAsItsContainer)
{
    PastelBar probe;
    EXPECT_EQ(probe.sizeHint().height(), 6);
    EXPECT_EQ(probe.minimumSizeHint().height(), 6);

    QWidget container;
    auto* layout = new QVBoxLayout(&container);
    layout->setContentsMargins(0, 0, 0, 0);
    auto* bar = new PastelBar;
    layout->addWidget(bar);
    container.resize(240, 80);
    layout->activate();
    EXPECT_EQ(bar->geometry(), QRect(0, (80 - 6) / 2, 240, 6));
}

TEST(PastelBarTest, DimmingFadesTrackAndFillAlike)
{
    const QImage image = renderBar(50.0, 200, 0.45);
    // The bar fades as one picture: under the fill the track does not show through.
    EXPECT_NEAR(alphaAt(image, 50, middleRow), 115, 1); // 0.45 of 255
    EXPECT_NEAR(alphaAt(image, 150, middleRow), 18, 1); // 0.45 × 0.16 of 255
    const QColor fill = image.pixelColor(50, middleRow);
    EXPECT_NEAR(fill.red(), Palette::cpu().red(), 2);
    EXPECT_NEAR(fill.green(), Palette::cpu().green(), 2);
    EXPECT_NEAR(fill.blue(), Palette::cpu().blue(), 2);
}

TEST(PastelBarTest, StoresAnyValueUnclamped)
{
    PastelBar bar;
    for (const double value : {150.0, -5.0, 42.25}) {
        bar.setDoubleValue(value);
        EXPECT_EQ(bar.doubleValue(), value);
    }
    bar.setDoubleValue(nan);
    EXPECT_TRUE(std::isnan(bar.doubleValue()));
}

TEST(PastelBarTest, IsAProgressBarFromZeroToAHundredReportingTheRawValue)
{
    PastelBar bar;
    bar.setAccessibleName(QStringLiteral("CPU"));
    bar.setDoubleValue(150.0);
    QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&bar);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::ProgressBar);
    EXPECT_EQ(accessible->text(QAccessible::Name), QStringLiteral("CPU"));
    QAccessibleValueInterface* value = accessible->valueInterface();
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->minimumValue(), QVariant(0));
    EXPECT_EQ(value->maximumValue(), QVariant(100));
    EXPECT_EQ(value->currentValue(), QVariant(150.0));
    EXPECT_EQ(accessible->text(QAccessible::Value), QStringLiteral("150"));

    value->setCurrentValue(10.0);
    EXPECT_EQ(bar.doubleValue(), 150.0);
}

TEST(PastelBarTest, ReportsATextualAccessibleValue)
{
    PastelBar bar;
    bar.setAccessibilityValue(QStringLiteral("Nedostupné"));
    QAccessibleValueInterface* value = QAccessible::queryAccessibleInterface(&bar)->valueInterface();
    EXPECT_EQ(value->currentValue(), QVariant(QStringLiteral("Nedostupné")));
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&bar)->text(QAccessible::Value),
              QStringLiteral("Nedostupné"));
    // Platforms whose value is only a number still hear the text: it is the bar's description.
    EXPECT_EQ(QAccessible::queryAccessibleInterface(&bar)->text(QAccessible::Description),
              QStringLiteral("Nedostupné"));
    bar.setDoubleValue(3.0);
    EXPECT_TRUE(QAccessible::queryAccessibleInterface(&bar)->text(QAccessible::Description).isEmpty());
}

TEST(PastelBarTest, AnnouncesEveryNewAccessibleValue)
{
    PastelBar bar;
    std::vector<QVariant> announced;
    QObject::connect(&bar, &PastelBar::accessibilityValueChanged, &bar,
                     [&announced](const QVariant& value) { announced.push_back(value); });
    bar.setDoubleValue(42.0);
    bar.setAccessibilityValue(QStringLiteral("Nedostupné"));
    EXPECT_EQ(announced, (std::vector<QVariant>{QVariant(42.0), QVariant(QStringLiteral("Nedostupné"))}));
}

// Counts the paint events a widget receives.
class PaintCounter : public QObject {
public:
    int paints = 0;

protected:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Paint) {
            ++paints;
        }
        return QObject::eventFilter(watched, event);
    }
};

TEST(PastelBarTest, ChangingTheTintDoesNotRepaintUntilSomethingElseAsks)
{
    PastelBar bar;
    PaintCounter counter;
    bar.installEventFilter(&counter);
    bar.resize(200, 6);
    bar.show();
    QApplication::processEvents();
    ASSERT_GT(counter.paints, 0);

    counter.paints = 0;
    bar.setTint(Palette::ram());
    QApplication::processEvents();
    EXPECT_EQ(counter.paints, 0);
    EXPECT_EQ(bar.tint(), Palette::ram());

    bar.setDoubleValue(10.0);
    QApplication::processEvents();
    EXPECT_GT(counter.paints, 0);
}

} // namespace
} // namespace vantrel::ui
