#include "platform/linux/Buses.h"

#include "platform/linux/LinuxPorts.h"
#include "platform/linux/TrayHost.h"
#include "support/PrivateBus.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <QLocalServer>
#include <QRegularExpression>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QThreadPool>

using namespace tallyglass;

namespace {

/// One of the desktop's services: remembers what it is asked, and answers what it was told to.
class FakeService : public QDBusVirtualObject
{
public:
    FakeService(const QString &busAddress, const QString &name, const QString &path)
        : m_name(name)
        , bus(QDBusConnection::connectToBus(busAddress, name))
    {
        bus.registerVirtualObject(path, this);
        bus.registerService(name);
    }
    FakeService(const FakeService &) = delete;
    FakeService &operator=(const FakeService &) = delete;
    ~FakeService() override { QDBusConnection::disconnectFromBus(m_name); }

    QString introspect(const QString & /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        asked[message.member()] += message.arguments();
        if (answers.contains(message.member()))
            connection.send(message.createReply(answers[message.member()]));
        return true;
    }

private:
    const QString m_name;

public:
    QDBusConnection bus;
    QHash<QString, QVariant> answers; ///< by method; to others there is none
    QHash<QString, QList<QVariantList>> asked; ///< the arguments, by method
};

const auto notifications = QStringLiteral("org.freedesktop.Notifications");
const auto notificationsPath = QStringLiteral("/org/freedesktop/Notifications");
const auto capabilities = QStringLiteral("GetCapabilities");
const auto notify = QStringLiteral("Notify");
const Notification notification{.identifier = QStringLiteral("id"),
                                .title = QStringLiteral("Tallyglass"),
                                .body = QStringLiteral("<b>R&D</b> の使用量が 80% に達しました")};

} // namespace

class BusesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        // The same for all: the bus library reads them once.
        qputenv("DBUS_SESSION_BUS_ADDRESS", address().toUtf8());
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", address().toUtf8());
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_folder.path()));
    }
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral("."))); }
    void cleanup()
    {
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
        QFile::remove(socket());
    }

    // First, since it must come before anybody connects.
    void aBusThatIsSilentOrMissingHoldsNothingUp()
    {
        QVERIFY(!isSilentBus(sessionBusAddress())); // there is none
        QLocalServer silent;
        QVERIFY(silent.listen(socket()));
        QVERIFY(isSilentBus(sessionBusAddress()));
        qunsetenv("DBUS_SESSION_BUS_ADDRESS");
        QVERIFY(isSilentBus(sessionBusAddress())); // which is the same by its usual place
        leaveOutSilentBuses();
        QCOMPARE(qgetenv("DBUS_SYSTEM_BUS_ADDRESS"), qgetenv("DBUS_SESSION_BUS_ADDRESS"));
        QVERIFY(!isSilentBus(sessionBusAddress()));
        initTestCase();
        makeDesktopNotifier()->post(notification); // given up in cleanup()
    }

    void theBodyIsPlainText()
    {
        const auto notifier = makeDesktopNotifier();
        for (const bool takesMarkup : {false, true}) { // A bus that comes back is found again.
            const test::PrivateBus bus(m_folder.path());
            QVERIFY(!isSilentBus(sessionBusAddress()));
            FakeService daemon(address(), notifications, notificationsPath);
            daemon.answers[capabilities] = takesMarkup
                ? QStringList{QStringLiteral("body"), QStringLiteral("body-markup")}
                : QStringList{QStringLiteral("body")};
            notifier->post(notification);
            QTRY_COMPARE(daemon.asked[notify].size(), 1);
            const QVariantList arguments = daemon.asked[notify].first();
            QCOMPARE(arguments[3].toString(), notification.title);
            QCOMPARE(arguments[4].toString(),
                     takesMarkup
                         ? QStringLiteral("&lt;b&gt;R&amp;D&lt;/b&gt; の使用量が 80% に達しました")
                         : notification.body);
            QVERIFY(qdbus_cast<QVariantMap>(arguments[6]).contains(QStringLiteral("sound-name")));
            daemon.answers.clear();
            notifier->post(notification); // for whose question there is no answer
            QTRY_COMPARE(daemon.asked[capabilities].size(), 2);
        }
    }

    void aTrayMayComeAndGo()
    {
        const test::PrivateBus bus(m_folder.path());
        const auto name = QStringLiteral("org.kde.StatusNotifierWatcher");
        TrayHost host;
        const QSignalSpy appeared(&host, &TrayHost::appeared);
        {
            FakeService watcher(address(), name, QStringLiteral("/StatusNotifierWatcher"));
            const auto get = QStringLiteral("Get");
            watcher.answers[get] = QVariant::fromValue(QDBusVariant(false));
            QTRY_VERIFY(!watcher.asked[get].isEmpty());
            QVERIFY(!host.isThere()); // A watcher alone shows nothing.
            watcher.answers[get] = QVariant::fromValue(QDBusVariant(true));
            watcher.bus.send(
                QDBusMessage::createSignal(QStringLiteral("/StatusNotifierWatcher"), name,
                                           QStringLiteral("StatusNotifierHostRegistered")));
            QTRY_COMPARE(appeared.count(), 1);
            QVERIFY(host.isThere());
        }
        QTRY_VERIFY(!host.isThere());
    }

    void wakingIsToldAndFallingAsleepIsNot()
    {
        const test::PrivateBus bus(m_folder.path());
        FakeService manager(address(), QStringLiteral("org.freedesktop.login1"),
                            QStringLiteral("/org/freedesktop/login1"));
        const auto watch = makeLogindSleepWatch();
        const QSignalSpy woke(watch.get(), &SleepWatch::woke);
        const auto announce = [&manager](bool begins) {
            QDBusMessage signal =
                QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/login1"),
                                           QStringLiteral("org.freedesktop.login1.Manager"),
                                           QStringLiteral("PrepareForSleep"));
            signal << begins;
            manager.bus.send(signal);
        };
        announce(false);
        QTRY_COMPARE(woke.count(), 1);
        announce(true);
        announce(false); // the order is kept: when this has come, so has the one before
        QTRY_COMPARE(woke.count(), 2);
    }

private:
    QString socket() const { return m_folder.filePath(QStringLiteral("bus")); }
    QString address() const { return QStringLiteral("unix:path=") + socket(); }

    QTemporaryDir m_folder;
};

QTEST_MAIN(BusesTest)
#include "BusesTest.moc"
