#pragma once

#include "platform/LoginItem.h"

#include <QStringList>

namespace tallyglass {

/// The desktop entry "tallyglass.desktop" among those that the session starts. One that starts
/// another program, or that the user has switched off, is not ours: it counts as not enabled and
/// only goes when the user enables the program.
class AutostartEntry final : public LoginItem
{
public:
    struct Facts
    {
        QString configFolder;
        QString program; ///< the full path that the session is to start
        QStringList searchPath; ///< in which an entry may name a program without its folder
    };

    explicit AutostartEntry(Facts facts);

    bool isEnabled() const override;
    std::optional<QString> pendingStep() const override { return std::nullopt; }
    std::optional<QString> setEnabled(bool enabled) override;

private:
    QString path() const;
    bool startsProgram(const QString &command) const;

    Facts m_facts;
};

} // namespace tallyglass
