#include <QApplication>

#include <gtest/gtest.h>

// Widget tests need one QApplication for the whole run; the offscreen platform is set by CTest.
int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
