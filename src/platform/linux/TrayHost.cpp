#include "platform/linux/TrayHost.h"

#include "platform/linux/X11.h"

#include <QAbstractNativeEventFilter>
#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QTimer>

#include <functional>

namespace tallyglass {

namespace {

const auto watcher = QStringLiteral("org.kde.StatusNotifierWatcher");
const auto watcherPath = QStringLiteral("/StatusNotifierWatcher");

/// Whether a tray of the older kind, which takes in windows, is running.
bool hasX11Tray()
{
    xcb_connection_t *connection = x11::connection();
    if (!connection)
        return false;
    const auto question = xcb_get_selection_owner(connection, x11::atom("_NET_SYSTEM_TRAY_S0"));
    const x11::Owned<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(connection, question, nullptr));
    return reply && reply->owner != XCB_WINDOW_NONE;
}

/// Calls back when some manager of the X server, such as a tray, announces itself.
class ManagerWatch final : public QObject, public QAbstractNativeEventFilter
{
public:
    ManagerWatch(std::function<void()> callBack, QObject *parent)
        : QObject(parent)
        , m_callBack(std::move(callBack))
    {
        QCoreApplication::instance()->installNativeEventFilter(this);
    }

    bool nativeEventFilter(const QByteArray & /*type*/, void *message,
                           qintptr * /*result*/) override
    {
        constexpr std::uint8_t sentBySomebody = 0x80;
        const auto type = static_cast<const xcb_generic_event_t *>(message)->response_type;
        if ((type & ~sentBySomebody) == XCB_CLIENT_MESSAGE
            && static_cast<const xcb_client_message_event_t *>(message)->type == m_announcement)
            QTimer::singleShot(0, this, m_callBack);
        return false;
    }

private:
    std::function<void()> m_callBack;
    const xcb_atom_t m_announcement = x11::atom("MANAGER");
};

} // namespace

// The toolkit decides at its first look at the tray, for good, by which of the two ways it shows
// icons. So it must not look before one of them is there, and we look ourselves.
TrayHost::TrayHost(QObject *parent)
    : QObject(parent)
    , m_watcherWatch(watcher, QDBusConnection::sessionBus())
{
    connect(&m_watcherWatch, &QDBusServiceWatcher::serviceOwnerChanged, this,
            &TrayHost::askWatcher);
    for (const char *change : {"StatusNotifierHostRegistered", "StatusNotifierHostUnregistered"})
        QDBusConnection::sessionBus().connect(
            watcher, watcherPath, watcher, QString::fromLatin1(change), this, SLOT(askWatcher()));
    askWatcher();
    if (x11::connection())
        new ManagerWatch([this] { check(); }, this);
}

bool TrayHost::isThere() const
{
    return m_hasNotifierHost || hasX11Tray();
}

/// Asks whether somebody shows the icons that programs announce over the session bus.
void TrayHost::askWatcher()
{
    auto question = QDBusMessage::createMethodCall(
        watcher, watcherPath, QStringLiteral("org.freedesktop.DBus.Properties"),
        QStringLiteral("Get"));
    question << watcher << QStringLiteral("IsStatusNotifierHostRegistered");
    question.setAutoStartService(false);
    auto *call =
        new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(question), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [this, call] {
        call->deleteLater();
        const QDBusPendingReply<QDBusVariant> answer = *call;
        m_hasNotifierHost = !answer.isError() && answer.value().variant().toBool();
        check();
    });
}

void TrayHost::check()
{
    if (isThere())
        Q_EMIT appeared();
}

} // namespace tallyglass
