#pragma once

#include "model/UsageSummary.h"

#include <QList>
#include <QMetaType>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace tallyglass {

/// One of the models that were used most.
struct ModelRow
{
    Q_GADGET
    QML_VALUE_TYPE(modelRow)
    Q_PROPERTY(QString provider MEMBER provider CONSTANT)
    Q_PROPERTY(QString name MEMBER name CONSTANT)
    Q_PROPERTY(QString tokensText MEMBER tokensText CONSTANT)

public:
    QString provider; ///< its raw value, which names the logo
    QString name;
    QString tokensText;

    bool operator==(const ModelRow &) const = default;
};

/// The five models of a window with the most tokens, largest first, equal ones by name. A model
/// that two tools have used has two rows.
QList<ModelRow> topModels(const WindowUsageSummary &window);

} // namespace tallyglass
