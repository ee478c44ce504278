#include "app/SingleInstance.h"

#include "platform/Files.h"
#include "platform/Host.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QLocalSocket>
#include <QThread>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tallyglass {

using namespace std::chrono_literals;

namespace {

constexpr auto longestClaim = 1s;
constexpr unsigned long pauseBetweenTries = 10; // milliseconds

const QByteArray wish = "show\n";
const QByteArray answerToWish = "heard\n";

// The path of a socket may have fewer than 104 bytes on one of the systems.
constexpr qsizetype longestSocketPath = 103;

} // namespace

SingleInstance::SingleInstance(const QString &homeFolder, QObject *parent)
    : QObject(parent)
    , m_folder(homeFolder + u'/' + QLatin1String(ownFolder))
{
}

SingleInstance::~SingleInstance()
{
    m_server.close();
    if (m_lock >= 0)
        close(m_lock);
}

bool SingleInstance::claim()
{
    const QByteArray lockPath = QFile::encodeName(m_folder + QStringLiteral("/instance.lock"));
    if (makePrivateFolder(m_folder)) {
        m_lock = open(lockPath.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK,
                      S_IRUSR | S_IWUSR);
    }
    if (m_lock < 0)
        return true;

    // Tried again, since the first one may be about to listen, or about to end.
    QDeadlineTimer patience(longestClaim);
    while (flock(m_lock, LOCK_EX | LOCK_NB) != 0) {
        if (errno != EWOULDBLOCK)
            return true;
        m_isHeard = askToShow(patience);
        if (m_isHeard || patience.hasExpired())
            return false;
        QThread::msleep(pauseBetweenTries);
    }
    listen();
    return true;
}

bool SingleInstance::isHeard() const
{
    return m_isHeard;
}

void SingleInstance::listen()
{
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *client = m_server.nextPendingConnection()) {
            connect(client, &QLocalSocket::disconnected, client, &QObject::deleteLater);
            connect(client, &QLocalSocket::readyRead, this, [this, client] { answer(*client); });
            answer(*client);
        }
    });
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    if (listenIn(m_folder))
        return;
    m_otherFolder.emplace(QDir::tempPath() + QStringLiteral("/tallyglass-XXXXXX"));
    if (m_otherFolder->isValid())
        listenIn(m_otherFolder->path());
}

/// False where the path is too long for a socket, or the disk takes none.
bool SingleInstance::listenIn(const QString &folder)
{
    const QString path = folder + QStringLiteral("/instance.socket");
    const QByteArray encoded = QFile::encodeName(path);
    if (encoded.size() > longestSocketPath)
        return false;
    QLocalServer::removeServer(path); // of one that crashed; the lock is ours, so nobody listens
    const auto size = static_cast<std::size_t>(encoded.size());
    return m_server.listen(path) && ftruncate(m_lock, 0) == 0
        && pwrite(m_lock, encoded.constData(), size, 0) == encoded.size();
}

void SingleInstance::answer(QLocalSocket &client)
{
    if (client.bytesAvailable() < wish.size())
        return;
    const bool isUnderstood = client.read(wish.size()) == wish;
    if (isUnderstood)
        client.write(answerToWish);
    client.disconnectFromServer(); // sends the answer first
    if (isUnderstood)
        Q_EMIT showRequested();
}

bool SingleInstance::askToShow(const QDeadlineTimer &patience) const
{
    const auto timeLeft = [&patience] { return static_cast<int>(patience.remainingTime()); };
    QByteArray path(longestSocketPath, '\0');
    const auto size = static_cast<std::size_t>(path.size());
    path.truncate(std::max(pread(m_lock, path.data(), size, 0), ssize_t{0}));
    QLocalSocket first;
    first.connectToServer(QFile::decodeName(path));
    if (!first.waitForConnected(timeLeft()))
        return false;
    first.write(wish);
    while (first.bytesAvailable() < answerToWish.size()) {
        if (!first.waitForReadyRead(timeLeft()))
            return false;
    }
    return first.readAll() == answerToWish;
}

} // namespace tallyglass
