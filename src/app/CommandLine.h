#pragma once

#include "model/AnswerCounting.h"
#include "model/UsageWindowKind.h"

#include <QStringList>

#include <optional>
#include <variant>

namespace tallyglass {

namespace command {

struct Help
{
    bool operator==(const Help &) const = default;
};
struct Version
{
    bool operator==(const Version &) const = default;
};
/// The application itself, in the background.
struct Start
{
    bool inDemoHome = false;

    bool operator==(const Start &) const = default;
};
struct Report
{
    std::optional<UsageWindowKind> window; ///< absent: all of them
    Counting counting = Counting::EveryRecord;
    bool asJson = false;
    bool inDemoHome = false;

    bool operator==(const Report &) const = default;
};
/// Where the figures of a window come from.
struct Explain
{
    UsageWindowKind window = UsageWindowKind::FiveHours;
    std::optional<UsageProvider> provider; ///< absent: all of them
    std::optional<QString> model; ///< absent: all of them
    Counting counting = Counting::EveryRecord;
    bool showsAll = false;
    bool asJson = false;
    bool inDemoHome = false;

    bool operator==(const Explain &) const = default;
};
/// The two ways of counting beside each other, and what is not read.
struct Audit
{
    std::optional<UsageWindowKind> window; ///< absent: all of them
    bool asJson = false;
    bool inDemoHome = false;

    bool operator==(const Audit &) const = default;
};
/// One line of what was stored last.
struct Status
{
    UsageWindowKind window = UsageWindowKind::FiveHours;
    std::optional<UsageProvider> provider; ///< absent: all of them
    QString format = QStringLiteral("{all}");
    bool asJson = false;

    bool operator==(const Status &) const = default;
};
/// The status line bridge's script, which reads the words behind this one itself.
struct Bridge
{
    bool operator==(const Bridge &) const = default;
};
/// The words make no sense; \c message says why in one line.
struct Misuse
{
    QString message;
    bool operator==(const Misuse &) const = default;
};

} // namespace command

using Command =
    std::variant<command::Help, command::Version, command::Start, command::Report, command::Explain,
                 command::Audit, command::Status, command::Bridge, command::Misuse>;

/// What "--help" prints.
QString helpText();

/// Reads the words after the program's name.
Command parseCommandLine(const QStringList &words);

} // namespace tallyglass
