#pragma once

#include "Vantrel/app/AppServices.h"
#include "Vantrel/app/AutomaticPin.h"
#include "Vantrel/app/FrontmostIdentifier.h"
#include "Vantrel/app/TrayItemRules.h"
#include "Vantrel/limits/ScriptProcess.h"
#include "Vantrel/telemetry/SampleRecord.h"
#include "Vantrel/telemetry/SystemSampler.h"

#include <QList>
#include <QObject>

#include <nlohmann/json_fwd.hpp>

#include <memory>
#include <optional>
#include <vector>

class QAction;
class QLabel;
class QMenu;
class QPoint;
class QScreen;
class QScrollArea;
class QTimer;

namespace vantrel {

namespace ui {
class MeterRow;
class MiniSwitch;
class StackView;
} // namespace ui

class ElidingLabel;
class MainThreadQueue;
class OverlayPanel;
class StatusItem;

// The one long-lived object of the running application: it owns the sampler, the tray item, the panel
// and every view the figures go to, both timers and the limits script run, and wires them together.
// Everything runs on the main thread except the limits script's worker, which only posts back.
// Its methods are spread over the files of the app folder by job: lifecycle (AppDelegate.cpp), the
// menu of the tray item and of the panel (StatusMenu.cpp), the pin where nothing tells the window in front
// (PinFollowsReach.cpp), panel tree (PanelBuilder.cpp), visibility and placement (Visibility.cpp), telemetry
// tick (TelemetryTick.cpp), limits (UsageFetch.cpp).
class AppDelegate : public QObject {
    Q_OBJECT

public:
    explicit AppDelegate(AppServices services, QObject* parent = nullptr);
    ~AppDelegate() override;
    AppDelegate(const AppDelegate&) = delete;
    AppDelegate& operator=(const AppDelegate&) = delete;

    // Lifecycle.
    void applicationDidFinishLaunching();
    void applicationWillTerminate();
    void refresh();
    void quit();

    // The menu, which both the tray item and a right click on the panel open, and the tray item, made once
    // a tray host can show it (at once where no TrayHosts service tells).
    void createStatusItem();
    void trayHostsChanged();
    void showPanelMenu(const QPoint& position);
    void toggleFromMenu();
    void toggleEverywhere();
    // The pin, the menu's check mark that shows it, and the panel's visibility under it.
    void pinEverywhere(bool pinned);

    // Pinned by Vantrel itself while nothing tells the window in front.
    void followReach();

    // The panel: its tree, when it shows and where it sits.
    void createPanel();
    void focusChanged();
    void screenChanged();
    void resize();
    void toggleShow();
    void toggleDetails();
    void toggleCores();

    // The 2-second telemetry tick, and the half of it that puts one record on the views.
    void sample();
    void showSample(const SampleRecord& record);

    // The limits: one script run in the background, its result, and a document put on the views.
    void fetchUsage();
    void finishFetch(const std::optional<nlohmann::json>& result);
    void applyUsage(const nlohmann::json& document);

    // The fields, in this order. The view containers are null until createPanel(); the rows, switches
    // and both status labels exist from construction on and are placed in the panel by createPanel().
    SystemSampler sampler;
    std::unique_ptr<OverlayPanel> panel;
    std::unique_ptr<StatusItem> statusItem;
    // The menu's entries in order, the separator included, made with the delegate and owned by it. The tray
    // item's menu and the panel's own show these same actions, so the two never disagree on a check mark.
    QList<QAction*> menuEntries;
    std::unique_ptr<QMenu> panelMenu;
    ui::StackView* root = nullptr;
    ui::StackView* body = nullptr;
    ui::StackView* details = nullptr;
    ui::StackView* cpuDetail = nullptr;
    ui::StackView* gpuDetail = nullptr;
    std::vector<ui::MeterRow*> cpuRows;
    std::vector<ui::MeterRow*> gpuRows;
    QScrollArea* scroll = nullptr;
    QWidget* canvas = nullptr;
    std::unique_ptr<ui::MiniSwitch> showSwitch;
    std::unique_ptr<ui::MiniSwitch> detailSwitch;
    std::unique_ptr<ui::MeterRow> quota;
    std::unique_ptr<ui::MeterRow> weekly;
    std::unique_ptr<ui::MeterRow> cpu;
    std::unique_ptr<ui::MeterRow> ram;
    std::unique_ptr<ui::MeterRow> gpu;
    std::unique_ptr<ui::MeterRow> network;
    std::unique_ptr<ElidingLabel> updated;
    std::unique_ptr<QLabel> creditLabel;
    std::unique_ptr<QTimer> telemetryTimer;
    std::unique_ptr<QTimer> usageTimer;
    bool isFetching = false;
    bool pinnedEverywhere = false;
    QAction* everywhereEntry = nullptr; // the menu entry whose check mark shows the pin
    std::optional<double> lastUsage;    // seconds since 1970-01-01 00:00 UTC
    bool lastFetchFailed = false;
    std::optional<limits::ScriptProcess> usageProcess;

private:
    void createMenuEntries();
    void applyVisibility();
    void orderFrontRegardless();
    void showHeldSample();
    void watchScreen(const QScreen* screen);

    AppServices services_;
    FrontmostIdentifier frontmost_;
    AutomaticPin automaticPin_;
    std::shared_ptr<MainThreadQueue> mainThread_;
    std::optional<SampleRecord> heldSample_;   // the newest tick's record while the panel is hidden
    std::optional<TrayItemKind> trayItemKind_; // how the tray item reaches its host, once it is made
    TrayNotices trayNotices_;
};

} // namespace vantrel
