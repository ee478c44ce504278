#include "services/TakeSnapshot.h"

#include "support/Table.h"
#include "support/TemporaryHome.h"
#include "support/Texts.h"

#include <QTimeZone>

using namespace tallyglass;

namespace {

/// A recorded shape of log, and where its tool keeps such a file.
struct Recording
{
    const char *file;
    const char *place;
};

constexpr Recording claude20{"claude-code-2.0.65.jsonl",
                             ".claude/projects/-home-demo-shop/1.jsonl"};
constexpr Recording claude21{"claude-code-2.1.41.jsonl",
                             ".claude/projects/-home-demo-shop/2.jsonl"};
constexpr Recording desktop{
    "claude-desktop-audit.jsonl",
    "Library/Application Support/Claude/local-agent-mode-sessions/o/a/local_1/audit.jsonl"};
constexpr Recording statusline{
    "statusline-bridge.json", "Library/Application Support/Tallyglass/statusline_rate_limits.json"};
constexpr Recording codex40{"codex-0.40.0.jsonl", ".codex/sessions/2026/02/12/rollout-1.jsonl"};
constexpr Recording codex46{"codex-0.46.0.jsonl", ".codex/sessions/2026/02/12/rollout-2.jsonl"};
constexpr Recording codex107{"codex-0.107.0.jsonl", ".codex/sessions/2026/02/12/rollout-3.jsonl"};
constexpr Recording copilot{"copilot-1.0.27.jsonl", ".copilot/session-state/1/events.jsonl"};

} // namespace

struct HomeRow
{
    const char *name;
    UsageProvider provider;
    QList<Recording> recordings;
    const char *fiveHours;
};

class TakeSnapshotTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void recordedHomes_data()
    {
        using enum UsageProvider;
        test::table<HomeRow>({
            {"an answer counts once for each of its lines",
             Claude,
             {claude20},
             "6/121/1800/82000 in 2 events, claude-opus-4-5 6/121/1800/82000 in 2"},
            {"an agent counts again where it reports",
             Claude,
             {claude21},
             "18/36/32/564 in 3 events, claude-sonnet-4-5 10/20/0/500 in 1, "
             "claude-haiku-4-5 4/8/16/32 in 1"},
            {"a limit without a share",
             Claude,
             {desktop},
             "7/9/0/0 in 2 events, (? 300min until 2026-02-12T09:30:00.000Z)"},
            {"the bridge's share beats one that is not known",
             Claude,
             {desktop, statusline},
             "7/9/0/0 in 3 events, (0.83 300min until 2026-02-12T09:30:00.000Z)"},
            {"the last usage alone, and no flat limits",
             Codex,
             {codex40},
             "4000/40/0/0=4040 in 1 events"},
            {"299 minutes are no five hours", Codex, {codex46}, "100/10/0/0=110 in 1 events"},
            {"a limit taken away leaves the last one standing",
             Codex,
             {codex107},
             "50/10/0/0=60 in 2 events, (0.02 300min until 2026-02-12T09:30:00.000Z plus)"},
            {"a session ended twice",
             Copilot,
             {copilot},
             "500/30/50/100 in 2 events, gpt-5.4-mini 300/10/50/100 in 1, "
             "claude-haiku-4.5 200/20/0/0 in 1"},
            {"all tools: Codex",
             Codex,
             {codex40, codex46, codex107, claude20, copilot, statusline},
             "4150/60/0/0=4210 in 4 events, (0.02 300min until 2026-02-12T09:30:00.000Z plus)"},
            {"all tools: Claude",
             Claude,
             {codex40, codex46, codex107, claude20, claude21, copilot, statusline},
             "24/157/1832/82564 in 6 events, claude-opus-4-5 6/121/1800/82000 in 2, "
             "claude-sonnet-4-5 10/20/0/500 in 1, claude-haiku-4-5 4/8/16/32 in 1, "
             "(0.83 300min until 2026-02-12T09:30:00.000Z)"},
        });
    }
    void recordedHomes()
    {
        const auto row = test::currentRow<HomeRow>();
        const test::TemporaryHome home;
        for (const auto &[file, place] : row.recordings) {
            QFile recording(QStringLiteral(TG_TEST_DATA "/") + QString::fromUtf8(file));
            QVERIFY(recording.open(QIODevice::ReadOnly));
            home.write(QString::fromUtf8(place), recording.readAll());
        }
        const Instant now = test::at("2026-02-12T09:10:00Z");
        CollectionProgress progress;
        const UsageSnapshot snapshot =
            takeSnapshot({.homeFolder = home.path()}, now, QTimeZone("Asia/Tokyo"), progress);
        QCOMPARE(test::toText(snapshot.summaries.front().summary(row.provider)),
                 QString::fromUtf8(row.fiveHours));
    }
};

QTEST_GUILESS_MAIN(TakeSnapshotTest)
#include "TakeSnapshotTest.moc"
