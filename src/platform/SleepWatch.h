#pragma once

#include <QObject>

namespace tallyglass {

/// Notices when the machine has been asleep.
class SleepWatch : public QObject
{
    Q_OBJECT

public:
    ~SleepWatch() override;

Q_SIGNALS:
    void woke();
};

} // namespace tallyglass
