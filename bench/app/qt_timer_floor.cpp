// The floor of any Qt Widgets program that wakes every 2 s: the application and a repeating 2-s timer whose
// tick does nothing, with no window shown. What the hidden panel's event loop costs before any work of its
// own.
#include <QApplication>
#include <QTimer>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QTimer timer;
    QObject::connect(&timer, &QTimer::timeout, &timer, [] {});
    timer.start(2000);
    return QApplication::exec();
}
