#include "platform/linux/LinuxPorts.h"
#include "support/PrivateBus.h"
#include "support/Table.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThreadPool>

using namespace tallyglass;

namespace {

const QString daemonConnection = QStringLiteral("notification daemon");

/// Shows nothing, but remembers what it was to show.
class FakeDaemon : public QDBusVirtualObject
{
public:
    explicit FakeDaemon(const QString &busAddress)
    {
        QDBusConnection bus = QDBusConnection::connectToBus(busAddress, daemonConnection);
        bus.registerVirtualObject(QStringLiteral("/org/freedesktop/Notifications"), this);
        bus.registerService(QStringLiteral("org.freedesktop.Notifications"));
    }
    FakeDaemon(const FakeDaemon &) = delete;
    FakeDaemon &operator=(const FakeDaemon &) = delete;
    ~FakeDaemon() override { QDBusConnection::disconnectFromBus(daemonConnection); }

    QString introspect(const QString & /*path*/) const override { return {}; }

    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override
    {
        if (message.member() == QStringLiteral("Notify"))
            shown += message.arguments();
        const bool isQuestion = message.member() == QStringLiteral("GetCapabilities");
        questionCount += isQuestion ? 1 : 0;
        if (!isSilent)
            connection.send(
                message.createReply(isQuestion ? QVariant(capabilities) : QVariant(uint{1})));
        return true;
    }

    bool isSilent = false;
    QStringList capabilities;
    int questionCount = 0;
    QList<QVariantList> shown; ///< the arguments
};

const Notification notification{.identifier = QStringLiteral("id"),
                                .title = QStringLiteral("Tallyglass"),
                                .body = QStringLiteral("<b>R&D</b> の使用量が 80% に達しました")};

} // namespace

struct BodyRow
{
    const char *name;
    QStringList capabilities;
    QString body;
};

class DesktopNotifierTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        // The same for all: the bus library reads it once.
        qputenv("DBUS_SESSION_BUS_ADDRESS", address().toUtf8());
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(m_folder.path()));
        QFile::remove(socket());
    }

    void theBodyIsPlainText_data()
    {
        const QString body = QStringLiteral("body");
        test::table<BodyRow>({
            {"where it would be markup",
             {body, QStringLiteral("body-markup")},
             QStringLiteral("&lt;b&gt;R&amp;D&lt;/b&gt; の使用量が 80% に達しました")},
            {"where it is plain text", {body}, notification.body},
        });
    }
    void theBodyIsPlainText()
    {
        const auto row = test::currentRow<BodyRow>();
        qunsetenv("DBUS_SESSION_BUS_ADDRESS"); // the bus is where logins put it
        const auto notifier = makeDesktopNotifier();
        for (int i = 0; i < 2; ++i) { // A bus that comes back is found again.
            const test::PrivateBus bus(m_folder.path());
            FakeDaemon daemon(address());
            daemon.capabilities = row.capabilities;
            notifier->post(notification);
            QTRY_COMPARE(daemon.shown.size(), 1);
            const QVariantList arguments = daemon.shown.first();
            QCOMPARE(arguments[3].toString(), notification.title);
            QCOMPARE(arguments[4].toString(), row.body);
            QVERIFY(qdbus_cast<QVariantMap>(arguments[6]).contains(QStringLiteral("sound-name")));
        }
    }

    void aDaemonThatNeverAnswersHoldsNothingUp()
    {
        const test::PrivateBus bus(m_folder.path());
        FakeDaemon daemon(address());
        daemon.isSilent = true;
        QElapsedTimer time;
        time.start();
        {
            const auto notifier = makeDesktopNotifier();
            notifier->post(notification);
            QTRY_COMPARE(daemon.questionCount, 1);
        }
        QVERIFY(time.elapsed() < 2000);
        QVERIFY(daemon.shown.isEmpty());
    }

    void aMissingBusMakesNoNoise_data()
    {
        QTest::addColumn<bool>("isKnown");
        QTest::addColumn<bool>("isListening");
        QTest::newRow("no address") << false << false;
        QTest::newRow("nobody listens") << true << false;
        QTest::newRow("nobody answers") << true << true;
    }
    void aMissingBusMakesNoNoise()
    {
        QFETCH(const bool, isKnown);
        QFETCH(const bool, isListening);
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        if (!isKnown)
            qunsetenv("DBUS_SESSION_BUS_ADDRESS");
        QLocalServer stubborn;
        QVERIFY(!isListening || stubborn.listen(socket()));

        QElapsedTimer time;
        time.start();
        const auto lasting = makeDesktopNotifier();
        lasting->post(notification);
        makeDesktopNotifier()->post(notification);
        QCoreApplication::processEvents();
        QVERIFY(time.elapsed() < 200);
        stubborn.close();
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
    }

private:
    QString socket() const { return m_folder.filePath(QStringLiteral("bus")); }
    QString address() const { return QStringLiteral("unix:path=") + socket(); }

    QTemporaryDir m_folder;
};

QTEST_GUILESS_MAIN(DesktopNotifierTest)
#include "DesktopNotifierTest.moc"
