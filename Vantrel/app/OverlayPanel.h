#pragma once

#include <QWidget>

namespace vantrel {

// The floating panel: a dark rounded window above all others that never takes the keyboard focus, not
// even when clicked, and has no taskbar entry. With a compositor its corners are translucent; without
// one a rounded mask cuts them, as unblended translucent corners would be black. A right click anywhere
// on it, its views included, asks for the application's menu.
class OverlayPanel : public QWidget {
    Q_OBJECT

public:
    static constexpr double cornerRadius = 18.0;

    explicit OverlayPanel(bool translucent, QWidget* parent = nullptr);

    bool isTranslucent() const { return translucent_; }

    // Moves and sizes the panel, also while it is hidden.
    void place(const QRect& frame);

signals:
    // At this point of the screen.
    void menuRequested(const QPoint& position);

protected:
    // Views that have no menu of their own pass the request up to the panel.
    void contextMenuEvent(QContextMenuEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    bool translucent_;
};

// The rounded shape of a panel of the given size, as a pixel region.
QRegion roundedRegion(const QSize& size, double radius);

} // namespace vantrel
