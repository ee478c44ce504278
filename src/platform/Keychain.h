#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace tallyglass {

/// The system's store of secrets.
class Keychain
{
public:
    virtual ~Keychain();

    /// The data of the generic password item of a service; nothing when there is none or it is
    /// refused. May wait for the user's consent: never called on the main thread.
    virtual std::optional<QByteArray> genericPassword(const QString &service) const = 0;
};

} // namespace tallyglass
