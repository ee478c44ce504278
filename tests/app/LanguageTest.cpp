#include "app/Language.h"

#include "model/DisplayTexts.h"
#include "model/UsageProvider.h"
#include "model/UsageWindowKind.h"
#include "support/Table.h"

#include <QDir>
#include <QLocale>
#include <QRegularExpression>
#include <QTranslator>
#include <QXmlStreamReader>

#include <vector>

using namespace tallyglass;

namespace {

std::vector<DisplayText> allTexts()
{
    std::vector<DisplayText> texts;
    for (const std::string_view key : textKeys)
        texts.push_back(TextKey::find(key)->text());
    for (const UsageProvider provider : allProviders) {
        const ProviderFacts &facts = factsOf(provider);
        texts.insert(texts.end(), {facts.displayName, facts.shortName, facts.installHint});
    }
    for (const UsageWindowKind kind : allWindowKinds) {
        texts.push_back(factsOf(kind).shortLabel);
        if (factsOf(kind).limitLabel.key)
            texts.push_back(factsOf(kind).limitLabel);
    }
    return texts;
}

struct Translation
{
    QString source;
    QString text;
};

QHash<QString, Translation> translationsOf(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QXmlStreamReader xml(&file);
    QHash<QString, Translation> found;
    QString id;
    while (xml.readNext() != QXmlStreamReader::EndDocument && !xml.hasError()) {
        if (!xml.isStartElement())
            continue;
        if (xml.name() == QLatin1String("message"))
            id = xml.attributes().value(QLatin1String("id")).toString();
        else if (xml.name() == QLatin1String("source"))
            found[id].source = xml.readElementText();
        else if (xml.name() == QLatin1String("translation")
                 && !xml.attributes().hasAttribute(QLatin1String("type")))
            found[id].text = xml.readElementText();
    }
    return found;
}

/// Those of formatText() as it takes them: in turn, or by number in any order.
QStringList placeholdersOf(const QString &text)
{
    static const QRegularExpression placeholder(QStringLiteral(R"(%(\d\$)?[@d]|%\{site\})"));
    QStringList found;
    for (const QRegularExpressionMatch &match : placeholder.globalMatch(text))
        found += match.captured();
    found.sort();
    return found;
}

} // namespace

struct ChoiceRow
{
    const char *name;
    QStringList preferred;
    QString settings;
    QLocale::Language language;
};

class LanguageTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firstPreferredThatExists_data()
    {
        const auto japanese = QStringLiteral("設定");
        const auto english = QStringLiteral("Settings");
        const auto words = [](const char *tags) { return QString::fromLatin1(tags).split(u' '); };
        test::table<ChoiceRow>({
            {"none is asked for", words("C"), japanese, QLocale::Japanese},
            {"none that exists", words("de-DE de-Latn-DE de"), japanese, QLocale::Japanese},
            {"of a region without texts of its own", words("en-GB en-Latn-GB"), english,
             QLocale::English},
            {"second choice", words("de de-DE en en-Latn-US"), english, QLocale::English},
            {"Japanese before English", words("fr ja-JP en-US"), japanese, QLocale::Japanese},
            {"English before Japanese", words("en-US ja-JP"), english, QLocale::English},
        });
    }

    void firstPreferredThatExists()
    {
        const auto row = test::currentRow<ChoiceRow>();
        chooseLanguage(row.preferred);
        QCOMPARE(displayText("common.settings"), row.settings);
        QCOMPARE(QLocale().language(), row.language);
        QVERIFY(!displayText("update.body").contains(u'%'));
        qDeleteAll(QCoreApplication::instance()->findChildren<QTranslator *>());
    }

    void everyLanguageIsComplete()
    {
        const QDir folder(QStringLiteral(TG_TRANSLATIONS));
        const QStringList languages = folder.entryList({QStringLiteral("*.ts")});
        QVERIFY(!languages.isEmpty());
        for (const QString &language : languages) {
            auto translations = translationsOf(folder.filePath(language));
            QStringList faults;
            for (const DisplayText &text : allTexts()) {
                const Translation translation = translations.value(QLatin1String(text.key));
                const auto japanese = QString::fromUtf8(text.japanese);
                if (translation.text.isEmpty() || translation.source != japanese
                    || placeholdersOf(translation.text) != placeholdersOf(japanese))
                    faults += QLatin1String(text.key);
            }
            for (const DisplayText &text : allTexts())
                translations.remove(QLatin1String(text.key));
            faults += translations.keys(); // that no text has any more
            QVERIFY2(faults.isEmpty(), qPrintable(language + faults.join(u" ").prepend(u' ')));
        }
    }
};

QTEST_GUILESS_MAIN(LanguageTest)
#include "LanguageTest.moc"
