#pragma once

#include <QFile>
#include <QProcess>

namespace tallyglass::test {

/// A message bus of the test's own, which starts nothing by itself.
class PrivateBus
{
public:
    explicit PrivateBus(const QString &folder)
    {
        QFile config(folder + QStringLiteral("/bus.conf"));
        if (!config.open(QIODevice::WriteOnly))
            return;
        config.write("<busconfig><type>session</type><listen>unix:path=" + folder.toUtf8()
                     + "/bus</listen><policy context=\"default\"><allow send_destination=\"*\"/>"
                       "<allow receive_sender=\"*\"/><allow own=\"*\"/></policy></busconfig>");
        config.close();
        m_process.start(QStringLiteral("dbus-daemon"),
                        {QStringLiteral("--config-file=") + config.fileName(),
                         QStringLiteral("--nofork"), QStringLiteral("--print-address")});
        m_process.waitForReadyRead(); // its address: now it listens
    }
    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;
    ~PrivateBus()
    {
        m_process.kill();
        m_process.waitForFinished();
    }

private:
    QProcess m_process;
};

} // namespace tallyglass::test
