#pragma once

#include "platform/Ports.h"

namespace tallyglass {

/// The user's keychain. An item of another program is given out only after the system has asked the
/// user. Whoever refuses is not asked again before the next start, or every refresh would ask.
std::unique_ptr<Keychain> makeMacKeychain();

/// The application among the login items of the system settings. The system takes signed
/// applications only, and may want the user to approve one there first.
std::unique_ptr<LoginItem> makeMacLoginItem();

/// Hands notifications to the system's centre, which drops them without permission. Programs
/// without a bundle have no centre: there nothing is posted.
std::unique_ptr<Notifier> makeMacNotifier();

/// The application's user defaults, as "defaults read" shows them. Those of a made-up home folder
/// last as long as the program runs: they must neither show nor change what the user has chosen.
std::unique_ptr<UserDefaults> makeMacUserDefaults(const QString &homeFolder);

/// Sparkle's standard updater: it downloads, verifies and installs, and asks the user by itself.
std::unique_ptr<UpdaterEngine> makeSparkleUpdaterEngine();

} // namespace tallyglass
