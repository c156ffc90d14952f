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

#include <cstdio>
#include <map>
#include <string>

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
    for (auto _ : state) {
        row.update(reading(tick++), std::nullopt);
    }
}

template <double (*reading)(int)> void BM_StockRowUpdate(benchmark::State& state)
{
    StockRow row;
    int tick = 0;
    for (auto _ : state) {
        row.show(reading(tick++));
    }
}

template <typename Bar> void paintBar(benchmark::State& state, Bar& bar)
{
    bar.resize(barWidth, 6);
    QImage image(bar.size(), QImage::Format_ARGB32_Premultiplied);
    for (auto _ : state) {
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

// Keeps each benchmark's time per iteration (the mean of repetitions) to print the ratios at the end.
class RatioReporter : public benchmark::ConsoleReporter {
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && run.iterations > 0) {
                auto& [total, count] = perCall_[run.benchmark_name()];
                total += run.GetAdjustedRealTime();
                ++count;
            }
        }
    }

    double mean(const std::string& name) const
    {
        const auto found = perCall_.find(name);
        return found == perCall_.end() ? 0.0 : found->second.first / found->second.second;
    }

private:
    std::map<std::string, std::pair<double, int>> perCall_;
};

} // namespace

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    const auto ratio = [&reporter](const char* name, const char* peer) {
        const double base = reporter.mean(peer);
        if (base > 0.0 && reporter.mean(name) > 0.0) {
            static_cast<void>(std::printf("%-30s / %-30s = %.2f\n", name, peer, reporter.mean(name) / base));
        }
    };
    static_cast<void>(std::printf("\nRatios of time per call (below 1: faster than the peer)\n"));
    ratio("BM_MeterRowUpdate_Calm", "BM_StockRowUpdate_Calm");
    ratio("BM_MeterRowUpdate_ColourFlips", "BM_StockRowUpdate_ColourFlips");
    ratio("BM_PastelBarPaint", "BM_ProgressBarPaint");
    ratio("BM_PastelBarPaintDimmed", "BM_ProgressBarPaint");
    benchmark::Shutdown();
    return 0;
}
