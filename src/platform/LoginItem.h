#pragma once

#include <QString>

#include <optional>

namespace tallyglass {

/// Whether the system starts the program when the user logs in.
class LoginItem
{
public:
    virtual ~LoginItem();

    virtual bool isEnabled() const = 0;
    /// What the user still has to do, so that what they have chosen holds; mostly nothing.
    virtual std::optional<QString> pendingStep() const = 0;
    /// Gives the system's own text of what went wrong, nothing on success.
    virtual std::optional<QString> setEnabled(bool enabled) = 0;
};

} // namespace tallyglass
