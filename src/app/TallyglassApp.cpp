#include "app/TallyglassApp.h"

namespace tallyglass {

using namespace std::chrono_literals;

namespace {

// For a file that is being written, say. Nobody waits longer for a program to end.
constexpr auto patienceWithWorkers = 1s;

} // namespace

TallyglassApp::TallyglassApp(Ports ports)
    : m_ports(std::move(ports))
    , m_workers(*m_ports.clock)
    , m_api(m_ports.host, *m_ports.clock, *m_ports.http, m_ports.keychain, m_workers)
    , m_updates(*m_ports.clock, *m_ports.http, m_ports.host, m_workers)
    , m_model(m_ports, m_api, m_updates, m_workers)
    , m_updater(m_ports.host, m_ports.updater.get())
{
}

/// The one order in which everything ends. While all that a waiting coroutine may touch is still
/// there, each thing that it can wait for lets it go; it then finds that the model has ended, and
/// returns. So none is left to go on when the members are destroyed, each before what it needs.
TallyglassApp::~TallyglassApp()
{
    m_model.end(); // Timers are called off, and nothing is begun any more.
    m_workers.letGo(); // Work under way goes on, but nobody waits for what it brings.
    m_ports.processes.reset(); // Tools are killed, with their children.
    m_ports.http.reset(); // Requests are broken off.
    m_workers.waitForAll(patienceWithWorkers);
}

} // namespace tallyglass
