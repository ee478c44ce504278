// Prints what a refresh of the application costs its main thread, on the home folder named by the
// first argument: how long the refresh took, and the longest time without a turn of the event loop.

#include "app/TallyglassApp.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <cstdio>

using namespace tallyglass;
using namespace std::chrono_literals;

namespace {

using WallClock = std::chrono::steady_clock;

double milliseconds(WallClock::duration duration)
{
    return std::chrono::duration<double, std::milli>(duration).count();
}

} // namespace

int main(int argc, char *argv[])
{
    QCoreApplication application(argc, argv);
    if (argc != 2) {
        std::fprintf(stderr, "usage: refresh HOME\n");
        return 2;
    }

    const auto start = WallClock::now();
    TallyglassApp tallyglass(makePorts(QString::fromLocal8Bit(argv[1])));
    tallyglass.model().start();
    const auto constructed = WallClock::now();

    auto longest = WallClock::duration::zero();
    auto lastTurn = constructed;
    QTimer turns;
    turns.setTimerType(Qt::PreciseTimer);
    QObject::connect(&turns, &QTimer::timeout, &application, [&] {
        const auto now = WallClock::now();
        longest = std::max(longest, now - lastTurn - 1ms);
        lastTurn = now;
    });
    turns.start(1ms);

    bool hasBegun = false;
    QObject::connect(&tallyglass.model(), &UsageModel::changed, &application, [&] {
        hasBegun = hasBegun || tallyglass.model().isRefreshing();
        if (hasBegun && !tallyglass.model().isRefreshing())
            QCoreApplication::quit();
    });
    const int status = QCoreApplication::exec();
    std::printf("construction %.1f ms, refresh %.0f ms, longest step of the main thread %.1f ms\n",
                milliseconds(constructed - start), milliseconds(WallClock::now() - constructed),
                milliseconds(longest));
    return status;
}
