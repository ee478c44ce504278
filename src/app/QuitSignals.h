#pragma once

#include <QObject>

namespace tallyglass {

/// Turns the signals by which a session or a terminal ends a program (TERM, INT, HUP) into an
/// orderly quit, so that child processes go with it. A HUP or INT that we were started to ignore,
/// as by nohup, stays ignored. One per process.
///
/// From the first of them on, or from limitEnding(), the program has a second and a half to end,
/// even where its main thread hangs. Then it ends as it is: nothing is written at quit.
class QuitSignals : public QObject
{
    Q_OBJECT

public:
    explicit QuitSignals(QObject *parent = nullptr);

    static void limitEnding();

Q_SIGNALS:
    void received();
};

} // namespace tallyglass
