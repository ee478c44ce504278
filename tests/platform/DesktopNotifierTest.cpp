#include "platform/linux/DesktopNotifier.h"

#include "support/PrivateBus.h"
#include "support/Table.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QElapsedTimer>
#include <QLocalServer>
#include <QLocalSocket>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QThreadPool>

#include <optional>

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
    QStringList capabilities{QStringLiteral("body"), QStringLiteral("body-markup")};
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

enum class BusState { Unknown, Missing, Silent, WithoutDaemon };

struct BusRow
{
    const char *name;
    BusState state;
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

    void isShown()
    {
        const test::PrivateBus bus(m_folder.path());
        FakeDaemon daemon(address());
        DesktopNotifier notifier;
        notifier.requestPermission();
        notifier.post(notification);
        QTRY_COMPARE(daemon.shown.size(), 1);

        const QVariantList &arguments = daemon.shown.first();
        QCOMPARE(arguments.mid(0, 4),
                 (QVariantList{QStringLiteral("Tallyglass"), 0U, QStringLiteral("tallyglass"),
                               notification.title}));
        QCOMPARE(arguments[5].toStringList(), QStringList());
        const QVariantMap hints{
            {QStringLiteral("urgency"), QVariant::fromValue(uchar{1})},
            {QStringLiteral("sound-name"), QStringLiteral("message-new-instant")},
            {QStringLiteral("desktop-entry"), QStringLiteral("tallyglass")}};
        QCOMPARE(qdbus_cast<QVariantMap>(arguments[6]), hints);
        QCOMPARE(arguments[7], -1);

        notifier.post(notification);
        QTRY_COMPARE(daemon.shown.size(), 2);
    }

    void theBodyIsPlainText_data()
    {
        test::table<BodyRow>({
            {"where it would be markup",
             {QStringLiteral("body"), QStringLiteral("body-markup")},
             QStringLiteral("&lt;b&gt;R&amp;D&lt;/b&gt; の使用量が 80% に達しました")},
            {"where it is plain text", {QStringLiteral("body")}, notification.body},
            {"where nothing is promised", {}, notification.body},
        });
    }

    void theBodyIsPlainText()
    {
        const auto row = test::currentRow<BodyRow>();
        const test::PrivateBus bus(m_folder.path());
        qunsetenv("DBUS_SESSION_BUS_ADDRESS"); // the bus is where logins put it
        FakeDaemon daemon(address());
        daemon.capabilities = row.capabilities;
        DesktopNotifier notifier;
        notifier.post(notification);
        QTRY_COMPARE(daemon.shown.size(), 1);
        QCOMPARE(daemon.shown.first()[4].toString(), row.body);
    }

    void aDaemonThatNeverAnswersHoldsNothingUp()
    {
        const test::PrivateBus bus(m_folder.path());
        FakeDaemon daemon(address());
        daemon.isSilent = true;
        QElapsedTimer time;
        time.start();
        {
            DesktopNotifier notifier;
            notifier.post(notification);
            QTRY_COMPARE(daemon.questionCount, 1);
        }
        QVERIFY(time.elapsed() < 2000);
        QVERIFY(daemon.shown.isEmpty());
    }

    void aBusThatComesBackIsFoundAgain()
    {
        DesktopNotifier notifier;
        for (int i = 0; i < 2; ++i) {
            const test::PrivateBus bus(m_folder.path());
            FakeDaemon daemon(address());
            notifier.post(notification);
            QTRY_COMPARE(daemon.shown.size(), 1);
        }
    }

    void aMissingBusMakesNoNoise_data()
    {
        test::table<BusRow>({
            {"no address", BusState::Unknown},
            {"nobody listens", BusState::Missing},
            {"nobody answers", BusState::Silent},
            {"no daemon on the bus", BusState::WithoutDaemon},
        });
    }

    void aMissingBusMakesNoNoise()
    {
        const auto row = test::currentRow<BusRow>();
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        if (row.state == BusState::Unknown)
            qunsetenv("DBUS_SESSION_BUS_ADDRESS");
        QLocalServer stubborn;
        if (row.state == BusState::Silent)
            QVERIFY(stubborn.listen(socket()));
        std::optional<test::PrivateBus> bus;
        if (row.state == BusState::WithoutDaemon)
            bus.emplace(m_folder.path());

        QElapsedTimer time;
        time.start();
        DesktopNotifier lasting;
        lasting.post(notification);
        DesktopNotifier().post(notification);
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
