#include "app/CommandLine.h"
#include "app/Home.h"
#include "app/Language.h"
#include "app/QuitSignals.h"
#include "app/SingleInstance.h"
#include "app/TallyglassApp.h"
#include "platform/Desktop.h"
#include "platform/ProcessMemory.h"
#include "ui/MenuBarExtra.h"

#include <QApplication>
#include <QLocale>
#include <QQuickWindow>
#include <QTimer>
#include <QtQml/qqmlextensionplugin.h>

#include <cstdlib>

Q_IMPORT_QML_PLUGIN(TallyglassPlugin)

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

// A tray takes an icon in after a moment; before, nobody knows where it is.
constexpr auto untilIconIsPlaced = 300ms;

bool isAnySet(std::initializer_list<const char *> variables)
{
    return std::ranges::any_of(variables, qEnvironmentVariableIsSet);
}

/// Small windows that are seldom drawn: in software they take half of the memory and of the time
/// to the first picture that OpenGL takes.
void chooseRenderer()
{
    if (!isAnySet({"QT_QUICK_BACKEND", "QSG_RHI_BACKEND", "QSG_RHI"}))
        QQuickWindow::setGraphicsApi(QSGRendererInterface::Software);
}

int start(const command::Start &start)
{
    const QuitSignals quitSignals;
    QObject::connect(&quitSignals, &QuitSignals::received, &QCoreApplication::quit);
    QObject::connect(qApp, &QCoreApplication::aboutToQuit, &QuitSignals::limitEnding);
    const Home home(start.inDemoHome);
    SingleInstance instance(home.path());
    if (!instance.claim())
        return 0; // The first one was asked to show itself.

    Ports ports = makePorts(home.path());
    ports.host.movedHomes = home.movedHomes();
    if (start.inDemoHome) {
        ports.host.claudeApi.clear(); // nobody is asked about made-up limits
        ports.host.feedUrl.clear();
        ports.keychain.reset(); // nor for the user's token
    }
    TallyglassApp application(std::move(ports));
    keepMemoryPrivate(); // before there is a token in it
    application.model().start();
    MenuBarExtra extra(application.model(), application.updater(), application.ports());
    QObject::connect(&instance, &SingleInstance::showRequested, &extra, &MenuBarExtra::openPanel);
    if (start.inDemoHome)
        QTimer::singleShot(untilIconIsPlaced, &extra, &MenuBarExtra::openPanel);
    else if (QGuiApplication::platformName() != QLatin1String("offscreen"))
        extra.openWithoutTray();
    return QCoreApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    prepareForWindows();
    chooseRenderer();
    QApplication application(argc, argv);
    chooseLanguage(QLocale::system().uiLanguages());
    QCoreApplication::setApplicationName(QStringLiteral("Tallyglass"));
    QGuiApplication::setDesktopFileName(QStringLiteral("tallyglass"));
    QGuiApplication::setQuitOnLastWindowClosed(false); // it lives in the tray

    const Command command = parseCommandLine(QCoreApplication::arguments().mid(1));
    // All that is ours has ended in order by then. Threads that hang, in a disk or a bus that does
    // not answer, are not waited for.
    if (const auto *chosen = std::get_if<command::Start>(&command))
        std::_Exit(start(*chosen));
    return 2; // Commands are read by the program that starts this one.
}
