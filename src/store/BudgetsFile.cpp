#include "store/BudgetsFile.h"

#include "platform/Files.h"
#include "store/JsonFile.h"

#include <QJsonObject>

namespace tallyglass {

namespace {

QString budgetsPath(const StorageLocations &locations)
{
    return locations.applicationSupportFolder() + QStringLiteral("/budgets.json");
}

const auto budgetsKey = QStringLiteral("tokenBudgets");

/// Nothing when the file holds anything else.
std::optional<UsageBudgets> budgetsIn(const OwnFile &file)
{
    const QJsonValue stored = file.document.object().value(budgetsKey);
    if (!stored.isObject())
        return std::nullopt;
    UsageBudgets budgets;
    const QJsonObject figures = stored.toObject();
    for (auto figure = figures.begin(); figure != figures.end(); ++figure) {
        // Not a whole number: toInteger() gives back the default, whichever it is.
        if (figure->toInteger(0) != figure->toInteger(1))
            return std::nullopt;
        budgets.tokenBudgets.emplace(figure.key(), figure->toInteger());
    }
    return budgets;
}

/// Makes room for new budgets. False when those that are there must stay.
bool setAsideUnlessOurs(const QString &path)
{
    const OwnFile file = readOwnFile(path);
    if (file.state == OwnFileState::Missing || budgetsIn(file))
        return true;
    return file.state != OwnFileState::Unreadable
        && moveFile(path, path + QStringLiteral(".malformed"));
}

} // namespace

UsageBudgets loadBudgets(const StorageLocations &locations)
{
    return budgetsIn(readOwnFile(budgetsPath(locations))).value_or(defaultBudgets());
}

bool saveBudgets(const UsageBudgets &budgets, const StorageLocations &locations)
{
    QJsonObject figures;
    for (const auto &[key, tokens] : budgets.tokenBudgets)
        figures.insert(key, qint64{tokens});
    const QJsonDocument document(QJsonObject{{budgetsKey, figures}});
    const QString path = budgetsPath(locations);
    return setAsideUnlessOurs(path)
        && writeFileAtomically(path, document.toJson(QJsonDocument::Indented));
}

} // namespace tallyglass
