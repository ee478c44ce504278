#include "update/ReleaseNotesText.h"

#include "support/Table.h"

using namespace tallyglass;

namespace {

struct NotesRow
{
    const char *name;
    const char *html;
    const char *text;
};

} // namespace

class ReleaseNotesTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void text_data()
    {
        test::table<NotesRow>({
            {"nothing but markup", " <p>\n\t</p><br>", ""},
            {"paragraphs", "<p>One</p>\n\n<p>Two</p>", "One\nTwo"},
            {"list items without end", "<ul>\n<li>A\n<li class=\"new\">B\n</ul>", "• A\n• B"},
            {"capitals and spaces", "< LI >A< / Li ><P>B</P >C", "• A\nB\nC"},
            {"line breaks", "a<br>b<BR/>c< br />d", "a\nb\nc\nd"},
            {"ends of blocks", "a</div>b</h3>c</tr>d", "a\nb\nc\nd"},
            {"tag over two lines", "a<a\nhref=\"x\">b</a>", "ab"},
            {"lines of Windows", "a\r\n\r\nb\r\n", "a\nb"},
            {"blanks inside a line stay", " \ta  b\t ", "a  b"},
            {"entities", "&lt;b&gt; &quot;&#39;&apos;&quot;&nbsp;&amp; c", "<b> \"''\" & c"},
            {"entity once", "&amp;lt; &amp;amp;", "&lt; &amp;"},
            {"unknown entities stay", "&zwj; &LT; &amp", "&zwj; &LT; &amp"},
            {"no tag without end", "1 < 2 &amp; <b", "1 < 2 & <b"},
            {"empty tag", "a<>b", "a<>b"},
        });
    }
    void text()
    {
        const auto row = test::currentRow<NotesRow>();
        QCOMPARE(releaseNotesText(QString::fromUtf8(row.html)), QString::fromUtf8(row.text));
    }

    /// Texts whose every character could begin a match that fails only at the end of the text.
    void floods_data()
    {
        test::table<NotesRow>({
            {"tags without end", "<", ""},
            {"list items without end", "<li", ""},
            {"blanks", " ", "x"},
            {"ampersands", "&", ""},
        });
    }
    void floods()
    {
        const auto row = test::currentRow<NotesRow>();
        const QString flood = QString::fromUtf8(row.html).repeated(300'000);
        // Done at all within the time of a test is done well: the naive way takes hours.
        QVERIFY(!releaseNotesText(u'x' + flood + QString::fromUtf8(row.text)).isEmpty());
    }
};

QTEST_GUILESS_MAIN(ReleaseNotesTextTest)
#include "ReleaseNotesTextTest.moc"
