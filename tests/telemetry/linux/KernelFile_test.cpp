#include "Vantrel/telemetry/linux/KernelFile.h"

#include <gtest/gtest.h>

#include "tests/telemetry/FixtureTree.h"

namespace vantrel::linux_source {
namespace {

using vantrel::testing::FixtureTree;

TEST(KernelFile, EveryReadSeesTheCurrentText)
{
    FixtureTree tree;
    tree.write("counter", "1\n");
    KernelFile file((tree.root() / "counter").string());
    EXPECT_EQ(file.read(), "1\n");
    tree.write("counter", "22\n");
    EXPECT_EQ(file.read(), "22\n");
    tree.write("counter", "3");
    EXPECT_EQ(file.read(), "3");
}

TEST(KernelFile, MissingFileIsAbsentAndIsPickedUpWhenItAppears)
{
    FixtureTree tree;
    KernelFile file((tree.root() / "later").string());
    EXPECT_FALSE(file.read().has_value());
    tree.write("later", "here");
    EXPECT_EQ(file.read(), "here");
}

TEST(KernelFile, AFailedReadIsRetriedWithAFreshOpen)
{
    // A directory opens but cannot be read, as a removed sysfs entry keeps its descriptor but fails.
    FixtureTree tree;
    tree.write("entry/inside", "x");
    KernelFile file((tree.root() / "entry").string());
    EXPECT_FALSE(file.read().has_value());
    tree.remove("entry");
    tree.write("entry", "back");
    EXPECT_EQ(file.read(), "back");
}

TEST(KernelFile, LongTextIsReadWhole)
{
    FixtureTree tree;
    const std::string text(100'000, 'x');
    tree.write("long", text);
    KernelFile file((tree.root() / "long").string());
    EXPECT_EQ(file.read(), text);
    EXPECT_EQ(readWholeFile((tree.root() / "long").string()), text);
}

TEST(KernelFile, DirectoryIsUnreadable)
{
    FixtureTree tree;
    tree.write("dir/file", "x");
    KernelFile file((tree.root() / "dir").string());
    EXPECT_FALSE(file.read().has_value());
    EXPECT_FALSE(readWholeFile((tree.root() / "dir").string()).has_value());
}

TEST(KernelFile, MovedFileKeepsReading)
{
    FixtureTree tree;
    tree.write("file", "text");
    KernelFile first((tree.root() / "file").string());
    ASSERT_EQ(first.read(), "text");
    KernelFile second = std::move(first);
    EXPECT_EQ(second.read(), "text");
    KernelFile third((tree.root() / "other").string());
    third = std::move(second);
    EXPECT_EQ(third.read(), "text");
}

TEST(KernelFile, ProcFilesReadAfreshThroughAKeptDescriptor)
{
    // The kernel regenerates a seq_file's text when it is read again from offset 0.
    KernelFile uptime("/proc/self/stat");
    const auto first = uptime.read();
    ASSERT_TRUE(first.has_value());
    EXPECT_FALSE(first->empty());
    EXPECT_TRUE(uptime.read().has_value());
}

} // namespace
} // namespace vantrel::linux_source
