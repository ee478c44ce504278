#pragma once

#include <QLocalServer>
#include <QObject>
#include <QString>
#include <QTemporaryDir>

#include <optional>

class QDeadlineTimer;

namespace tallyglass {

/// Sees to it that a user runs the program once for a home folder.
///
/// A lock among the program's own files tells who is first: the system lets go of it however its
/// holder ends, so there is no stale one to recover. In it stands where the first one listens for
/// the second one's wish to see it.
class SingleInstance : public QObject
{
    Q_OBJECT

public:
    explicit SingleInstance(const QString &homeFolder, QObject *parent = nullptr);
    ~SingleInstance() override;

    /// True: we are the first, or nothing can be found out. False: another one runs and was asked
    /// to show itself; that takes a second at most. To be called once.
    bool claim();
    /// After a claim that failed: whether the first one has answered, and so will show itself soon.
    bool isHeard() const;

Q_SIGNALS:
    /// A later start has asked the first one to show itself.
    void showRequested();

private:
    void listen();
    bool listenIn(const QString &folder);
    void answer(QLocalSocket &client);
    bool askToShow(const QDeadlineTimer &patience) const;

    QString m_folder; ///< of the lock, and of the socket if the system can reach it there
    int m_lock = -1; ///< file descriptor, held as long as we are the first
    bool m_isHeard = false;
    std::optional<QTemporaryDir> m_otherFolder; ///< of the socket, if not m_folder
    QLocalServer m_server;
};

} // namespace tallyglass
