#pragma once

#include "services/ClaudeUsageAPI.h"
#include "services/UsageModel.h"
#include "support/FakePorts.h"
#include "support/TemporaryHome.h"
#include "update/AppUpdateChecker.h"

namespace tallyglass::test {

/// The model on a machine of fakes, in an empty home folder or a given one.
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

    TemporaryHome home;
    FakePorts fake;
    ClaudeUsageAPI api{fake.ports.host, fake.clock, fake.http, &fake.keychain};
    AppUpdateChecker updates{fake.clock, fake.http, fake.ports.host};
    UsageModel model{fake.ports, api, updates};
};

} // namespace tallyglass::test
