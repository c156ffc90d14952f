#include "Vantrel/ui/Fonts.h"

#include <QApplication>
#include <QFontInfo>

#include <gtest/gtest.h>

namespace vantrel::ui {
namespace {

// Restores the application font a test replaced.
class ApplicationFontGuard {
public:
    ApplicationFontGuard() : saved_(QApplication::font()) {}
    ~ApplicationFontGuard() { QApplication::setFont(saved_); }
    ApplicationFontGuard(const ApplicationFontGuard&) = delete;
    ApplicationFontGuard& operator=(const ApplicationFontGuard&) = delete;

private:
    QFont saved_;
};

QFont family(const char* name)
{
    QFont font(QString::fromLatin1(name));
    font.setPixelSize(12);
    return font;
}

TEST(FontsTest, SystemFontHasTheLogicalPixelSizeAndWeight)
{
    const QFont font = systemFont(11, QFont::Medium);
    EXPECT_EQ(font.pixelSize(), 11);
    EXPECT_EQ(font.pointSize(), -1);
    EXPECT_EQ(font.weight(), QFont::Medium);
    EXPECT_EQ(font.family(), QApplication::font().family());
    EXPECT_EQ(systemFont(9).weight(), QFont::Normal);
}

TEST(FontsTest, DejaVuSansDigitsAreTabularAndCantarellDigitsAreNot)
{
    ASSERT_EQ(QFontInfo(family("DejaVu Sans")).family(), QStringLiteral("DejaVu Sans"));
    ASSERT_EQ(QFontInfo(family("Cantarell")).family(), QStringLiteral("Cantarell"));
    EXPECT_TRUE(hasTabularDigits(family("DejaVu Sans")));
    EXPECT_FALSE(hasTabularDigits(family("Cantarell")));
}

TEST(FontsTest, MonospacedDigitFontKeepsATabularSystemFont)
{
    const ApplicationFontGuard guard;
    QApplication::setFont(family("DejaVu Sans"));
    const QFont font = monospacedDigitSystemFont(12, QFont::DemiBold);
    EXPECT_EQ(QFontInfo(font).family(), QStringLiteral("DejaVu Sans"));
    EXPECT_EQ(font.pixelSize(), 12);
    EXPECT_EQ(font.weight(), QFont::DemiBold);
}

TEST(FontsTest, MonospacedDigitFontReplacesAProportionalSystemFont)
{
    const ApplicationFontGuard guard;
    QApplication::setFont(family("Cantarell"));
    const QFont font = monospacedDigitSystemFont(9, QFont::DemiBold);
    EXPECT_TRUE(hasTabularDigits(font));
    EXPECT_EQ(QFontInfo(font).family(), QStringLiteral("DejaVu Sans"));
    EXPECT_EQ(font.pixelSize(), 9);
    EXPECT_EQ(font.weight(), QFont::DemiBold);
}

} // namespace
} // namespace vantrel::ui
