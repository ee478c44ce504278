#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace tallyglass {

/// What a desktop entry says about a program that the session starts.
struct DesktopEntry
{
    QString program; ///< the first word of its command, without quotes
    bool isOff = false; ///< by any of the switches that desktops offer their users

    bool operator==(const DesktopEntry &) const = default;
};

/// Nothing when there is no such file or it is no desktop entry.
std::optional<DesktopEntry> readDesktopEntry(const QString &path);

/// The text of an entry that starts \a program, a full path of whatever characters.
QByteArray desktopEntry(const QString &program);

} // namespace tallyglass
