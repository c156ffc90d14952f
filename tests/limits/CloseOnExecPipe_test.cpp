#include "Vantrel/limits/CloseOnExecPipe.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

namespace vantrel::limits {
namespace {

TEST(CloseOnExecPipe, BothEndsCloseOnExecAndBlockOnlyWhenAsked)
{
    for (const bool nonBlocking : {false, true}) {
        std::array<int, 2> ends{-1, -1};
        ASSERT_TRUE(openCloseOnExecPipe(ends, nonBlocking));
        for (const int end : ends) {
            EXPECT_EQ(fcntl(end, F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
            EXPECT_EQ((fcntl(end, F_GETFL) & O_NONBLOCK) != 0, nonBlocking);
        }
        const char byte = 'x';
        char received = 0;
        EXPECT_EQ(write(ends[1], &byte, 1), 1);
        EXPECT_EQ(read(ends[0], &received, 1), 1);
        EXPECT_EQ(received, 'x');
        close(ends[0]);
        close(ends[1]);
    }
}

} // namespace
} // namespace vantrel::limits
