#include "Vantrel/app/linux/DesktopEntryNames.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <gio/gdesktopappinfo.h>
#include <gio/gio.h>
#include <memory>

namespace vantrel {
namespace {

struct ObjectUnref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
using DesktopAppInfo = std::unique_ptr<GDesktopAppInfo, ObjectUnref>;

struct AppInfoListFree {
    void operator()(GList* list) const { g_list_free_full(list, g_object_unref); }
};

std::string lowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    return text;
}

std::optional<std::string> nameOf(GAppInfo* info)
{
    const char* name = g_app_info_get_name(info);
    if (name == nullptr || *name == '\0') {
        return std::nullopt;
    }
    return std::string(name);
}

std::optional<std::string> entryNamed(const std::string& basename)
{
    if (basename.empty()) {
        return std::nullopt;
    }
    const DesktopAppInfo info(g_desktop_app_info_new((basename + ".desktop").c_str()));
    if (!info || g_desktop_app_info_get_is_hidden(info.get())) {
        return std::nullopt;
    }
    return nameOf(G_APP_INFO(info.get()));
}

} // namespace

DesktopEntryNames::DesktopEntryNames() : monitor_(g_app_info_monitor_get())
{
    changedHandler_ = g_signal_connect_swapped(
        monitor_, "changed", G_CALLBACK(+[](DesktopEntryNames* names) { names->forget(); }), this);
}

DesktopEntryNames::~DesktopEntryNames()
{
    g_signal_handler_disconnect(monitor_, changedHandler_);
    g_object_unref(monitor_);
}

std::optional<std::string> DesktopEntryNames::nameFor(const FrontmostWindow& window)
{
    if (window.appId.empty() && window.instanceName.empty()) {
        return std::nullopt;
    }
    std::string identity = window.appId + '\n' + window.instanceName;
    if (const auto kept = byIdentity_.find(identity); kept != byIdentity_.end()) {
        return kept->second;
    }
    auto name = lookUp(window);
    byIdentity_.emplace(std::move(identity), name);
    return name;
}

std::optional<std::string> DesktopEntryNames::lookUp(const FrontmostWindow& window)
{
    ++lookups_;
    const auto& byClass = namesByWindowClass();
    for (const std::string* windowClass : {&window.instanceName, &window.appId}) {
        if (const auto found = byClass.find(*windowClass); !windowClass->empty() && found != byClass.end()) {
            return found->second;
        }
    }
    for (const std::string& basename : {window.appId, lowerCase(window.appId), window.instanceName}) {
        if (auto name = entryNamed(basename)) {
            return name;
        }
    }
    return std::nullopt;
}

const std::unordered_map<std::string, std::string>& DesktopEntryNames::namesByWindowClass()
{
    if (byWindowClass_) {
        return *byWindowClass_;
    }
    byWindowClass_.emplace();
    // Every entry, those kept out of menus included (their windows are still theirs); not the hidden ones.
    const std::unique_ptr<GList, AppInfoListFree> all(g_app_info_get_all());
    for (const GList* item = all.get(); item != nullptr; item = item->next) {
        auto* info = static_cast<GAppInfo*>(item->data);
        if (!G_IS_DESKTOP_APP_INFO(info)) {
            continue;
        }
        const char* windowClass = g_desktop_app_info_get_startup_wm_class(G_DESKTOP_APP_INFO(info));
        if (windowClass == nullptr || *windowClass == '\0') {
            continue;
        }
        if (auto name = nameOf(info)) {
            byWindowClass_->emplace(windowClass, std::move(*name));
        }
    }
    return *byWindowClass_;
}

void DesktopEntryNames::forget()
{
    byIdentity_.clear();
    byWindowClass_.reset();
}

} // namespace vantrel
