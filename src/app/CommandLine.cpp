#include "app/CommandLine.h"

#include "model/DisplayTexts.h"
#include "model/UsageProvider.h"

#include <QCommandLineParser>

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

/// An option, and the commands that take it. The application itself is the empty name.
struct Option
{
    QCommandLineOption option;
    QStringList commands;
};

const QString demo = QStringLiteral("demo");
const QString json = QStringLiteral("json");
const QString window = QStringLiteral("window");
const QString report = QStringLiteral("report");

QList<Option> allOptions()
{
    const auto withValue = [](const QString &name) {
        return QCommandLineOption(name, {}, QStringLiteral("value"));
    };
    return {
        {QCommandLineOption(demo), {QString(), report}},
        {QCommandLineOption(json), {report}},
        {withValue(window), {report}},
    };
}

command::Misuse unknown(const QString &word)
{
    return {formatText("command.unknownWord.format", {word})};
}

Command reportCommand(const QCommandLineParser &given)
{
    command::Report chosen{.asJson = given.isSet(json), .inDemoHome = given.isSet(demo)};
    if (given.isSet(window)) {
        chosen.window = windowKindFromRawValue(given.value(window));
        if (!chosen.window)
            return command::Misuse{
                formatText("command.unknownWindow.format", {given.value(window), windowNames()})};
        if (chosen.asJson)
            return command::Misuse{displayText("command.jsonIsWhole")};
    }
    return chosen;
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
    if (words.value(0) == QLatin1String("bridge"))
        return command::Bridge{};
    const QList<Option> options = allOptions();
    const QCommandLineOption help(QStringList{QStringLiteral("h"), QStringLiteral("help")});
    const QCommandLineOption version(QStringLiteral("version"));
    QCommandLineParser given;
    given.addOptions({help, version});
    for (const Option &option : options)
        given.addOption(option.option);

    // The parser passes over the first word, the program's name.
    const bool isUnderstood = given.parse(QStringList(QString()) + words);
    if (given.isSet(help))
        return command::Help{};
    if (given.isSet(version))
        return command::Version{};
    if (!isUnderstood) {
        // Else a value is missing or one too many.
        const QStringList names = given.unknownOptionNames();
        return unknown(names.isEmpty() ? words.last() : QStringLiteral("--") + names.first());
    }

    const QStringList positional = given.positionalArguments();
    const QString name = positional.value(0);
    if (positional.size() > 1)
        return unknown(positional[1]);
    for (const Option &option : options) {
        const QString &optionName = option.option.names().first();
        if (given.isSet(optionName) && !option.commands.contains(name))
            return unknown(QStringLiteral("--") + optionName);
    }
    if (name.isEmpty())
        return command::Start{.inDemoHome = given.isSet(demo)};
    return name == report ? reportCommand(given) : unknown(name);
}

} // namespace tallyglass
