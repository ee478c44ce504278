#pragma once

#include "platform/UserDefaults.h"

#include <QSettings>

namespace tallyglass {

/// The user's settings in a file, one line each: "alertThreshold=0.8". Every change is written at
/// once; one that cannot be written lasts as long as the program runs.
class SettingsFile final : public UserDefaults
{
public:
    explicit SettingsFile(const QString &path);

    QVariant value(const QString &key) const override;
    void setValue(const QString &key, const QVariant &value) override;

private:
    QSettings m_settings;
};

} // namespace tallyglass
