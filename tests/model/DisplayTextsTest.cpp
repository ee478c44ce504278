#include "model/DisplayTexts.h"

#include "support/Table.h"

#include <QTranslator>

using namespace tallyglass;

namespace {

/// A catalogue that holds one text.
class OneText : public QTranslator
{
public:
    OneText(const char *key, const QString &text)
        : m_key(key)
        , m_text(text)
    {
    }

    bool isEmpty() const override { return false; }
    QString translate(const char *, const char *key, const char *, int) const override
    {
        return m_key == key ? m_text : QString();
    }

private:
    QByteArray m_key;
    QString m_text;
};

} // namespace

struct FormatRow
{
    const char *name;
    const char *format;
    QStringList arguments;
    const char *text;
};

class DisplayTextsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void japaneseWithoutCatalogue()
    {
        QCOMPARE(formatText("alerts.body", {QStringLiteral("Claude"), QStringLiteral("80%")}),
                 QStringLiteral("Claude の使用量が 80% に達しました"));
    }

    void catalogueFormats_data()
    {
        const auto a = QStringLiteral("a");
        const auto b = QStringLiteral("b");
        test::table<FormatRow>({
            {"in turn", "%@ then %d", {a, b}, "a then b"},
            {"a translation turns them round", "%2$@ before %1$@", {a, b}, "b before a"},
            {"not filled again", "%@, %@", {QStringLiteral("%@"), b}, "%@, b"},
            {"fewer arguments", "%@-%@-", {a}, "a--"},
            {"other percent signs stay", "100% of %@ %", {a}, "100% of a %"},
            {"cut off placeholder stays", "%@ %1$", {a}, "a %1$"},
        });
    }
    void catalogueFormats()
    {
        const auto row = test::currentRow<FormatRow>();
        OneText catalogue("alerts.body", QString::fromUtf8(row.format));
        QVERIFY(QCoreApplication::installTranslator(&catalogue));
        QCOMPARE(formatText("alerts.body", row.arguments), QString::fromUtf8(row.text));
        QCOMPARE(displayText("common.exit"), QStringLiteral("終了"));
    }
};

QTEST_GUILESS_MAIN(DisplayTextsTest)
#include "DisplayTextsTest.moc"
