#pragma once

#include "platform/Ports.h"

namespace tallyglass {

/// What a session has to know to start the program.
struct Autostart
{
    QString configFolder;
    QString program; ///< the full path that the session is to start
    QStringList searchPath; ///< in which an entry may name a program without its folder
};

/// The desktop entry "tallyglass.desktop" among those that the session starts. One that starts
/// another program, or that the user has switched off, is not ours: it counts as not enabled and
/// only goes when the user enables the program.
std::unique_ptr<LoginItem> makeAutostartEntry(Autostart autostart);

/// Hands notifications to the desktop's daemon over the session bus. Waits for neither: where one
/// is missing or silent, the notification is dropped.
std::unique_ptr<Notifier> makeDesktopNotifier();

/// Told by the login manager over the system bus; where there is none, nothing is noticed.
std::unique_ptr<SleepWatch> makeLogindSleepWatch();

/// The user's settings in a file, one line each: "alertThreshold=0.8". Every change is written at
/// once; one that cannot be written lasts as long as the program runs.
std::unique_ptr<UserDefaults> makeSettingsFile(const QString &path);

} // namespace tallyglass
