#include <QApplication>
#include <QImage>
#include <QPainter>

#include "tools/gallery/Gallery.h"
#include <cstdio>
#include <memory>

namespace {

int usage()
{
    QTextStream(stderr) << "usage: vantrel-gallery OUTPUT.png [--scale N]\n";
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    // Rendering needs no display: use the offscreen platform unless the caller chose one.
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication app(argc, argv);

    const QStringList arguments = QApplication::arguments().mid(1);
    if (arguments.size() != 1 && !(arguments.size() == 3 && arguments[1] == QStringLiteral("--scale"))) {
        return usage();
    }
    bool scaleOk = true;
    const int scale = arguments.size() == 3 ? arguments[2].toInt(&scaleOk) : 2;
    if (!scaleOk || scale < 1 || scale > 8) {
        return usage();
    }

    const std::unique_ptr<QWidget> gallery(vantrel::gallery::buildGallery());
    QImage image(gallery->size() * scale, QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    gallery->render(&image, QPoint(), QRegion(), QWidget::DrawChildren);

    if (!image.save(arguments[0], "PNG")) {
        QTextStream(stderr) << "vantrel-gallery: cannot write " << arguments[0] << '\n';
        return 1;
    }
    QTextStream(stdout) << arguments[0] << ": " << gallery->width() << " x " << gallery->height()
                        << " logical pixels at scale " << scale << '\n';
    return 0;
}
