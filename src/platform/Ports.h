#pragma once

#include "platform/Clock.h"
#include "platform/Host.h"
#include "platform/HttpClient.h"
#include "platform/ProcessRunner.h"

#include <QObject>
#include <QString>
#include <QVariant>

#include <memory>
#include <optional>

namespace tallyglass {

/// The system's store of secrets.
class Keychain
{
public:
    virtual ~Keychain();

    /// The data of the generic password item of a service; nothing when there is none or it is
    /// refused. May wait for the user's consent, as long as the user likes: never called on the
    /// main thread. Only a refusal of the user's own is remembered; a keychain that is locked, say,
    /// may be open the next time.
    virtual std::optional<QByteArray> genericPassword(const QString &service) const = 0;
};

/// Whether the system starts the program when the user logs in.
class LoginItem
{
public:
    virtual ~LoginItem();

    virtual bool isEnabled() const = 0;
    /// What the user still has to do, so that what they have chosen holds; mostly nothing.
    virtual std::optional<QString> pendingStep() const { return std::nullopt; }
    /// Gives the system's own text of what went wrong, nothing on success.
    virtual std::optional<QString> setEnabled(bool enabled) = 0;
};

struct Notification
{
    QString identifier;
    QString title;
    QString body; ///< plain text

    bool operator==(const Notification &) const = default;
};

/// The desktop's notifications.
class Notifier : public QObject
{
    Q_OBJECT

public:
    /// Asks the user, where the system wants that, for permission to show alerts and play sounds.
    /// Asked again, it only finds out whether the answer still holds.
    virtual void requestPermission() { }
    /// Why the system shows none, in words for the user; nothing as long as that is not known.
    virtual std::optional<QString> refusal() const { return std::nullopt; }
    /// Shows a notification at once, with the default sound. Returns without waiting; one that
    /// cannot be shown is dropped.
    virtual void post(const Notification &notification) = 0;

Q_SIGNALS:
    void refusalChanged();
    void clicked(); ///< by the user, on a notification
};

/// Notices when the machine has been asleep.
class SleepWatch : public QObject
{
    Q_OBJECT

Q_SIGNALS:
    void woke();
};

/// The user's settings in the platform's store, by dotted keys.
class UserDefaults
{
public:
    virtual ~UserDefaults();

    /// Invalid when nothing is stored. Stores that keep text give text: convert by QVariant.
    virtual QVariant value(const QString &key) const = 0;
    virtual void setValue(const QString &key, const QVariant &value) = 0;
};

/// The system's home-screen widgets.
class WidgetCentre
{
public:
    virtual ~WidgetCentre();

    /// Makes the widgets read the snapshot file again.
    virtual void reloadAllTimelines() = 0;
};

/// The framework that downloads and installs updates, with a user interface of its own.
class UpdaterEngine : public QObject
{
    Q_OBJECT

public:
    /// To be called once, and only in a build that carries what an update needs.
    virtual void start() = 0;
    virtual bool canCheckForUpdates() const = 0;
    virtual void checkForUpdates() = 0;

Q_SIGNALS:
    void canCheckForUpdatesChanged();
};

/// Everything that the program asks of the machine. The application owns one, tests another.
struct Ports
{
    Host host;
    std::unique_ptr<Clock> clock;
    std::unique_ptr<HttpClient> http;
    std::unique_ptr<LoginItem> loginItem;
    std::unique_ptr<Notifier> notifier;
    std::unique_ptr<ProcessRunner> processes;
    std::unique_ptr<SleepWatch> sleepWatch;
    std::unique_ptr<UserDefaults> defaults;

    // Null where the system or the build has none.
    std::shared_ptr<const Keychain> keychain; ///< shared with questions that are still open
    std::unique_ptr<WidgetCentre> widgets;
    std::unique_ptr<UpdaterEngine> updater;
};

/// The ports of this system. \a homeFolder stands for the user's in every one of them.
Ports makePorts(const QString &homeFolder);

} // namespace tallyglass
