#include "app/CommandLine.h"
#include "app/DemoHome.h"
#include "app/QuitSignals.h"
#include "app/Report.h"
#include "app/SingleInstance.h"
#include "app/TallyglassApp.h"
#include "model/DisplayTexts.h"

#include <QCoreApplication>
#include <QDir>

#include <cstdio>
#include <optional>

using namespace tallyglass;

namespace {

constexpr int misuseStatus = 2;

void printLine(FILE *stream, const QString &text)
{
    std::fprintf(stream, "%s\n", text.toUtf8().constData());
}

int run(const command::Help &)
{
    printLine(stdout, displayText("command.help"));
    return 0;
}

int run(const command::Version &)
{
    printLine(stdout, QStringLiteral("Tallyglass " TALLYGLASS_VERSION));
    return 0;
}

int run(const command::Misuse &misuse)
{
    printLine(stderr, QStringLiteral("tallyglass: ") + misuse.message);
    return misuseStatus;
}

Instant currentInstant()
{
    return std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
}

/// The home folder that a command works on: the user's, or a made-up one.
class Home
{
public:
    explicit Home(bool isDemo)
    {
        if (isDemo)
            m_demo.emplace(currentInstant());
    }

    QString path() const { return m_demo ? m_demo->path() : QDir::homePath(); }

private:
    std::optional<DemoHome> m_demo;
};

int run(const command::Start &start)
{
    const Home home(start.inDemoHome);
    SingleInstance instance(home.path());
    if (!instance.claim())
        return 0; // The first one was asked to show itself.

    const QuitSignals quitSignals;
    QObject::connect(&quitSignals, &QuitSignals::received, &QCoreApplication::quit);
    TallyglassApp application(makePorts(home.path()));
    return QCoreApplication::exec();
}

int run(const command::Report &report)
{
    const Home home(report.inDemoHome);
    return runReport(report, Host{.homeFolder = home.path()}, currentInstant());
}

} // namespace

int main(int argc, char *argv[])
{
    QStringList words;
    for (int i = 1; i < argc; ++i)
        words += QString::fromLocal8Bit(argv[i]);
    const Command command = parseCommandLine(words);

    // Only what runs on needs an event loop; a report is over before one would have started.
    std::optional<QCoreApplication> application;
    if (std::holds_alternative<command::Start>(command))
        application.emplace(argc, argv);
    return std::visit([](const auto &chosen) { return run(chosen); }, command);
}
