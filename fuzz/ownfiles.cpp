// Of our own files, what can be read can be shown, and what is written reads back.

#include "Fuzz.h"
#include "model/UsageJson.h"
#include "store/BudgetsFile.h"
#include "store/SnapshotFile.h"
#include "store/UsageHistory.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QTimeZone>

#include <array>

using namespace tallyglass;
using fuzz::require;

namespace {

const QString folder = QStringLiteral("Library/Application Support/Tallyglass/");

void checkSnapshot(const QByteArray &content, const StorageLocations &locations)
{
    fuzz::write(folder + QStringLiteral("usage_snapshot.json"), content);
    const auto snapshot = readSnapshot(locations);
    if (!snapshot)
        return;
    for (const WindowUsageSummary &window : snapshot->summaries) {
        for (const ProviderUsageSummary &provider : window.activeProviders())
            require(!provider.percentText().isEmpty(), "a share has a text");
    }
    writeSnapshot(*snapshot, locations);
    const auto readBack = readSnapshot(locations);
    require(readBack && encodeSnapshot(*readBack) == encodeSnapshot(*snapshot),
            "a snapshot reads back");
    recordHistory(*snapshot, snapshot->generatedAt, QTimeZone::utc(), locations);
}

void checkHistory(const QByteArray &content, const StorageLocations &locations)
{
    fuzz::write(folder + QStringLiteral("usage_history.json"), content);
    const auto history = loadHistory(locations);
    fuzz::write(folder + QStringLiteral("usage_history.json"),
                QJsonDocument(toJson(history)).toJson());
    require(toJson(loadHistory(locations)) == toJson(history), "a history reads back");
}

void checkBudgets(const QByteArray &content, const StorageLocations &locations)
{
    fuzz::write(folder + QStringLiteral("budgets.json"), content);
    const UsageBudgets budgets = loadBudgets(locations);
    require(saveBudgets(budgets, locations), "budgets are written");
    require(loadBudgets(locations) == budgets, "budgets read back");
}

} // namespace

/// The first byte says which of the files it is.
extern "C" int LLVMFuzzerTestOneInput(const char *data, std::size_t size)
{
    if (size == 0)
        return 0;
    const StorageLocations locations(Host{.homeFolder = fuzz::home()});
    constexpr std::array checks{checkSnapshot, checkHistory, checkBudgets};
    checks[static_cast<unsigned char>(data[0]) % checks.size()](
        QByteArray(data + 1, static_cast<qsizetype>(size) - 1), locations);
    return 0;
}
