// What one telemetry tick costs per row: MeterRow::update and PastelBar painting, each against the same
// job done with stock Qt widgets (labels over a QProgressBar, in layouts). Run:
//   vantrel_ui_bench [--benchmark_repetitions=N]; the ratios are printed after the table.
#include "Vantrel/ui/MeterRow.h"
#include "Vantrel/ui/Palette.h"
#include "Vantrel/ui/PastelBar.h"

#include <QApplication>
#include <QBoxLayout>
#include <QImage>
#include <QLabel>
#include <QProgressBar>

#include <benchmark/benchmark.h>

#include "bench/RatioReporter.h"

namespace {

using vantrel::ui::MeterRow;
using vantrel::ui::PastelBar;
using vantrel::ui::SystemColor;

constexpr int barWidth = 256;

// A new value every tick, inside the calm range (no change of colour).
double calmReading(int tick)
{
    return 20.0 + (tick * 37) % 61;
}

// Every tick crosses the warning bound of a load row, so the number changes colour every time.
double flippingReading(int tick)
{
    return tick % 2 == 0 ? 50.0 : 90.0;
}

// The same row built from stock widgets: caption and number over a progress bar.
class StockRow {
public:
    StockRow() : value_(new QLabel), bar_(new QProgressBar)
    {
        auto* textLine = new QHBoxLayout;
        textLine->addWidget(new QLabel(QStringLiteral("CPU")));
        textLine->addStretch();
        textLine->addWidget(value_);
        auto* column = new QVBoxLayout(&row_);
        column->addLayout(textLine);
        column->addWidget(bar_);
        row_.resize(barWidth, row_.sizeHint().height());
    }

    void show(double percent)
    {
        value_->setText(QString::number(percent, 'f', 0) + QStringLiteral(" %"));
        bar_->setValue(static_cast<int>(percent));
        const QColor& color = percent > 85.0 ? SystemColor::systemOrange() : SystemColor::label();
        if (value_->palette().color(QPalette::WindowText) != color) {
            QPalette palette = value_->palette();
            palette.setColor(QPalette::WindowText, color);
            value_->setPalette(palette);
        }
    }

private:
    QWidget row_;
    QLabel* value_;
    QProgressBar* bar_;
};

template <double (*reading)(int)> void BM_MeterRowUpdate(benchmark::State& state)
{
    MeterRow row(QStringLiteral("CPU"), false);
    row.resize(barWidth, row.sizeHint().height());
    int tick = 0;
    for ([[maybe_unused]] auto _ : state) {
        row.update(reading(tick++), std::nullopt);
    }
}

template <double (*reading)(int)> void BM_StockRowUpdate(benchmark::State& state)
{
    StockRow row;
    int tick = 0;
    for ([[maybe_unused]] auto _ : state) {
        row.show(reading(tick++));
    }
}

template <typename Bar> void paintBar(benchmark::State& state, Bar& bar)
{
    bar.resize(barWidth, 6);
    QImage image(bar.size(), QImage::Format_ARGB32_Premultiplied);
    for ([[maybe_unused]] auto _ : state) {
        image.fill(Qt::transparent);
        bar.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
        benchmark::DoNotOptimize(image.constBits());
    }
}

void BM_PastelBarPaint(benchmark::State& state)
{
    PastelBar bar;
    bar.setDoubleValue(42.0);
    paintBar(state, bar);
}

void BM_PastelBarPaintDimmed(benchmark::State& state)
{
    PastelBar bar;
    bar.setAlphaValue(MeterRow::dimmedAlpha);
    paintBar(state, bar);
}

void BM_ProgressBarPaint(benchmark::State& state)
{
    QProgressBar bar;
    bar.setTextVisible(false);
    bar.setValue(42);
    paintBar(state, bar);
}

BENCHMARK(BM_MeterRowUpdate<calmReading>)->Name("BM_MeterRowUpdate_Calm");
BENCHMARK(BM_StockRowUpdate<calmReading>)->Name("BM_StockRowUpdate_Calm");
BENCHMARK(BM_MeterRowUpdate<flippingReading>)->Name("BM_MeterRowUpdate_ColourFlips");
BENCHMARK(BM_StockRowUpdate<flippingReading>)->Name("BM_StockRowUpdate_ColourFlips");
BENCHMARK(BM_PastelBarPaint);
BENCHMARK(BM_PastelBarPaintDimmed);
BENCHMARK(BM_ProgressBarPaint);

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication app(argc, argv);
    return vantrel::bench::runWithRatios(argc, argv,
                                         {{"BM_MeterRowUpdate_Calm", "BM_StockRowUpdate_Calm"},
                                          {"BM_MeterRowUpdate_ColourFlips", "BM_StockRowUpdate_ColourFlips"},
                                          {"BM_PastelBarPaint", "BM_ProgressBarPaint"},
                                          {"BM_PastelBarPaintDimmed", "BM_ProgressBarPaint"}},
                                         vantrel::bench::RatioReporter::Clock::Real);
}
