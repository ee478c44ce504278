#pragma once

#include "platform/Ports.h"
#include "support/FakeClock.h"
#include "support/FakeHttp.h"

#include <QHash>
#include <QSemaphore>
#include <QVariant>

#include <atomic>
#include <vector>

namespace tallyglass::test {

/// Answers at once, or as slowly as a user to whom a question is put.
class FakeKeychain final : public Keychain
{
public:
    std::optional<QByteArray> genericPassword(const QString &service) const override
    {
        ++questions;
        if (isSlow)
            m_answers.acquire();
        const auto item = items.find(service);
        return item != items.end() ? std::optional{*item} : std::nullopt;
    }
    void answer() const { m_answers.release(); }

    QHash<QString, QByteArray> items;
    bool isSlow = false;
    mutable std::atomic<int> questions = 0;

private:
    mutable QSemaphore m_answers;
};

class FakeLoginItem final : public LoginItem
{
public:
    bool isEnabled() const override { return enabled; }
    std::optional<QString> pendingStep() const override { return std::nullopt; }
    std::optional<QString> setEnabled(bool value) override
    {
        if (!refusal)
            enabled = value;
        return refusal;
    }

    bool enabled = false;
    std::optional<QString> refusal;
};

class FakeNotifier final : public Notifier
{
public:
    void requestPermission() override { ++permissionRequests; }
    void post(const Notification &notification) override { posted.push_back(notification); }

    int permissionRequests = 0;
    std::vector<Notification> posted;
};

/// Runs nothing, and remembers what it was to run.
class FakeProcessRunner final : public ProcessRunner
{
public:
    QCoro::Task<bool> run(ProcessJob job) override
    {
        jobs.push_back(job);
        co_await held.pass(isSlow);
        co_return true;
    }

    bool isSlow = false; ///< ends nothing before the end
    std::vector<ProcessJob> jobs;
    Held held; ///< last, so that the rest is still there when it lets go
};

class FakeUserDefaults final : public UserDefaults
{
public:
    QVariant value(const QString &key) const override { return values.value(key); }
    void setValue(const QString &key, const QVariant &value) override { values.insert(key, value); }

    QHash<QString, QVariant> values;
};

class FakeWidgetCentre final : public WidgetCentre
{
public:
    void reloadAllTimelines() override { ++reloads; }

    int reloads = 0;
};

class FakeSleepWatch final : public SleepWatch
{
};

/// Ready until it is asked.
class FakeUpdaterEngine final : public UpdaterEngine
{
public:
    void start() override { ++starts; }
    bool canCheckForUpdates() const override { return canCheck; }
    void checkForUpdates() override
    {
        ++checks;
        setCanCheck(false);
    }
    void setCanCheck(bool value)
    {
        canCheck = value;
        Q_EMIT canCheckForUpdatesChanged();
    }

    bool canCheck = true;
    int starts = 0;
    int checks = 0;
};

/// A whole machine of fakes. The references stay valid as long as the ports live, wherever they
/// are moved.
struct FakePorts
{
    explicit FakePorts(const QString &home)
        : clock(*new FakeClock)
        , http(*new FakeHttp)
        , keychain(*new FakeKeychain)
        , loginItem(*new FakeLoginItem)
        , notifier(*new FakeNotifier)
        , processes(*new FakeProcessRunner)
        , sleepWatch(*new FakeSleepWatch)
        , defaults(*new FakeUserDefaults)
        , widgets(*new FakeWidgetCentre)
    {
        ports.host = {.homeFolder = home,
                      .temporaryFolder = home,
                      .shortVersion = QStringLiteral("1.0"),
                      .buildVersion = QStringLiteral("10"),
                      .claudeApi = QStringLiteral("https://api.example")};
        ports.clock.reset(&clock);
        ports.http.reset(&http);
        ports.keychain.reset(&keychain);
        ports.loginItem.reset(&loginItem);
        ports.notifier.reset(&notifier);
        ports.processes.reset(&processes);
        ports.sleepWatch.reset(&sleepWatch);
        ports.defaults.reset(&defaults);
        ports.widgets.reset(&widgets);
    }

    Ports ports;
    FakeClock &clock;
    FakeHttp &http;
    FakeKeychain &keychain;
    FakeLoginItem &loginItem;
    FakeNotifier &notifier;
    FakeProcessRunner &processes;
    FakeSleepWatch &sleepWatch;
    FakeUserDefaults &defaults;
    FakeWidgetCentre &widgets;
};

} // namespace tallyglass::test
