#include "services/UsageAlerts.h"

#include "support/FakePorts.h"
#include "support/Table.h"

using namespace tallyglass;

namespace {

struct ThresholdRow
{
    const char *name;
    QVariant threshold; ///< as stored
    double share;
    const char *mark; ///< that is left, null when no alert is raised
};

ProviderUsageSummary limited(double share)
{
    return {.provider = UsageProvider::Claude,
            .rateLimit =
                RateLimitUsage{.usedPercent = share, .resetDate = fromUnixNumber(1'767'225'600)}};
}

} // namespace

class UsageAlertsTest : public QObject
{
    Q_OBJECT

private:
    test::FakeUserDefaults m_defaults;
    test::FakeNotifier m_notifier;

    /// How many alerts there are afterwards.
    std::size_t raise(const ProviderUsageSummary &provider)
    {
        raiseAlerts({.window = UsageWindowKind::FiveHours, .providers = {provider}}, m_defaults,
                    m_notifier);
        return m_notifier.posted.size();
    }

private Q_SLOTS:
    void init()
    {
        m_defaults.values = {{QStringLiteral("alertsEnabled"), true}};
        m_notifier.posted.clear();
    }

    void alertsAtTheThreshold_data()
    {
        test::table<ThresholdRow>({
            {"below the default", {}, 0.79, nullptr},
            {"at the default", {}, 0.8, "alerted.claude.1767225600.80"},
            {"none counts as the default", 0.0, 0.8, "alerted.claude.1767225600.80"},
            {"stored as text", QStringLiteral("0.9"), 0.9, "alerted.claude.1767225600.90"},
            {"a fraction of a percent is cut", 0.856, 0.9, "alerted.claude.1767225600.85"},
            {"not a number", QStringLiteral("inf"), 0.8, "alerted.claude.1767225600.80"},
        });
    }
    void alertsAtTheThreshold()
    {
        const auto row = test::currentRow<ThresholdRow>();
        if (row.threshold.isValid())
            m_defaults.values.insert(QStringLiteral("alertThreshold"), row.threshold);
        QCOMPARE(raise(limited(row.share)), std::size_t{row.mark ? 1U : 0U});
        if (row.mark)
            QCOMPARE(m_defaults.value(QString::fromLatin1(row.mark)), QVariant(true));
    }

    void alertsOncePerResetAndThreshold()
    {
        ProviderUsageSummary claude = limited(0.95);
        QCOMPARE(raise(claude), std::size_t{1});
        QCOMPARE(raise(claude), std::size_t{1});
        QCOMPARE(m_notifier.posted[0].title, QStringLiteral("Tallyglass"));
        QCOMPARE(m_notifier.posted[0].body,
                 QStringLiteral("Claude Code の使用量が 95% に達しました"));
        m_defaults.values.insert(QStringLiteral("alertThreshold"), 0.9);
        QCOMPARE(raise(claude), std::size_t{2});
        claude.rateLimit->resetDate = fromUnixNumber(1'767'243'600);
        QCOMPARE(raise(claude), std::size_t{3});

        // An estimate alerts once for all, and where there is no figure nothing does.
        ProviderUsageSummary codex{.tokens = {.inputTokens = 900}, .budgetTokens = 1'000};
        QCOMPARE(raise(codex), std::size_t{4});
        codex.tokens.inputTokens = 2'000;
        QCOMPARE(raise(codex), std::size_t{4});
        QVERIFY(m_defaults.values.contains(QStringLiteral("alerted.codex.0.90")));
        QCOMPARE(raise({.tokens = {.inputTokens = 900}}), std::size_t{4});
    }

    void silentWithoutConsent()
    {
        m_defaults.values.clear();
        QCOMPARE(raise(limited(1.0)), std::size_t{0});
        QVERIFY(m_defaults.values.isEmpty());
    }
};

QTEST_GUILESS_MAIN(UsageAlertsTest)
#include "UsageAlertsTest.moc"
