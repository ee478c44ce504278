#include "app/CommandLine.h"

#include "model/DisplayTexts.h"
#include "model/UsageProvider.h"

#include <utility>

namespace tallyglass {

namespace {

/// "fiveHours, hour, …"
QString windowNames()
{
    QStringList names;
    for (const UsageWindowKind kind : allWindowKinds)
        names += rawValue(kind);
    return names.join(QLatin1String(", "));
}

} // namespace

QString helpText()
{
    QStringList tools;
    for (const UsageProvider provider : allProviders)
        tools += displayName(provider);
    return formatText("command.help", {windowNames(), tools.join(QLatin1String(", "))});
}

Command parseCommandLine(const QStringList &words)
{
    command::Report report;
    bool isReport = false;
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QString &word = words[i];
        if (word == QLatin1String("--help") || word == QLatin1String("-h"))
            return command::Help{};
        if (word == QLatin1String("--version"))
            return command::Version{};

        if (word == QLatin1String("report") && !std::exchange(isReport, true))
            continue;
        if (word == QLatin1String("--demo")) {
            report.inDemoHome = true;
        } else if (word == QLatin1String("--json") && isReport) {
            report.asJson = true;
        } else if (word == QLatin1String("--window") && isReport) {
            report.window = windowKindFromRawValue(words.value(++i));
            if (!report.window)
                return command::Misuse{
                    formatText("command.unknownWindow.format", {words.value(i), windowNames()})};
        } else {
            return command::Misuse{formatText("command.unknownWord.format", {word})};
        }
    }
    if (report.asJson && report.window)
        return command::Misuse{displayText("command.jsonIsWhole")};
    if (isReport)
        return report;
    return command::Start{.inDemoHome = report.inDemoHome};
}

} // namespace tallyglass
