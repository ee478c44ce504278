#include "platform/linux/Buses.h"
#include "platform/linux/LinuxPorts.h"

#include <QDBusConnection>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QFutureWatcher>
#include <QMutex>
#include <QtConcurrent>

namespace tallyglass {

namespace {

const QString connectionName = QStringLiteral("tallyglass-notifications");

/// Blocks for a second where a bus is silent.
QDBusConnection connectedBus()
{
    // One at a time: Qt dies of a connection that is made and dropped by two threads at once.
    static QMutex mutex;
    const QMutexLocker lock(&mutex);
    QDBusConnection known(connectionName);
    const QByteArray address = sessionBusAddress();
    if (known.isConnected() || address.isEmpty() || isSilentBus(address))
        return known;
    QDBusConnection::disconnectFromBus(connectionName);
    // Not by its address: Qt would then drop a connection without closing it when the bus does not
    // answer, for which the bus library ends the program.
    return QDBusConnection::connectToBus(QDBusConnection::SessionBus, connectionName);
}

QDBusMessage call(const QString &method)
{
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.Notifications"),
                                          QStringLiteral("/org/freedesktop/Notifications"),
                                          QStringLiteral("org.freedesktop.Notifications"), method);
}

QDBusMessage notifyCall(const Notification &notification, bool takesMarkup)
{
    constexpr uint replacesNone = 0;
    constexpr int asLongAsUsual = -1;
    constexpr uchar normalUrgency = 1;
    const QVariantMap hints{
        {QStringLiteral("urgency"), QVariant::fromValue(normalUrgency)},
        {QStringLiteral("sound-name"), QStringLiteral("message-new-instant")},
        {QStringLiteral("desktop-entry"), QStringLiteral("tallyglass")},
    };
    QDBusMessage message = call(QStringLiteral("Notify"));
    message << QStringLiteral("Tallyglass") << replacesNone << QStringLiteral("tallyglass")
            << notification.title
            << (takesMarkup ? notification.body.toHtmlEscaped() : notification.body)
            << QStringList() << hints << asLongAsUsual;
    return message;
}

// Desktops let the user switch a program's notifications off; they ask nothing beforehand.
class DesktopNotifier final : public Notifier
{
public:
    void post(const Notification &notification) override;

private:
    void askForCapabilities(const QDBusConnection &bus, const Notification &notification);
};

void DesktopNotifier::post(const Notification &notification)
{
    auto *watcher = new QFutureWatcher<QDBusConnection>(this);
    QObject::connect(watcher, &QFutureWatcherBase::finished, this, [this, notification, watcher] {
        watcher->deleteLater();
        if (const QDBusConnection bus = watcher->result(); bus.isConnected())
            askForCapabilities(bus, notification);
    });
    watcher->setFuture(QtConcurrent::run(connectedBus));
}

void DesktopNotifier::askForCapabilities(const QDBusConnection &bus,
                                         const Notification &notification)
{
    // Some daemons read the body as markup and the others show "&amp;" as it stands. Asked each
    // time, for the user may change the daemon while we run.
    auto *watcher =
        new QDBusPendingCallWatcher(bus.asyncCall(call(QStringLiteral("GetCapabilities"))), this);
    QObject::connect(
        watcher, &QDBusPendingCallWatcher::finished, this, [bus, notification, watcher] {
            watcher->deleteLater();
            const QDBusPendingReply<QStringList> capabilities = *watcher;
            if (!capabilities.isError())
                bus.asyncCall(notifyCall(
                    notification, capabilities.value().contains(QStringLiteral("body-markup"))));
        });
}

} // namespace

std::unique_ptr<Notifier> makeDesktopNotifier()
{
    return std::make_unique<DesktopNotifier>();
}

} // namespace tallyglass
