#include "app/CommandLine.h"
#include "app/Home.h"
#include "app/Language.h"
#include "app/Report.h"
#include "model/DisplayTexts.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QLocale>

#include <cstdio>
#include <unistd.h>

using namespace tallyglass;

namespace {

constexpr int misuseStatus = 2;

void printLine(FILE *stream, const QString &text)
{
    std::fprintf(stream, "%s\n", text.toUtf8().constData());
}

int run(const command::Help &)
{
    printLine(stdout, helpText());
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
    const Home home(report.inDemoHome);
    return runReport(report, Host{.homeFolder = home.path()}, currentInstant());
}

/// Becomes the application, a program of its own near this one: a report must not wait for the
/// libraries of windows to load. Returns only when that is missing.
int becomeApplication(char **argv)
{
    const QString program = QDir::cleanPath(QCoreApplication::applicationDirPath()
                                            + QStringLiteral("/" TALLYGLASS_APPLICATION));
    execv(QFile::encodeName(program).constData(), argv);
    printLine(stderr,
              QStringLiteral("tallyglass: ") + formatText("command.noProgram.format", {program}));
    return 1;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    chooseLanguage(QLocale::system().uiLanguages());
    const Command command = parseCommandLine(QCoreApplication::arguments().mid(1));
    return std::visit(
        [&]<typename Chosen>(const Chosen &chosen) {
            if constexpr (std::is_same_v<Chosen, command::Start>)
                return becomeApplication(argv);
            else
                return run(chosen);
        },
        command);
}
