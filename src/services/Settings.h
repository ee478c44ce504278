#pragma once

#include "platform/Ports.h"

#include <QString>

#include <cmath>

namespace tallyglass {

/// One setting: where the user defaults keep it, and what holds while they have nothing.
template<typename Value>
struct Setting
{
    const char *key;
    Value fallback;
};

namespace settings {

inline constexpr Setting<const char *> selectedWindow{"selectedWindow", "fiveHours"};
inline constexpr Setting<const char *> historyRange{"historyRange", "day"};
inline constexpr Setting<bool> alertsEnabled{"alertsEnabled", false};
inline constexpr Setting<bool> countsAnswersOnce{"countsAnswersOnce", false};
inline constexpr Setting<double> alertThreshold{"alertThreshold", 0.8}; // fraction of a window

} // namespace settings

inline QString stored(const UserDefaults &defaults, const Setting<const char *> &setting)
{
    const QVariant value = defaults.value(QString::fromLatin1(setting.key));
    return value.isValid() ? value.toString() : QString::fromLatin1(setting.fallback);
}

inline bool stored(const UserDefaults &defaults, const Setting<bool> &setting)
{
    const QVariant value = defaults.value(QString::fromLatin1(setting.key));
    return value.isValid() ? value.toBool() : setting.fallback;
}

/// A figure that is not above 0, or not finite, counts as none.
inline double stored(const UserDefaults &defaults, const Setting<double> &setting)
{
    const double value = defaults.value(QString::fromLatin1(setting.key)).toDouble();
    return value > 0 && std::isfinite(value) ? value : setting.fallback;
}

template<typename Value>
void store(UserDefaults &defaults, const Setting<Value> &setting, const Value &value)
{
    defaults.setValue(QString::fromLatin1(setting.key), value);
}

} // namespace tallyglass
