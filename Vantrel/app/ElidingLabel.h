#pragma once

#include <QLabel>

namespace vantrel {

// A one-line label that cuts a text too long for its width at the end with "…", instead of widening
// the panel. text() and the accessible name keep the whole text.
class ElidingLabel : public QLabel {
    Q_OBJECT

public:
    explicit ElidingLabel(const QString& text, QWidget* parent = nullptr);

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace vantrel
