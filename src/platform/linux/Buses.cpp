#include "platform/linux/Buses.h"

#include <QFile>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <poll.h>
#include <string_view>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace tallyglass {

namespace {

constexpr int longestAnswer = 1000; // milliseconds
constexpr const char *sessionVariable = "DBUS_SESSION_BUS_ADDRESS";
constexpr const char *systemVariable = "DBUS_SYSTEM_BUS_ADDRESS";

QByteArray systemBusAddress()
{
    return qEnvironmentVariableIsSet(systemVariable) ? qgetenv(systemVariable)
                                                     : "unix:path=/run/dbus/system_bus_socket";
}

/// The name of the socket in an address such as "unix:path=/run/user/1000/bus,guid=…": of the first
/// alternative, with a null character in front of abstract ones. Empty where there is no socket.
QByteArray socketName(const QByteArray &address)
{
    const QByteArray first = address.split(';').first().split(',').first();
    for (const QByteArray &kind : {QByteArray("unix:path="), QByteArray("unix:abstract=")}) {
        if (first.startsWith(kind))
            return (kind.endsWith("abstract=") ? QByteArray(1, '\0') : QByteArray())
                + QByteArray::fromPercentEncoding(first.sliced(kind.size()));
    }
    return {};
}

} // namespace

QByteArray sessionBusAddress()
{
    if (!qEnvironmentVariableIsEmpty(sessionVariable))
        return qgetenv(sessionVariable);
    const QByteArray socket = qgetenv("XDG_RUNTIME_DIR") + "/bus";
    return QFile::exists(QFile::decodeName(socket)) ? "unix:path=" + socket : QByteArray();
}

bool isSilentBus(const QByteArray &address)
{
    const QByteArray name = socketName(address);
    sockaddr_un socketAddress{.sun_family = AF_UNIX, .sun_path = {}};
    if (name.isEmpty() || name.size() >= qsizetype{sizeof socketAddress.sun_path})
        return false;
    std::ranges::copy(name, socketAddress.sun_path);
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path)
                                               + static_cast<std::size_t>(name.size()));

    // The beginning of every conversation with a bus: how can one sign in?
    constexpr std::string_view question("\0AUTH\r\n", 7);
    const int connection = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    const bool isConnected =
        connect(connection, reinterpret_cast<const sockaddr *>(&socketAddress), length) == 0;
    bool isSilent = !isConnected && errno == EAGAIN; // so many wait already
    if (isConnected && send(connection, question.data(), question.size(), MSG_NOSIGNAL) > 0) {
        pollfd answer{.fd = connection, .events = POLLIN, .revents = 0};
        isSilent = poll(&answer, 1, longestAnswer) == 0;
    }
    close(connection);
    return isSilent;
}

void leaveOutSilentBuses()
{
    const QByteArray nowhere = "unix:path=/dev/null";
    if (isSilentBus(sessionBusAddress()))
        qputenv(sessionVariable, nowhere);
    if (isSilentBus(systemBusAddress()))
        qputenv(systemVariable, nowhere);
}

} // namespace tallyglass
