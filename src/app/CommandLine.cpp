#include "app/CommandLine.h"

#include "app/Status.h"
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

/// "codex, claude, …"
QString toolNames()
{
    QStringList names;
    for (const UsageProvider provider : allProviders)
        names += rawValue(provider);
    return names.join(QLatin1String(", "));
}

/// An option, and the commands that take it. The application itself is the empty name.
struct Option
{
    QCommandLineOption option;
    QStringList commands;
};

const QString all = QStringLiteral("all");
const QString count = QStringLiteral("count");
const QString demo = QStringLiteral("demo");
const QString format = QStringLiteral("format");
const QString json = QStringLiteral("json");
const QString model = QStringLiteral("model");
const QString tool = QStringLiteral("tool");
const QString window = QStringLiteral("window");

const QString audit = QStringLiteral("audit");
const QString explain = QStringLiteral("explain");
const QString report = QStringLiteral("report");
const QString status = QStringLiteral("status");

QList<Option> allOptions()
{
    const auto withValue = [](const QString &name) {
        return QCommandLineOption(name, {}, QStringLiteral("value"));
    };
    return {
        {QCommandLineOption(all), {explain}},
        {withValue(count), {explain, report}},
        {QCommandLineOption(demo), {QString(), audit, explain, report}},
        {withValue(format), {status}},
        {QCommandLineOption(json), {audit, explain, report, status}},
        {withValue(model), {explain}},
        {withValue(tool), {explain, status}},
        {withValue(window), {audit, explain, report, status}},
    };
}

command::Misuse unknown(const QString &word)
{
    return {formatText("command.unknownWord.format", {word})};
}

/// Reads the values of options. After one that makes no sense, misuse() says so.
class Values
{
public:
    explicit Values(const QCommandLineParser &given)
        : m_given(given)
    {
    }

    std::optional<UsageWindowKind> windowKind()
    {
        if (!m_given.isSet(window))
            return std::nullopt;
        const auto kind = windowKindFromRawValue(m_given.value(window));
        if (!kind)
            m_misuse = {
                formatText("command.unknownWindow.format", {m_given.value(window), windowNames()})};
        return kind;
    }

    std::optional<UsageProvider> provider()
    {
        if (!m_given.isSet(tool))
            return std::nullopt;
        const auto provider = providerFromRawValue(m_given.value(tool));
        if (!provider)
            m_misuse = {
                formatText("command.unknownTool.format", {m_given.value(tool), toolNames()})};
        return provider;
    }

    Counting counting()
    {
        const QString word = m_given.value(count);
        if (word == QLatin1String("once"))
            return Counting::EachAnswerOnce;
        if (m_given.isSet(count) && word != QLatin1String("every"))
            m_misuse = {formatText("command.unknownCounting.format", {word})};
        return Counting::EveryRecord;
    }

    std::optional<QString> text(const QString &option) const
    {
        return m_given.isSet(option) ? std::optional{m_given.value(option)} : std::nullopt;
    }

    const std::optional<command::Misuse> &misuse() const { return m_misuse; }

private:
    const QCommandLineParser &m_given;
    std::optional<command::Misuse> m_misuse;
};

template<typename Chosen>
Command unlessMisused(const Values &values, const Chosen &chosen)
{
    return values.misuse() ? Command(*values.misuse()) : Command(chosen);
}

Command reportCommand(const QCommandLineParser &given)
{
    Values values(given);
    const command::Report chosen{.window = values.windowKind(),
                                 .counting = values.counting(),
                                 .asJson = given.isSet(json),
                                 .inDemoHome = given.isSet(demo)};
    if (chosen.asJson && chosen.window)
        return command::Misuse{displayText("command.jsonIsWhole")};
    return unlessMisused(values, chosen);
}

Command explainCommand(const QCommandLineParser &given)
{
    Values values(given);
    command::Explain chosen{.provider = values.provider(),
                            .model = values.text(model),
                            .counting = values.counting(),
                            .showsAll = given.isSet(all),
                            .asJson = given.isSet(json),
                            .inDemoHome = given.isSet(demo)};
    chosen.window = values.windowKind().value_or(chosen.window);
    if (chosen.showsAll && chosen.asJson)
        return command::Misuse{displayText("command.jsonHasAll")};
    return unlessMisused(values, chosen);
}

Command auditCommand(const QCommandLineParser &given)
{
    Values values(given);
    return unlessMisused(values,
                         command::Audit{.window = values.windowKind(),
                                        .asJson = given.isSet(json),
                                        .inDemoHome = given.isSet(demo)});
}

Command statusCommand(const QCommandLineParser &given)
{
    Values values(given);
    command::Status chosen{.provider = values.provider(), .asJson = given.isSet(json)};
    chosen.window = values.windowKind().value_or(chosen.window);
    chosen.format = values.text(format).value_or(chosen.format);
    if (const auto unknownName = unknownPlaceholder(chosen.format))
        return command::Misuse{formatText("command.unknownPlaceholder.format", {*unknownName})};
    return unlessMisused(values, chosen);
}

} // namespace

QString helpText()
{
    QStringList tools;
    for (const UsageProvider provider : allProviders)
        tools += displayName(provider);
    return formatText("command.help",
                      {windowNames(), tools.join(QLatin1String(", ")), toolNames()});
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
    if (name == report)
        return reportCommand(given);
    if (name == audit)
        return auditCommand(given);
    if (name == explain)
        return explainCommand(given);
    if (name == status)
        return statusCommand(given);
    return unknown(name);
}

} // namespace tallyglass
