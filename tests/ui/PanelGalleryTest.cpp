#include "app/DemoHome.h"
#include "model/IsoDateTime.h"
#include "support/PanelMachine.h"
#include "support/QuickItems.h"
#include "support/Table.h"
#include "support/TemporaryHome.h"
#include "support/TestData.h"

#include <QDir>
#include <QFont>
#include <QLocale>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(TallyglassPlugin)

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

enum class State { Working, EveryNotice, Nothing, Extremes };

struct PictureRow
{
    const char *name;
    State state;
    bool isDark;
    int fontSize; ///< pixels
};

/// Longer names and larger figures than anyone has.
void writeExtremes(const test::TemporaryHome &home, Instant now)
{
    const QByteArray date = formatIsoDateTime(now - 60s).toUtf8();
    QByteArray log;
    for (int i = 0; i < 7; ++i) {
        log +=
            QByteArrayLiteral(
                R"({"timestamp":"%1","message":{"model":"claude-opus-4-5-extended-thinking-preview-%2",)"
                R"("usage":{"input_tokens":987654321012,"cache_read_input_tokens":98765432101234}}})")
                .replace("%1", date)
                .replace("%2", QByteArray::number(i));
        log += '\n';
    }
    home.write(QStringLiteral(".claude/projects/p/s.jsonl"), log);
    home.write(QStringLiteral("Library/Application Support/Tallyglass/budgets.json"),
               R"({"tokenBudgets":{"claude.fiveHours":5}})");
}

/// The texts that are drawn cut off.
QStringList cutTexts(const QQuickItem &root)
{
    QStringList cut;
    for (const QQuickItem *child : root.childItems()) {
        if (!child->isVisible())
            continue;
        if (child->property("truncated").toBool())
            cut += child->property("text").toString();
        if (child->inherits("QQuickText")
            && child->property("contentWidth").toDouble() > child->width() + 1)
            cut += child->property("text").toString();
        cut += cutTexts(*child);
    }
    return cut;
}

} // namespace

class PanelGalleryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QLocale::setDefault(QLocale(QLocale::Japanese));
        QGuiApplication::setDesktopSettingsAware(false);
    }

    void draws_data()
    {
        test::table<PictureRow>({
            {"working-light", State::Working, false, 13},
            {"working-dark", State::Working, true, 13},
            {"working-light-large", State::Working, false, 20},
            {"notices-light", State::EveryNotice, false, 13},
            {"notices-dark", State::EveryNotice, true, 13},
            {"nothing-light", State::Nothing, false, 13},
            {"extremes-dark", State::Extremes, true, 13},
        });
    }
    /// Draws the panel in each state. With TALLYGLASS_PICTURES naming a folder the pictures are
    /// left there.
    void draws()
    {
        const auto row = test::currentRow<PictureRow>();
        QFont font(QStringLiteral("Noto Sans CJK JP"));
        font.setPixelSize(row.fontSize);
        QGuiApplication::setFont(font);
        test::usePalette(row.isDark);

        const Instant now = test::FakeClock().now();
        const DemoHome demo(now);
        const test::TemporaryHome empty;
        const bool usesDemo = row.state == State::Working || row.state == State::EveryNotice;
        test::PanelMachine machine(usesDemo ? demo.path() : empty.path());
        if (row.state == State::Working) {
            QFile credentials(demo.path() + QStringLiteral("/.claude/.credentials.json"));
            QVERIFY(credentials.open(QIODevice::WriteOnly));
            credentials.write(R"({"accessToken":"token"})");
            machine.fake.http.replies = {{200, "{}"}};
        } else if (row.state == State::EveryNotice) {
            QVERIFY(QDir(demo.path() + QStringLiteral("/.local")).removeRecursively());
            machine.fake.http.replies = {{200, test::testData("feed-release-notes.xml")}};
        } else if (row.state == State::Extremes) {
            writeExtremes(empty, now);
        }
        QCoro::waitFor(machine.model.refresh());

        test::PanelView view(machine.viewModel);
        const QImage picture = view.grabWindow();
        QCOMPARE(picture.size(), view.size() * view.devicePixelRatio());
        const QString folder = qEnvironmentVariable("TALLYGLASS_PICTURES");
        if (!folder.isEmpty())
            QVERIFY(picture.save(folder + u'/' + QString::fromLatin1(row.name)
                                 + QStringLiteral(".png")));
        QCOMPARE(cutTexts(*view.rootObject()), QStringList());
    }
};

QTEST_MAIN(PanelGalleryTest)
#include "PanelGalleryTest.moc"
