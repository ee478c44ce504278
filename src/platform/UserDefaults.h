#pragma once

#include <QString>
#include <QVariant>

namespace tallyglass {

/// The user's settings in the platform's store, by dotted keys.
class UserDefaults
{
public:
    virtual ~UserDefaults();

    /// Invalid when nothing is stored. Stores that keep text give text: convert by QVariant.
    virtual QVariant value(const QString &key) const = 0;
    virtual void setValue(const QString &key, const QVariant &value) = 0;
};

} // namespace tallyglass
