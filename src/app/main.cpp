#include "app/Audit.h"
#include "app/CommandLine.h"
#include "app/Explain.h"
#include "app/Home.h"
#include "app/Language.h"
#include "app/Output.h"
#include "app/Report.h"
#include "app/Status.h"
#include "model/DisplayTexts.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLocale>

#include <clocale>
#include <langinfo.h>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

using namespace tallyglass;

namespace {

constexpr int misuseStatus = 2;

/// Qt tells at length of a locale that is not UTF-8, as in a bare container, before it takes this
/// one.
void preferUtf8()
{
    std::setlocale(LC_CTYPE, "");
    if (nl_langinfo(CODESET) != std::string_view("UTF-8"))
        qputenv(qEnvironmentVariableIsEmpty("LC_ALL") ? "LC_CTYPE" : "LC_ALL", "C.UTF-8");
}

int run(const command::Help &)
{
    return print(helpText().toUtf8() + '\n');
}

int run(const command::Version &)
{
    return print("Tallyglass " TALLYGLASS_VERSION "\n");
}

int run(const command::Misuse &misuse)
{
    complain(misuse.message);
    return misuseStatus;
}

int run(const command::Report &report)
{
    return runReport(report, currentInstant());
}

int run(const command::Audit &audit)
{
    return runAudit(audit, currentInstant());
}

int run(const command::Explain &explain)
{
    return runExplain(explain, currentInstant());
}

int run(const command::Status &status)
{
    return runStatus(status, Host{.homeFolder = QDir::homePath()}, currentInstant());
}

/// Becomes another program, whose path counts from this one's folder. Returns only when that fails.
int become(const char *path, char **arguments)
{
    const QString program = QCoreApplication::applicationDirPath() + u'/' + QString::fromUtf8(path);
    execv(QFile::encodeName(QFileInfo(program).canonicalFilePath()).constData(), arguments);
    complain(formatText("command.noProgram.format", {QDir::cleanPath(program)}));
    return 1;
}

/// Hands on all that stands behind "bridge".
int becomeBridge(int argc, char **argv)
{
    std::vector<char *> arguments(argv + 1, argv + argc);
    std::string help = "--help";
    if (arguments.size() == 1) // which would be the status line itself
        arguments.push_back(help.data());
    arguments.push_back(nullptr);
    return become(TALLYGLASS_BRIDGE, arguments.data());
}

} // namespace

int main(int argc, char **argv)
{
    reserveStandardStreams();
    preferUtf8();
    const QCoreApplication application(argc, argv);
    chooseLanguage(QLocale::system().uiLanguages());
    const Command command = parseCommandLine(QCoreApplication::arguments().mid(1));
    return std::visit(
        [&]<typename Chosen>(const Chosen &chosen) {
            // A program of its own: a report must not wait for the libraries of windows to load.
            if constexpr (std::is_same_v<Chosen, command::Start>)
                return become(TALLYGLASS_APPLICATION, argv);
            else if constexpr (std::is_same_v<Chosen, command::Bridge>)
                return becomeBridge(argc, argv);
            else
                return run(chosen);
        },
        command);
}
