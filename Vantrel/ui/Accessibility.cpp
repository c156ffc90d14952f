#include "Vantrel/ui/Accessibility.h"

#include "Vantrel/ui/MeterRow.h"
#include "Vantrel/ui/MiniSwitch.h"
#include "Vantrel/ui/PastelBar.h"

#include <QAccessibleWidget>
#include <QLabel>

namespace vantrel::ui {
namespace {

class PastelBarAccessible : public QAccessibleWidget, public QAccessibleValueInterface {
public:
    explicit PastelBarAccessible(PastelBar* bar) : QAccessibleWidget(bar, QAccessible::ProgressBar) {}

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface) {
            return static_cast<QAccessibleValueInterface*>(this);
        }
        return QAccessibleWidget::interface_cast(type);
    }

    QString text(QAccessible::Text type) const override
    {
        if (type == QAccessible::Value) {
            return currentValue().toString();
        }
        // AT-SPI carries only numeric values, so a textual one ("Nedostupné") is told as the description.
        if (type == QAccessible::Description && widget()->accessibleDescription().isEmpty() &&
            currentValue().typeId() == QMetaType::QString) {
            return currentValue().toString();
        }
        return QAccessibleWidget::text(type);
    }

    QVariant currentValue() const override { return bar()->accessibilityValue(); }
    // The value is a reading, not something the user sets.
    void setCurrentValue(const QVariant& /*value*/) override {}
    QVariant maximumValue() const override { return 100; }
    QVariant minimumValue() const override { return 0; }
    QVariant minimumStepSize() const override { return 0; }

private:
    PastelBar* bar() const { return static_cast<PastelBar*>(widget()); }
};

class MiniSwitchAccessible : public QAccessibleWidget {
public:
    explicit MiniSwitchAccessible(MiniSwitch* control) : QAccessibleWidget(control, QAccessible::CheckBox) {}

    QAccessible::State state() const override
    {
        QAccessible::State result = QAccessibleWidget::state();
        result.checkable = true;
        result.checked = control()->state() == MiniSwitch::State::On;
        result.checkStateMixed = control()->state() == MiniSwitch::State::Mixed;
        return result;
    }

    QStringList actionNames() const override
    {
        return QStringList{pressAction(), toggleAction()} + QAccessibleWidget::actionNames();
    }

    void doAction(const QString& actionName) override
    {
        if (actionName == pressAction() || actionName == toggleAction()) {
            control()->performClick();
            return;
        }
        QAccessibleWidget::doAction(actionName);
    }

private:
    MiniSwitch* control() const { return static_cast<MiniSwitch*>(widget()); }
};

// A row reads as a group named by its caption (which callers may change) and described by its tool tip.
class MeterRowAccessible : public QAccessibleWidget {
public:
    explicit MeterRowAccessible(MeterRow* row) : QAccessibleWidget(row, QAccessible::Grouping) {}

    QString text(QAccessible::Text type) const override
    {
        if (type == QAccessible::Name && widget()->accessibleName().isEmpty()) {
            return static_cast<MeterRow*>(widget())->label()->text();
        }
        return QAccessibleWidget::text(type);
    }
};

QAccessibleInterface* accessibleInterfaceFor(const QString& /*className*/, QObject* object)
{
    if (auto* bar = qobject_cast<PastelBar*>(object)) {
        return new PastelBarAccessible(bar);
    }
    if (auto* control = qobject_cast<MiniSwitch*>(object)) {
        return new MiniSwitchAccessible(control);
    }
    if (auto* row = qobject_cast<MeterRow*>(object)) {
        return new MeterRowAccessible(row);
    }
    return nullptr;
}

} // namespace

void installAccessibleFactory()
{
    static const bool installed = [] {
        QAccessible::installFactory(accessibleInterfaceFor);
        return true;
    }();
    Q_UNUSED(installed);
}

} // namespace vantrel::ui
