#include "Vantrel/app/wayland/GnomeFocusSource.h"

#include "Vantrel/app/linux/SessionBusCalls.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QVariantMap>

namespace vantrel {
namespace {

const QString focusBusName = QStringLiteral("io.github.vantrel.Focus");
const QString focusObjectPath = QStringLiteral("/io/github/vantrel/Focus");
const QString focusInterface = QStringLiteral("io.github.vantrel.Focus1");
// The shell answers at once; a shell or an extension that has not answered by then is taken as silent.
constexpr int answerTimeoutMs = 3000;

gnome::FocusValue focusValue(const QVariant& value)
{
    switch (value.metaType().id()) {
    case QMetaType::QString:
        return value.toString().toStdString();
    case QMetaType::UInt:
        return std::uint32_t{value.toUInt()};
    default:
        return std::monostate{};
    }
}

// The message in the extension's terms; the dictionary only where it carries exactly one a{sv}.
gnome::FocusMessage focusMessage(const QDBusMessage& message)
{
    gnome::FocusMessage result;
    if (message.type() == QDBusMessage::ErrorMessage || message.type() == QDBusMessage::InvalidMessage) {
        result.errorName = message.errorName().isEmpty() ? std::string("org.freedesktop.DBus.Error.Failed")
                                                         : message.errorName().toStdString();
        return result;
    }
    if (message.signature() != QLatin1String("a{sv}")) {
        return result;
    }
    const auto dictionary = qdbus_cast<QVariantMap>(message.arguments().constFirst());
    gnome::FocusDescription description;
    for (auto entry = dictionary.cbegin(); entry != dictionary.cend(); ++entry) {
        description.emplace(entry.key().toStdString(), focusValue(entry.value()));
    }
    result.description = std::move(description);
    return result;
}

} // namespace

std::unique_ptr<GnomeFocusSource> GnomeFocusSource::connectTo(const QDBusConnection& bus)
{
    if (!bus.isConnected()) {
        return nullptr;
    }
    std::unique_ptr<GnomeFocusSource> source(new GnomeFocusSource(bus));
    source->askForShellVersion();
    return source;
}

GnomeFocusSource::GnomeFocusSource(const QDBusConnection& bus)
    : bus_(bus), owner_(focusBusName, bus, QDBusServiceWatcher::WatchForOwnerChange)
{}

void GnomeFocusSource::askForShellVersion()
{
    const QString shell = QStringLiteral("org.gnome.Shell");
    const auto call =
        propertyRequest(shell, QStringLiteral("/org/gnome/Shell"), shell, QStringLiteral("ShellVersion"));
    whenAnswered(this, bus_.asyncCall(call, answerTimeoutMs), [this](const QDBusMessage& reply) {
        if (const QVariant version = propertyValue(reply); version.metaType().id() == QMetaType::QString) {
            shellVersion_ = version.toString().toStdString();
        }
        followExtension();
    });
}

void GnomeFocusSource::followExtension()
{
    connect(&owner_, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString& /*name*/, const QString& /*old*/, const QString& owner) {
                ownerChanged(owner);
            });
    bus_.connect(focusBusName, focusObjectPath, focusInterface, QStringLiteral("FocusedWindowChanged"), this,
                 SLOT(focusedWindowChanged(QDBusMessage)));
    askForFocusedWindow();
}

void GnomeFocusSource::askForFocusedWindow()
{
    const std::uint64_t question = ++question_;
    const auto call = QDBusMessage::createMethodCall(focusBusName, focusObjectPath, focusInterface,
                                                     QStringLiteral("GetFocusedWindow"));
    whenAnswered(this, bus_.asyncCall(call, answerTimeoutMs), [this, question](const QDBusMessage& reply) {
        if (question == question_) {
            apply(gnome::readFocusMessage(focusMessage(reply)));
        }
    });
}

void GnomeFocusSource::ownerChanged(const QString& owner)
{
    if (owner.isEmpty()) {
        ++question_; // an answer on its way from the owner that left is stale
        apply(gnome::readFocusMessage({"org.freedesktop.DBus.Error.NameHasNoOwner", std::nullopt}));
    } else {
        askForFocusedWindow();
    }
}

void GnomeFocusSource::focusedWindowChanged(const QDBusMessage& message)
{
    apply(gnome::readFocusMessage(focusMessage(message)));
}

void GnomeFocusSource::apply(gnome::FocusAnswer answer)
{
    answer.reach.shellVersion = shellVersion_;
    // Both are set before either is announced: whoever hears one finds the other current too.
    const bool newWindow = answer.window != frontmost_;
    const bool newReach = answer.reach != reach_;
    frontmost_ = std::move(answer.window);
    reach_ = std::move(answer.reach);
    if (newWindow) {
        emit frontmostChanged();
    }
    if (newReach) {
        emit reachChanged();
    }
}

} // namespace vantrel
