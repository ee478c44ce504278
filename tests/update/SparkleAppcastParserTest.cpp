#include "update/SparkleAppcastParser.h"

#include "platform/HttpClient.h"
#include "support/Table.h"
#include "support/TestData.h"

using namespace tallyglass;

namespace {

struct ItemRow
{
    const char *name;
    const char *item; ///< what stands inside the item
    const char *text;
};

struct FeedRow
{
    const char *name;
    QByteArray feed;
    std::optional<std::size_t> count; ///< of items, absent when the feed is refused
};

/// "title|build|short|download|notes|link", "-" for what is absent.
QString toText(const SparkleAppcastParser::Item &item)
{
    const QString absent = QStringLiteral("-");
    const auto text = [&](const std::optional<QUrl> &url) {
        return url ? url->toString() : absent;
    };
    return QStringList{item.title.value_or(absent),
                       item.buildVersion.value_or(absent),
                       item.shortVersion.value_or(absent),
                       text(item.downloadURL),
                       item.releaseNotesHTML.value_or(absent),
                       text(item.releaseNotesLink)}
        .join(u'|');
}

QByteArray feedOf(const QByteArray &content)
{
    return "<rss xmlns:sparkle='http://www.andymatuschak.org/xml-namespaces/sparkle'><channel>"
        + content + "</channel></rss>";
}

QByteArray numbered(const QByteArray &before, const QByteArray &after, int count)
{
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += before + QByteArray::number(i) + after;
    return text;
}

} // namespace

class SparkleAppcastParserTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void items_data()
    {
        test::table<ItemRow>({
            {"attributes",
             "<enclosure url='https://a.example/1' sparkle:version='10' "
             "sparkle:shortVersionString='1.0'/>",
             "-|10|1.0|https://a.example/1|-|-"},
            {"elements",
             "<sparkle:version> 10\n</sparkle:version><title>A</title>"
             "<sparkle:shortVersionString>1.0</sparkle:shortVersionString>",
             "A|10|1.0|-|-|-"},
            {"what is empty does not count", "<version>9</version><enclosure version=''/><title/>",
             "-|9|-|-|-|-"},
            {"escaped and plain notes",
             "<title>1</title><description>&lt;p&gt;A "
             "<![CDATA[&amp; <b>B</b>]]></description>",
             "1|-|-|-|<p>A &amp; <b>B</b>|-"},
            {"markup inside the notes",
             "<title>1</title><description><p>A <b>B</b></p>"
             "</description>",
             "1|-|-|-|A B|-"},
            {"links that are not of the web",
             "<title>1</title><enclosure url='ftp://a.example/1'/>"
             "<releaseNotesLink>/notes.html</releaseNotesLink>",
             "1|-|-|-|-|-"},
            {"no version", "<description>A</description><title> </title>", nullptr},
        });
    }
    void items()
    {
        const auto row = test::currentRow<ItemRow>();
        const auto items =
            SparkleAppcastParser::parse(feedOf("<item>" + QByteArray(row.item) + "</item>"));
        QVERIFY(items);
        QCOMPARE(items->size(), row.text ? 1U : 0U);
        if (row.text)
            QCOMPARE(toText(items->front()), QString::fromUtf8(row.text));
    }

    void versionText_data()
    {
        test::table<ItemRow>({
            {"short version first",
             "<title>Version 2.0</title><version>20</version>"
             "<shortVersionString>2.0.1</shortVersionString>",
             "2.0.1"},
            {"title without the word", "<title>Version 2.0 </title><version>20</version>", "2.0"},
            {"build last", "<title> </title><version>20</version>", "20"},
        });
    }
    void versionText()
    {
        const auto row = test::currentRow<ItemRow>();
        const auto items =
            SparkleAppcastParser::parse(feedOf("<item>" + QByteArray(row.item) + "</item>"));
        QCOMPARE(items.value().at(0).versionText(), QString::fromUtf8(row.text));
    }

    void feeds_data()
    {
        const QByteArray item = "<item><title>1</title></item>";
        const QByteArray deep = QByteArray("<a>").repeated(50'000);
        test::table<FeedRow>({
            {"no items", feedOf(""), 0},
            {"mark of the byte order", "\xEF\xBB\xBF" + feedOf(item), 1},
            {"a page that is no XML", "<html><br><p>Not found</html>", std::nullopt},
            {"torn", feedOf(item).chopped(9), std::nullopt},
            {"more after the end", feedOf(item) + "<rss/>", std::nullopt},
            {"declared entity",
             R"(<!DOCTYPE rss [<!ENTITY light "light">]>)" + feedOf(item + "&light;"),
             std::nullopt},
            {"too large", feedOf(item).leftJustified(static_cast<int>(largestHttpBody) + 1, '\n'),
             std::nullopt},
            {"flood of items", feedOf(item.repeated(30'000)), 30'000},
            {"flood of entities",
             feedOf("<item><title>1" + QByteArray("&amp;&#38;").repeated(90'000)
                    + "</title></item>"),
             1},
            {"flood of attributes", feedOf("<item " + numbered("a", "='>' ", 50'000) + "/>"),
             std::nullopt},
            {"flood of namespaces", feedOf(numbered("<a xmlns:a", "='u'>", 40'000)), std::nullopt},
            {"too deep", feedOf("<item><title>" + deep), std::nullopt},
            {"much side by side", feedOf(QByteArray("<a><a/></a>").repeated(50'000) + item), 1},
            {"markup that is text",
             feedOf(item + "<!-- ' " + deep + " --><![CDATA[<!DOCTYPE \"" + deep + "]]><?a " + deep
                    + "?>"),
             1},
        });
    }
    void feeds()
    {
        const auto row = test::currentRow<FeedRow>();
        const auto items = SparkleAppcastParser::parse(row.feed);
        QCOMPARE(items.has_value(), row.count.has_value());
        if (items)
            QCOMPARE(items->size(), *row.count);
    }
};

QTEST_GUILESS_MAIN(SparkleAppcastParserTest)
#include "SparkleAppcastParserTest.moc"
