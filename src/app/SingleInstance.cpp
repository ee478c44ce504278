#include "app/SingleInstance.h"

#include <QCryptographicHash>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocalSocket>
#include <QThread>

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

/// Whether nobody else can put anything into a folder.
bool isPrivate(const QString &folder)
{
    struct stat status{};
    return QDir::isAbsolutePath(folder)
        && lstat(QFile::encodeName(folder).constData(), &status) == 0 && S_ISDIR(status.st_mode)
        && status.st_uid == geteuid() && (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

/// A folder of this user alone that a restart of the machine empties; empty when there is none.
QString runtimeFolder()
{
    // A program run for another user may inherit the variable, hence the look at the owner.
    QString given = qEnvironmentVariable("XDG_RUNTIME_DIR");
    if (isPrivate(given))
        return given;
    QString made = QDir::tempPath() + QStringLiteral("/tallyglass-%1").arg(geteuid());
    mkdir(QFile::encodeName(made).constData(), S_IRWXU);
    return isPrivate(made) ? made : QString();
}

/// Short, for the path of a socket may have no more than about a hundred characters.
QString keyOf(const QString &homeFolder)
{
    const QString canonical = QFileInfo(homeFolder).canonicalFilePath();
    const QByteArray path = (canonical.isEmpty() ? homeFolder : canonical).toUtf8();
    return QString::fromLatin1(
        QCryptographicHash::hash(path, QCryptographicHash::Sha256).toHex().first(16));
}

} // namespace

SingleInstance::SingleInstance(const QString &homeFolder, QObject *parent)
    : QObject(parent)
{
    const QString folder = runtimeFolder();
    if (!folder.isEmpty())
        m_path = folder + QStringLiteral("/tallyglass-") + keyOf(homeFolder);
}

SingleInstance::~SingleInstance()
{
    m_server.close();
    if (m_lock >= 0)
        close(m_lock);
}

bool SingleInstance::claim()
{
    const QByteArray lockPath = QFile::encodeName(m_path + QStringLiteral(".lock"));
    if (!m_path.isEmpty())
        m_lock = open(lockPath.constData(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW,
                      S_IRUSR | S_IWUSR);
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
    const QString path = m_path + QStringLiteral(".socket");
    QLocalServer::removeServer(path); // of one that crashed; the lock is ours, so nobody listens
    connect(&m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket *client = m_server.nextPendingConnection()) {
            connect(client, &QLocalSocket::disconnected, client, &QObject::deleteLater);
            connect(client, &QLocalSocket::readyRead, this, [this, client] { answer(*client); });
            answer(*client);
        }
    });
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    m_server.listen(path);
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
    QLocalSocket first;
    first.connectToServer(m_path + QStringLiteral(".socket"));
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
