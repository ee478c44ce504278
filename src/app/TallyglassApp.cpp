#include "app/TallyglassApp.h"

#include <QThreadPool>

namespace tallyglass {

TallyglassApp::TallyglassApp(Ports ports)
    : m_ports(std::move(ports))
    , m_api(m_ports.host, *m_ports.clock, *m_ports.http, m_ports.keychain.get())
    , m_updates(*m_ports.clock, *m_ports.http, m_ports.host)
    , m_model(m_ports, m_api, m_updates)
    , m_updater(m_ports.host, m_ports.updater.get())
{
    m_model.start();
}

/// Workers may be using the ports.
TallyglassApp::~TallyglassApp()
{
    QThreadPool::globalInstance()->waitForDone();
}

} // namespace tallyglass
