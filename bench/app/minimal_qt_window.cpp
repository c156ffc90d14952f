// The floor of any Qt Widgets program: one small window with one label, doing nothing.
#include <QApplication>
#include <QLabel>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QLabel label(QStringLiteral("Qt Widgets"));
    label.resize(292, 120);
    label.show();
    return QApplication::exec();
}
