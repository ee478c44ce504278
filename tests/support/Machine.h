#pragma once

#include "app/TallyglassApp.h"
#include "support/FakePorts.h"
#include "support/TemporaryHome.h"

namespace tallyglass::test {

/// The application on a machine of fakes, in an empty home folder or a given one. Nothing has begun
/// yet.
struct Machine
{
    explicit Machine(const QString &homeFolder = {})
        : fake(homeFolder.isEmpty() ? home.path() : homeFolder)
    {
    }

    void writeExecutable(const QString &relative) const
    {
        QFile::setPermissions(home.write(relative), QFile::ReadOwner | QFile::ExeOwner);
    }

    void writeToken(std::chrono::seconds expiresIn) const
    {
        const auto expiry = (fake.clock.now() + expiresIn).time_since_epoch().count();
        home.write(QStringLiteral(".claude/.credentials.json"),
                   R"({"accessToken":"token","expiresAt":)" + QByteArray::number(qint64{expiry})
                       + '}');
    }

    TemporaryHome home;
    FakePorts fake;
    std::unique_ptr<TallyglassApp> app = std::make_unique<TallyglassApp>(std::move(fake.ports));
    Ports &ports = app->ports();
    UsageModel &model = app->model();
};

} // namespace tallyglass::test
