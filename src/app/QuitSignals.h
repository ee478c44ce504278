#pragma once

#include <QObject>

namespace tallyglass {

/// Turns the signals by which a session or a terminal ends a program (TERM, INT, HUP) into an
/// orderly quit, so that child processes go with it. One per process.
class QuitSignals : public QObject
{
    Q_OBJECT

public:
    explicit QuitSignals(QObject *parent = nullptr);

Q_SIGNALS:
    void received();
};

} // namespace tallyglass
