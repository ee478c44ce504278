#include "app/DemoHome.h"
#include "model/IsoDateTime.h"
#include "support/PanelMachine.h"
#include "support/QuickItems.h"
#include "support/Table.h"
#include "support/TestData.h"
#include "ui/MenuBarExtra.h"

#include <QDir>
#include <QFont>
#include <QLocale>
#include <QTest>
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(TallyglassPlugin)

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

enum class State { Working, Week, EveryNotice, Nothing, Extremes };

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

/// Pictures show a person's home, not the temporary folder in place of it.
void renameHome(QQuickItem &item, const QString &home)
{
    const QString text = item.property("text").toString();
    if (text.contains(home))
        item.setProperty("text", QString(text).replace(home, QStringLiteral("/home/ada")));
    for (QQuickItem *child : item.childItems())
        renameHome(*child, home);
}

constexpr int ordinaryWidth = 480; // of the settings, whose screen may be narrower here

void useFontOf(int pixels)
{
    QFont font(QStringLiteral("Noto Sans CJK JP"));
    font.setPixelSize(pixels);
    QGuiApplication::setFont(font);
}

void leavePicture(QQuickWindow &window, const char *name)
{
    const QImage picture = window.grabWindow();
    QCOMPARE(picture.size(), window.size() * window.devicePixelRatio());
    const QString folder = qEnvironmentVariable("TALLYGLASS_PICTURES");
    if (!folder.isEmpty())
        QVERIFY(picture.save(folder + u'/' + QString::fromLatin1(name) + QStringLiteral(".png")));
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
            {"week-light", State::Week, false, 13},
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
        useFontOf(row.fontSize);
        test::usePalette(row.isDark);

        const Instant now = test::FakeClock().now();
        const DemoHome demo(now);
        const bool usesDemo = row.state != State::Nothing && row.state != State::Extremes;
        test::PanelMachine machine(usesDemo ? demo.path() : QString());
        if (row.state == State::Working || row.state == State::Week) {
            machine.fake.http.replies = {{200, "{}"}};
        } else if (row.state == State::EveryNotice) {
            QVERIFY(QDir(demo.path() + QStringLiteral("/.local")).removeRecursively());
            QVERIFY(QFile::remove(demo.path() + QStringLiteral("/.claude/.credentials.json")));
            machine.fake.http.replies = {{200, test::testData("feed-release-notes.xml")}};
        } else if (row.state == State::Extremes) {
            writeExtremes(machine.home, now);
        }
        QCoro::waitFor(machine.model.refresh());
        if (row.state == State::Week) {
            machine.viewModel.setWindowIndex(static_cast<int>(UsageWindowKind::Week));
            machine.viewModel.setHistoryIndex(static_cast<int>(HistoryRange::Week));
        }

        test::PanelView view(machine.viewModel);
        leavePicture(view, row.name);
        for (const char *notice : {"updateNotice", "tokenNotice", "cliNotice"}) {
            const auto found = test::itemsNamed(QString::fromLatin1(notice), *view.rootObject());
            if (usesDemo)
                QCOMPARE(found.front()->isVisible(), row.state == State::EveryNotice);
        }
        const QStringList cut = cutTexts(*view.rootObject());
        QVERIFY2(cut.isEmpty(), qPrintable(cut.join(u'\n')));
    }

    void drawsTheSettings_data()
    {
        QTest::addColumn<bool>("isDark");
        QTest::newRow("settings-light") << false;
        QTest::newRow("settings-dark") << true;
    }
    void drawsTheSettings()
    {
        QFETCH(const bool, isDark);
        useFontOf(13);
        test::usePalette(isDark);
        const DemoHome demo(test::FakeClock().now());
        test::PanelMachine machine(demo.path());
        machine.fake.http.replies = {{200, "{}"}};
        QCoro::waitFor(machine.model.refresh());
        MenuBarExtra extra(machine.model, machine.updater, machine.ports);
        extra.openSettings();
        QQuickView &view = *extra.settings();
        view.resize(ordinaryWidth, view.height());
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        renameHome(*view.rootObject(), demo.path());
        QCoreApplication::processEvents();
        const auto page = test::itemsNamed(QStringLiteral("page"), *view.rootObject());
        view.resize(ordinaryWidth, page.front()->property("contentHeight").toInt());
        QCoreApplication::processEvents();
        leavePicture(view, QTest::currentDataTag());
        const QStringList cut = cutTexts(*view.rootObject());
        QVERIFY2(cut.isEmpty(), qPrintable(cut.join(u'\n')));
    }
};

QTEST_MAIN(PanelGalleryTest)
#include "PanelGalleryTest.moc"
