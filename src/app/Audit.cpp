#include "app/Audit.h"

#include "app/Output.h"
#include "app/Terminal.h"
#include "app/TerminalText.h"
#include "app/TextTable.h"
#include "model/DisplayTexts.h"
#include "services/Audit.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>

namespace tallyglass {

namespace {

struct CauseName
{
    const char *inJson;
    TextKey text;
};

constexpr std::array causeNames{
    CauseName{"blocks", "audit.blocks"},
    CauseName{"resumedFiles", "audit.resumed"},
    CauseName{"innerCopies", "audit.innerCopies"},
    CauseName{"repeats", "audit.repeats"},
    CauseName{"replays", "audit.replays"},
    CauseName{"runningTotals", "audit.runningTotals"},
    CauseName{"parts", "audit.parts"},
    CauseName{"earlierRuns", "audit.earlierRuns"},
    CauseName{"statedTotals", "audit.statedTotals"},
};
static_assert(causeNames.size() == static_cast<std::size_t>(DifferenceCause::Count));

using Reason = PassedOverLog::Reason;

struct ReasonName
{
    Reason reason;
    const char *inJson;
    TextKey text;
};

constexpr std::array reasonNames{
    ReasonName{Reason::TooLarge, "tooLarge", "audit.tooLarge"},
    ReasonName{Reason::Compressed, "compressed", "audit.compressed"},
    ReasonName{Reason::Unreadable, "unreadable", "audit.unreadable"},
    ReasonName{Reason::NotUtf8, "notUtf8", "audit.notUtf8"},
    ReasonName{Reason::BrokenLines, "brokenLines", "audit.brokenLines"},
    ReasonName{Reason::TornLine, "tornLine", "audit.tornLine"},
};

const ReasonName &nameOf(Reason reason)
{
    return *std::ranges::find(reasonNames, reason, &ReasonName::reason);
}

bool isShown(const AuditedUsage &usage)
{
    return usage.everyRecord != 0 || usage.eachAnswerOnce != 0;
}

/// "2.29", every record by each answer.
QString factor(const AuditedUsage &usage)
{
    if (usage.eachAnswerOnce <= 0)
        return QStringLiteral("--");
    return u'×'
        + QString::number(static_cast<double>(usage.everyRecord)
                              / static_cast<double>(usage.eachAnswerOnce),
                          'f', 2);
}

QString usageText(const Audit &audit, const std::optional<UsageWindowKind> &window,
                  const TableStyle &style)
{
    using Column = TextTable::Column;
    TextTable table({Column::Text, Column::Figure, Column::Figure, Column::Figure, Column::Figure});
    table.row({{},
               displayText("audit.everyRecord"),
               displayText("audit.eachAnswerOnce"),
               displayText("audit.factor"),
               displayText("audit.records")});
    for (const UsageWindowKind kind : allWindowKinds) {
        const auto isOfKind = [&](const AuditedUsage &usage) {
            return usage.window == kind && isShown(usage);
        };
        if ((window && kind != *window) || std::ranges::none_of(audit.usages, isOfKind))
            continue;
        table.line(shortLabel(kind));
        for (const AuditedUsage &usage : audit.usages) {
            if (!isOfKind(usage))
                continue;
            table.row({QStringLiteral("  ") + displayName(usage.provider),
                       fullCount(usage.everyRecord),
                       fullCount(usage.eachAnswerOnce),
                       factor(usage),
                       {}});
            for (std::size_t cause = 0; cause < causeNames.size(); ++cause) {
                const Difference &difference = usage.differences[cause];
                if (difference.tokens != 0)
                    table.row({QStringLiteral("    ") + displayText(causeNames[cause].text),
                               fullCount(difference.tokens),
                               {},
                               {},
                               fullCount(difference.records)});
            }
        }
    }
    return table.text(style.width);
}

QString linesText(const std::vector<std::uint32_t> &lines)
{
    constexpr std::size_t shown = 3;
    QStringList texts;
    for (std::size_t i = 0; i < std::min(shown, lines.size()); ++i)
        texts += QString::number(lines[i]);
    if (lines.size() > shown)
        texts += QStringLiteral("+%1").arg(lines.size() - shown);
    return texts.join(QStringLiteral(", "));
}

QString passedOverText(const Audit &audit, const QString &home, const TableStyle &style)
{
    using Column = TextTable::Column;
    if (audit.passedOver.empty())
        return displayText("audit.allRead") + u'\n';
    TextTable table({Column::Text, Column::Figure, Column::Text, Column::Path});
    table.line(formatText("audit.notRead.format", {fullCount(qint64(audit.passedOver.size()))}));
    for (const PassedOverLog &log : audit.passedOver) {
        constexpr std::int64_t kibibyte = 1024;
        QString path = QFile::decodeName(log.path.c_str());
        if (path.startsWith(home + u'/'))
            path.replace(0, home.size(), QStringLiteral("~"));
        table.row({QStringLiteral("  ") + displayText(nameOf(log.reason).text),
                   formatText("audit.size.format", {fullCount(log.size / kibibyte)}),
                   log.lines.empty() ? QString()
                                     : formatText("audit.lines.format", {linesText(log.lines)}),
                   printable(path)});
    }
    return table.text(style.width);
}

QByteArray json(const Audit &audit, const std::optional<UsageWindowKind> &window)
{
    QJsonArray usages;
    for (const AuditedUsage &usage : audit.usages) {
        if (window && usage.window != *window)
            continue;
        QJsonObject differences;
        for (std::size_t cause = 0; cause < causeNames.size(); ++cause) {
            const Difference &difference = usage.differences[cause];
            if (difference.tokens != 0)
                differences.insert(
                    QLatin1String(causeNames[cause].inJson),
                    QJsonObject{{QLatin1String("tokens"), qint64{difference.tokens}},
                                {QLatin1String("records"), qint64{difference.records}}});
        }
        usages.append(QJsonObject{
            {QLatin1String("window"), QString(rawValue(usage.window))},
            {QLatin1String("provider"), QString(rawValue(usage.provider))},
            {QLatin1String("everyRecord"), qint64{usage.everyRecord}},
            {QLatin1String("eachAnswerOnce"), qint64{usage.eachAnswerOnce}},
            {QLatin1String("differences"), differences},
        });
    }
    QJsonArray notRead;
    for (const PassedOverLog &log : audit.passedOver) {
        QJsonArray lines;
        for (const std::uint32_t line : log.lines)
            lines.append(qint64{line});
        notRead.append(QJsonObject{
            {QLatin1String("file"), QFile::decodeName(log.path.c_str())},
            {QLatin1String("reason"), QString::fromLatin1(nameOf(log.reason).inJson)},
            {QLatin1String("size"), qint64{log.size}},
            {QLatin1String("lines"), lines},
        });
    }
    return QJsonDocument(
               QJsonObject{{QLatin1String("usages"), usages}, {QLatin1String("notRead"), notRead}})
        .toJson(QJsonDocument::Indented);
}

} // namespace

int runAudit(const command::Audit &options, Instant now)
{
    const QTimeZone zone = systemZone();
    QString home;
    const Audit result =
        collectFromHome(options.inDemoHome, [&](const Host &host, CollectionProgress &progress) {
            home = host.homeFolder;
            return audit(host, now, zone, progress);
        });
    if (options.asJson)
        return print(printableJson(json(result, options.window)));
    const TableStyle style = styleOfStandardOutput();
    const QString text =
        usageText(result, options.window, style) + u'\n' + passedOverText(result, home, style);
    return print(text.toUtf8());
}

} // namespace tallyglass
