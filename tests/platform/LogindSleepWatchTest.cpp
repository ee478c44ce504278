#include "platform/linux/LinuxPorts.h"
#include "support/PrivateBus.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace tallyglass;

class LogindSleepWatchTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void tellsOfWakingAndNotOfFallingAsleep()
    {
        const QTemporaryDir folder;
        const test::PrivateBus systemBus(folder.path());
        const QString address =
            QStringLiteral("unix:path=") + folder.filePath(QStringLiteral("bus"));
        qputenv("DBUS_SYSTEM_BUS_ADDRESS", address.toUtf8());
        auto manager = QDBusConnection::connectToBus(address, QStringLiteral("login manager"));
        QVERIFY(manager.registerService(QStringLiteral("org.freedesktop.login1")));

        const auto watch = makeLogindSleepWatch();
        const QSignalSpy woke(watch.get(), &SleepWatch::woke);
        const auto announce = [&manager](bool begins) {
            QDBusMessage signal =
                QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/login1"),
                                           QStringLiteral("org.freedesktop.login1.Manager"),
                                           QStringLiteral("PrepareForSleep"));
            signal << begins;
            manager.send(signal);
        };
        announce(false);
        QTRY_COMPARE(woke.count(), 1);
        announce(true);
        announce(false); // the order is kept: when this has come, so has the one before
        QTRY_COMPARE(woke.count(), 2);
        QDBusConnection::disconnectFromBus(QStringLiteral("login manager"));
    }
};

QTEST_GUILESS_MAIN(LogindSleepWatchTest)
#include "LogindSleepWatchTest.moc"
