#include "app/CommandLine.h"
#include "app/DemoHome.h"
#include "app/Report.h"
#include "model/DisplayTexts.h"

#include <QDir>

#include <cstdio>

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

int run(const command::Report &report)
{
    const Instant now =
        std::chrono::floor<std::chrono::milliseconds>(std::chrono::system_clock::now());
    if (!report.inDemoHome)
        return runReport(report, Host{.homeFolder = QDir::homePath()}, now);
    const DemoHome demo(now);
    return runReport(report, Host{.homeFolder = demo.path()}, now);
}

} // namespace

int main(int argc, char *argv[])
{
    QStringList words;
    for (int i = 1; i < argc; ++i)
        words += QString::fromLocal8Bit(argv[i]);
    return std::visit([](const auto &command) { return run(command); }, parseCommandLine(words));
}
