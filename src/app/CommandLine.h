#pragma once

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
    bool asJson = false;
    bool inDemoHome = false;

    bool operator==(const Report &) const = default;
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

using Command = std::variant<command::Help, command::Version, command::Start, command::Report,
                             command::Bridge, command::Misuse>;

/// What "--help" prints.
QString helpText();

/// Reads the words after the program's name.
Command parseCommandLine(const QStringList &words);

} // namespace tallyglass
