#include "store/BudgetsFile.h"

#include "store/JsonFile.h"

#include <QJsonObject>

namespace tallyglass {

namespace {

QString budgetsPath(const StorageLocations &locations)
{
    return locations.applicationSupportFolder() + QStringLiteral("/budgets.json");
}

const auto budgetsKey = QStringLiteral("tokenBudgets");

} // namespace

UsageBudgets loadBudgets(const StorageLocations &locations)
{
    const auto document = readJsonFile(budgetsPath(locations));
    const QJsonValue stored =
        document ? document->object().value(budgetsKey) : QJsonValue(QJsonValue::Undefined);
    if (!stored.isObject())
        return defaultBudgets();

    UsageBudgets budgets;
    const QJsonObject figures = stored.toObject();
    for (auto figure = figures.begin(); figure != figures.end(); ++figure) {
        // Not a whole number: toInteger() gives back the default, whichever it is.
        if (figure->toInteger(0) != figure->toInteger(1))
            return defaultBudgets();
        budgets.tokenBudgets.emplace(figure.key(), figure->toInteger());
    }
    return budgets;
}

bool saveBudgets(const UsageBudgets &budgets, const StorageLocations &locations)
{
    QJsonObject figures;
    for (const auto &[key, tokens] : budgets.tokenBudgets)
        figures.insert(key, qint64{tokens});
    const QJsonDocument document(QJsonObject{{budgetsKey, figures}});
    return writeFileAtomically(budgetsPath(locations), document.toJson(QJsonDocument::Indented));
}

} // namespace tallyglass
