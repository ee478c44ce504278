#pragma once

#include "ui/BudgetField.h"

#include <QMetaType>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace tallyglass {

/// One tool as the settings show it: every text final, empty where there is nothing to say.
struct CLIStatusRow
{
    Q_GADGET
    QML_VALUE_TYPE(cliStatusRow)
    Q_PROPERTY(QString name MEMBER name CONSTANT)
    Q_PROPERTY(QString executableName MEMBER executableName CONSTANT)
    Q_PROPERTY(bool isDetected MEMBER isDetected CONSTANT)
    Q_PROPERTY(QString stateText MEMBER stateText CONSTANT)
    Q_PROPERTY(QString detectedPath MEMBER detectedPath CONSTANT)
    Q_PROPERTY(QString installHint MEMBER installHint CONSTANT)
    Q_PROPERTY(QString dataText MEMBER dataText CONSTANT)
    Q_PROPERTY(QString integrationHint MEMBER integrationHint CONSTANT)

public:
    QString name;
    QString executableName;
    bool isDetected = false;
    QString stateText;
    QString detectedPath;
    QString installHint; ///< only while the tool is not detected
    QString dataText; ///< where the tool keeps its data
    QString integrationHint;

    bool operator==(const CLIStatusRow &) const = default;
};

/// The budgets of one provider.
struct BudgetLine
{
    Q_GADGET
    QML_VALUE_TYPE(budgetLine)
    Q_PROPERTY(QString name MEMBER name CONSTANT)
    Q_PROPERTY(tallyglass::BudgetField *fiveHours MEMBER fiveHours CONSTANT)
    Q_PROPERTY(tallyglass::BudgetField *week MEMBER week CONSTANT)

public:
    QString name;
    BudgetField *fiveHours = nullptr; ///< the settings' own
    BudgetField *week = nullptr;
};

} // namespace tallyglass
