#include "platform/linux/LinuxPorts.h"
#include "support/FullDisk.h"
#include "support/TemporaryHome.h"

#include <QRegularExpression>

using namespace tallyglass;

class SettingsFileTest : public QObject
{
    Q_OBJECT

    const QString m_file = QStringLiteral(".config/Tallyglass.conf");
    const QString m_word = QStringLiteral("selectedWindow");
    const QString m_threshold = QStringLiteral("alertThreshold");

private Q_SLOTS:
    void keepsWhatIsSet()
    {
        const test::TemporaryHome home;
        const QString word = QStringLiteral("七=日; \"week\"\\ 100 % \n");
        const QString mark = QStringLiteral("alerted.claude.1767225600.80");
        {
            const auto settings = makeSettingsFile(home.path(m_file));
            QVERIFY2(!QFile::exists(home.path(m_file)), "asking writes nothing");
            settings->setValue(m_threshold, 0.8);
            settings->setValue(mark, true);
            settings->setValue(m_word, word);
        }
        QVERIFY(home.read(m_file).startsWith("[General]\nalertThreshold=0.8\n"
                                             "alerted.claude.1767225600.80=true\n"));
        QCOMPARE(int(QFile::permissions(home.path(m_file))), 0x6600); // 0600
        const auto settings = makeSettingsFile(home.path(m_file));
        QCOMPARE(settings->value(m_threshold).toDouble(), 0.8);
        QVERIFY(settings->value(mark).toBool());
        QCOMPARE(settings->value(m_word).toString(), word);
        QVERIFY(!settings->value(QStringLiteral("alertsEnabled")).isValid());
    }

    void readsWhatWasWrittenByHand()
    {
        const test::TemporaryHome home;
        home.write(m_file, "[General]\r\n; a note\r\nnonsense\n=\xff\xfe\n alertThreshold = 0.5 ");
        QCOMPARE(makeSettingsFile(home.path(m_file))->value(m_threshold).toString(),
                 QStringLiteral("0.5"));
    }

    void aFullDiskLeavesTheOldFile()
    {
        const test::TemporaryHome home;
        const auto settings = makeSettingsFile(home.path(m_file));
        settings->setValue(m_threshold, 0.5);
        const QByteArray before = home.read(m_file);
        {
            const test::FullDisk disk(1'000); // enough for the lock that Qt writes before
            settings->setValue(m_word, QString(2'000, u'x'));
        }
        QCOMPARE(home.read(m_file), before);
        QCOMPARE(settings->value(m_word).toString().size(), 2'000);
        QCOMPARE(QDir(home.path(QStringLiteral(".config"))).entryList(QDir::Files).size(), 1);

        settings->setValue(QStringLiteral("b"), 2);
        QVERIFY2(home.read(m_file).contains("xxx"), "the next change writes everything");
    }

    void aPlaceThatCannotBeWrittenIsBorneInSilence()
    {
        QTest::failOnWarning(QRegularExpression(QStringLiteral(".")));
        const test::TemporaryHome home;
        home.write(QStringLiteral(".config"));
        const auto settings = makeSettingsFile(home.path(m_file));
        settings->setValue(m_word, QStringLiteral("day"));
        QCOMPARE(settings->value(m_word).toString(), QStringLiteral("day"));
    }
};

QTEST_GUILESS_MAIN(SettingsFileTest)
#include "SettingsFileTest.moc"
