#include "platform/HttpClient.h"
#include "support/Table.h"
#include "update/ReleaseNotesText.h"
#include "update/SparkleAppcastParser.h"
#include "update/VersionOrder.h"

using namespace tallyglass;

namespace {

const QStringList none;

QByteArray feedOf(const QByteArray &content)
{
    return "<rss xmlns:sparkle='http://www.andymatuschak.org/xml-namespaces/sparkle'><channel>"
        + content + "</channel></rss>";
}

/// The version as shown, then "|title|build|short|download|notes|link", "-" for what is absent.
QString itemIn(const char *content)
{
    const auto items =
        SparkleAppcastParser::parse(feedOf("<item>" + QByteArray(content) + "</item>"));
    if (!items || items->empty())
        return {};
    const auto &item = items->front();
    QStringList fields{item.versionText()};
    const QString absent = QStringLiteral("-");
    for (const auto &text : {item.title, item.buildVersion, item.shortVersion})
        fields += text.value_or(absent);
    fields += item.downloadURL.value_or(QUrl(absent)).toString();
    fields += item.releaseNotesHTML.value_or(absent);
    fields += item.releaseNotesLink.value_or(QUrl(absent)).toString();
    return fields.join(u'|');
}

/// How many items the feed has; "refused" for one that is not read.
QString count(const QByteArray &feed)
{
    const auto items = SparkleAppcastParser::parse(feed);
    return items ? QString::number(items->size()) : QStringLiteral("refused");
}

QByteArray numbered(const QByteArray &before, const QByteArray &after, int count)
{
    QByteArray text;
    for (int i = 0; i < count; ++i)
        text += before + QByteArray::number(i) + after;
    return text;
}

QByteArray levels(int count)
{
    return QByteArray("<a>").repeated(count) + QByteArray("</a>").repeated(count);
}

} // namespace

class FeedTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void items()
    {
        QCOMPARE(
            test::mismatches<const char *>(
                itemIn,
                {{"<enclosure url='https://a.example/1' sparkle:version='10' version='9' "
                  "sparkle:shortVersionString='1.0'/>",
                  "1.0|-|10|1.0|https://a.example/1|-|-"},
                 {"<sparkle:version> 10\n</sparkle:version><title>A</title>"
                  "<sparkle:shortVersionString>1.0</sparkle:shortVersionString>",
                  "1.0|A|10|1.0|-|-|-"},
                 {"<version>9</version><enclosure version=''/><title> </title>", "9|-|9|-|-|-|-"},
                 {"<title>Version 2.0 </title><version>20</version>", "2.0|Version 2.0|20|-|-|-|-"},
                 {"<title>1</title><description>&lt;p&gt;A <![CDATA[&amp; "
                  "<b>B</b>]]></description>",
                  "1|1|-|-|-|<p>A &amp; <b>B</b>|-"},
                 {"<title>1</title><description><p>A <b>B</b></p></description>",
                  "1|1|-|-|-|A B|-"},
                 {"<title>1</title><enclosure url='ftp://a.example/1'/>"
                  "<releaseNotesLink>/notes.html</releaseNotesLink>",
                  "1|1|-|-|-|-|-"},
                 {"<description>A</description><title> </title>", ""}}),
            none);
    }

    void feeds()
    {
        const QByteArray item = "<item><title>1</title></item>";
        const QByteArray deep = QByteArray("<a>").repeated(50'000);
        QCOMPARE(test::mismatches<QByteArray>(
                     count,
                     {{feedOf(""), "0"},
                      {"\xEF\xBB\xBF" + feedOf(item), "1"},
                      {"<html><br><p>Not found</html>", "refused"},
                      {feedOf(item).chopped(9), "refused"},
                      {feedOf(item) + "<rss/>", "refused"},
                      {R"(<!DOCTYPE rss [<!ENTITY light "light">]>)" + feedOf(item + "&light;"),
                       "refused"},
                      {feedOf(item).leftJustified(int(largestHttpBody) + 1, '\n'), "refused"},
                      // Floods: what is read takes a moment, what would take longer is refused.
                      {feedOf(item.repeated(30'000)), "30000"},
                      {feedOf("<item><title>1" + QByteArray("&amp;&#38;").repeated(90'000)
                              + "</title></item>"),
                       "1"},
                      {feedOf("<item " + numbered("a", "='>' ", 32) + "/>"), "0"},
                      {feedOf("<item " + numbered("a", "='>' ", 33) + "/>"), "refused"},
                      {feedOf(numbered("<a xmlns:a", "='u'>", 40'000)), "refused"},
                      {feedOf(levels(30) + item), "1"}, // below "rss" and "channel"
                      {feedOf(levels(31) + item), "refused"},
                      {feedOf(QByteArray("<a><a/></a>").repeated(50'000) + item), "1"},
                      {feedOf(item + "<!-- ' " + deep + " --><![CDATA[<!DOCTYPE \"" + deep
                              + "]]><?a " + deep + "?>"),
                       "1"}}),
                 none);
    }

    void releaseNotes()
    {
        const auto text = [](const char *html) {
            return releaseNotesText(QString::fromUtf8(html));
        };
        QCOMPARE(test::mismatches<const char *>(
                     text,
                     {{" <p>\n\t</p><br>", ""},
                      {"<p>One</p>\n\n<p>Two</p>", "One\nTwo"},
                      {"<ul>\n<li>A\n<li class=\"new\">B\n</ul>", "• A\n• B"},
                      {"< LI >A< / Li ><P>B</P >C", "• A\nB\nC"},
                      {"a<br>b<BR/>c< br />d", "a\nb\nc\nd"},
                      {"a</div>b</h3>c</tr>d<a\nhref=\"x\">e</a>", "a\nb\nc\nde"},
                      {"a\r\n\r\nb\r\n \tc  d\t ", "a\nb\nc  d"},
                      {"&lt;b&gt; &quot;&#39;&apos;&quot;&nbsp;&amp; c", "<b> \"''\" & c"},
                      {"&amp;lt; &amp;amp; &zwj; &LT; &amp", "&lt; &amp; &zwj; &LT; &amp"},
                      {"1 < 2 &amp; <b", "1 < 2 & <b"},
                      {"a<>b", "a<>b"}}),
                 none);
    }

    /// Each of their characters could begin a match that fails only at the end of the text, which
    /// would take hours: done at all within the time of a test is done well.
    void hostileReleaseNotes()
    {
        for (const auto &[flood, end] : {std::pair{"<", ""},
                                         {"<li", ""},
                                         {"<x", "<br>"},
                                         {"<x", "</p>"},
                                         {" ", "x"},
                                         {"&", ""},
                                         {"< ", ""}}) {
            const QString notes = QString::fromUtf8(flood).repeated(300'000);
            QVERIFY(!releaseNotesText(u'x' + notes + QString::fromUtf8(end)).isEmpty());
        }
    }

    void versions()
    {
        // In order, those beside an equals sign are equivalent.
        const char *const order = " =|1=01|1.2|1.2.3=1.02.3|1.2.10|1.8=1.08|1.09=1.9|1.10|2.0|2.0a|"
                                  "2.0b9|2.0b10|2.1|99999999999999999998|99999999999999999999";
        QList<QStringList> groups;
        for (const QString &group : QString::fromUtf8(order).split(u'|'))
            groups += group.split(u'=');
        groups[0] = {QString()};
        for (qsizetype i = 0; i < groups.size(); ++i) {
            for (qsizetype j = 0; j < groups.size(); ++j) {
                for (const QString &left : groups[i]) {
                    for (const QString &right : groups[j])
                        QVERIFY2(compareVersions(left, right) == (i <=> j),
                                 qPrintable(left + u' ' + right));
                }
            }
        }
    }
};

QTEST_GUILESS_MAIN(FeedTest)
#include "FeedTest.moc"
