#include "Vantrel/app/x11/FocusSettler.h"

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <gtest/gtest.h>

namespace vantrel {
namespace {

constexpr int graceMs = 40;

void processEventsFor(int milliseconds)
{
    QDeadlineTimer deadline(milliseconds);
    while (!deadline.hasExpired()) {
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    }
}

class FocusSettlerTest : public testing::Test {
protected:
    FocusSettlerTest()
    {
        QObject::connect(&settler, &FocusSettler::settled, &settler, [this] { ++settled; });
    }

    FocusSettler settler{graceMs};
    int settled = 0;
};

TEST_F(FocusSettlerTest, AWindowIsReportedAtOnce)
{
    settler.activeWindowChanged(false);
    EXPECT_EQ(settled, 1);
}

TEST_F(FocusSettlerTest, NoWindowIsReportedOnlyAfterTheGracePeriod)
{
    settler.activeWindowChanged(true);
    EXPECT_EQ(settled, 0);
    processEventsFor(graceMs * 5);
    EXPECT_EQ(settled, 1);
}

TEST_F(FocusSettlerTest, AGapBetweenTwoSwitchesIsNeverReported)
{
    settler.activeWindowChanged(false);
    settler.activeWindowChanged(true);
    settler.activeWindowChanged(false);
    EXPECT_EQ(settled, 2);
    processEventsFor(graceMs * 5);
    EXPECT_EQ(settled, 2); // the cancelled gap does not come later
}

TEST_F(FocusSettlerTest, ABurstOfEmptyNoticesIsReportedOnce)
{
    for (int notice = 0; notice < 5; ++notice) {
        settler.activeWindowChanged(true);
    }
    processEventsFor(graceMs * 5);
    EXPECT_EQ(settled, 1);
}

} // namespace
} // namespace vantrel
