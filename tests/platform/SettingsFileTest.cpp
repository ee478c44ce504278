#include "platform/linux/SettingsFile.h"

#include "platform/linux/ConfigFolder.h"
#include "support/Table.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <csignal>
#include <memory>
#include <sys/resource.h>

using namespace tallyglass;

namespace {

constexpr auto ownerOnly =
    QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser;

QByteArray contentOf(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void write(const QString &path, const QByteArray &content)
{
    QFile file(path);
    QVERIFY(file.open(QIODevice::WriteOnly));
    QCOMPARE(file.write(content), content.size());
}

/// Files beyond this size cannot be written, as on a full disk.
void limitFileSize(rlim_t size)
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit limit{};
    getrlimit(RLIMIT_FSIZE, &limit);
    limit.rlim_cur = size;
    setrlimit(RLIMIT_FSIZE, &limit);
}

} // namespace

struct ConfigRow
{
    const char *name;
    const char *variable;
    const char *folder;
};

struct ContentRow
{
    const char *name;
    const char *content;
    QVariant threshold;
};

class SettingsFileTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void configFolder_data()
    {
        test::table<ConfigRow>({
            {"usually", "", "/home/ann/.config"},
            {"chosen by the user", "/srv/ann/", "/srv/ann"},
            {"relative ones do not count", "config", "/home/ann/.config"},
        });
    }

    void configFolder()
    {
        const auto row = test::currentRow<ConfigRow>();
        qputenv("XDG_CONFIG_HOME", row.variable);
        QCOMPARE(tallyglass::configFolder(QStringLiteral("/home/ann")),
                 QString::fromLatin1(row.folder));
        qunsetenv("XDG_CONFIG_HOME");
    }

    void keepsWhatIsSet()
    {
        const QString word = QStringLiteral("七=日; \"week\"\\ 100 % \n");
        {
            SettingsFile settings(path());
            settings.setValue(QStringLiteral("alertThreshold"), 0.8);
            settings.setValue(QStringLiteral("alerted.claude.1767225600.80"), true);
            settings.setValue(QStringLiteral("selectedWindow"), word);
            QVERIFY(contentOf(path()).startsWith("[General]\nalertThreshold=0.8\n"
                                                 "alerted.claude.1767225600.80=true\n"));
        }
        const SettingsFile settings(path());
        QCOMPARE(settings.value(QStringLiteral("alertThreshold")).toDouble(), 0.8);
        QVERIFY(settings.value(QStringLiteral("alerted.claude.1767225600.80")).toBool());
        QCOMPARE(settings.value(QStringLiteral("selectedWindow")).toString(), word);
        QVERIFY(!settings.value(QStringLiteral("alertsEnabled")).isValid());
    }

    void isForTheUserAlone()
    {
        SettingsFile settings(path());
        QVERIFY2(!QFileInfo::exists(path()), "asking writes nothing");
        settings.setValue(QStringLiteral("a"), 1);
        settings.setValue(QStringLiteral("b"), 2);
        QCOMPARE(QFileInfo(path()).permissions(), ownerOnly);
    }

    void reads_data()
    {
        test::table<ContentRow>({
            {"by hand", "[General]\r\n; a note\r\n alertThreshold = 0.5 \r\n",
             QStringLiteral("0.5")},
            {"without a last line end", "alertThreshold=0.5", QStringLiteral("0.5")},
            {"nonsense", "alertThreshold\n=0.5\n\xff\xfe", QVariant()},
            {"empty", "", QVariant()},
        });
    }

    void reads()
    {
        const auto row = test::currentRow<ContentRow>();
        QDir().mkpath(QFileInfo(path()).path());
        write(path(), row.content);
        QCOMPARE(SettingsFile(path()).value(QStringLiteral("alertThreshold")), row.threshold);
    }

    void aFullDiskLeavesTheOldFile()
    {
        SettingsFile settings(path());
        settings.setValue(QStringLiteral("alertThreshold"), 0.5);
        const QByteArray before = contentOf(path());

        limitFileSize(100);
        settings.setValue(QStringLiteral("selectedWindow"), QString(200, u'x'));
        limitFileSize(RLIM_INFINITY);
        QCOMPARE(contentOf(path()), before);
        QCOMPARE(settings.value(QStringLiteral("selectedWindow")).toString().size(), 200);
        QCOMPARE(QDir(QFileInfo(path()).path()).entryList(QDir::Files).size(), 1);

        settings.setValue(QStringLiteral("b"), 2);
        QVERIFY2(contentOf(path()).contains("xxx"), "the next change writes everything");
    }

    void aPlaceThatCannotBeWrittenIsBorneInSilence()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        write(m_folder->filePath(QStringLiteral(".config")), {});
        SettingsFile settings(path());
        settings.setValue(QStringLiteral("alertsEnabled"), true);
        QVERIFY(settings.value(QStringLiteral("alertsEnabled")).toBool());
    }

    void init() { m_folder = std::make_unique<QTemporaryDir>(); }

private:
    QString path() const { return m_folder->filePath(QStringLiteral(".config/Tallyglass.conf")); }

    std::unique_ptr<QTemporaryDir> m_folder;
};

QTEST_GUILESS_MAIN(SettingsFileTest)
#include "SettingsFileTest.moc"
