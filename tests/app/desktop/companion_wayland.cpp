#include "companion_wayland.h"

#include <QBackingStore>
#include <QByteArray>
#include <QColor>
#include <QGuiApplication>
#include <QPainter>
#include <QRasterWindow>
#include <QString>

#include <array>
#include <cstdio>
#include <string>
#include <unistd.h>

namespace {

class PlainWindow : public QRasterWindow {
protected:
    void paintEvent(QPaintEvent* /*event*/) override
    {
        QPainter painter(this);
        painter.fillRect(QRect(QPoint(0, 0), size()), QColor(0x3a, 0x6e, 0xa5));
    }

    void exposeEvent(QExposeEvent* event) override
    {
        QRasterWindow::exposeEvent(event);
        if (isExposed() && !announced_) {
            announced_ = true;
            static_cast<void>(std::printf("%d\n", static_cast<int>(getpid())));
            static_cast<void>(std::fflush(stdout));
        }
    }

private:
    bool announced_ = false;
};

} // namespace

int runWaylandWindow(const std::string& appId, const std::string& title, int width, int height)
{
    qputenv("QT_QPA_PLATFORM", "wayland");
    // A plain rectangle of the size asked for, without the title bar Qt would draw itself.
    qputenv("QT_WAYLAND_DISABLE_WINDOWDECORATION", "1");
    int argc = 1;
    std::string name = "companion_window";
    std::array<char*, 2> argv{name.data(), nullptr};
    const QGuiApplication application(argc, argv.data());
    // Qt's Wayland platform sends this as the toplevel's app_id.
    QGuiApplication::setDesktopFileName(QString::fromStdString(appId));
    PlainWindow window;
    window.setTitle(QString::fromStdString(title));
    window.resize(width, height);
    window.show();
    return QGuiApplication::exec();
}
