#pragma once

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QUrl>

#include <functional>
#include <memory>

namespace tallyglass::test {

/// What is done with a client whose request has come in whole.
using Script = std::function<void(QTcpSocket &client)>;

/// Answers with these bytes, whether they are HTTP or not, and closes.
inline Script saying(const QByteArray &answer)
{
    return [answer](QTcpSocket &client) {
        client.write(answer);
        client.disconnectFromHost();
    };
}

/// Answers with these bytes and says nothing more.
inline Script sayingAndHolding(const QByteArray &answer)
{
    return [answer](QTcpSocket &client) { client.write(answer); };
}

/// Sends this over and over, as fast as it is taken.
inline Script flooding(const QByteArray &beginning, const QByteArray &piece)
{
    return [beginning, piece](QTcpSocket &client) {
        QObject::connect(&client, &QTcpSocket::bytesWritten, &client, [&client, piece] {
            if (client.bytesToWrite() == 0)
                client.write(piece);
        });
        client.write(beginning);
    };
}

/// A web server of this machine that does what a test tells it, and remembers what it was asked.
class LoopbackServer
{
public:
    explicit LoopbackServer(Script script,
                            std::unique_ptr<QTcpServer> server = std::make_unique<QTcpServer>())
        : m_script(std::move(script))
        , m_server(std::move(server))
    {
        QObject::connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, m_server.get(),
                         [this] { receive(*m_server->nextPendingConnection()); });
        m_server->listen(QHostAddress::LocalHost);
    }

    QUrl url(const QString &scheme = QStringLiteral("http")) const
    {
        return {QStringLiteral("%1://127.0.0.1:%2/").arg(scheme).arg(m_server->serverPort())};
    }

    QList<QByteArray> requests; ///< from the first line to the empty one

private:
    void receive(QTcpSocket &client)
    {
        QObject::connect(&client, &QTcpSocket::readyRead, &client,
                         [this, &client, request = QByteArray()]() mutable {
                             request += client.readAll();
                             if (!request.endsWith("\r\n\r\n"))
                                 return;
                             requests += std::exchange(request, {});
                             m_script(client);
                         });
    }

    Script m_script;
    std::unique_ptr<QTcpServer> m_server; ///< owns its clients
};

} // namespace tallyglass::test
