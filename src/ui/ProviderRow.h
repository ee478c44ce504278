#pragma once

#include "model/Instant.h"
#include "model/UsageSummary.h"

#include <QColor>
#include <QMetaType>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace tallyglass {

/// One provider in the selected window as the panel draws it: every text final, every share within
/// 0 to 1.
struct ProviderRow
{
    Q_GADGET
    QML_VALUE_TYPE(providerRow)
    Q_PROPERTY(QString provider MEMBER provider CONSTANT)
    Q_PROPERTY(QString name MEMBER name CONSTANT)
    Q_PROPERTY(QColor tint MEMBER tint CONSTANT)
    Q_PROPERTY(double usedShare MEMBER usedShare CONSTANT)
    Q_PROPERTY(QString usedText MEMBER usedText CONSTANT)
    Q_PROPERTY(double resetShare MEMBER resetShare CONSTANT)
    Q_PROPERTY(QString resetText MEMBER resetText CONSTANT)
    Q_PROPERTY(QString tokensText MEMBER tokensText CONSTANT)
    Q_PROPERTY(QString limitText MEMBER limitText CONSTANT)
    Q_PROPERTY(QString remainingText MEMBER remainingText CONSTANT)
    Q_PROPERTY(QString inputText MEMBER inputText CONSTANT)
    Q_PROPERTY(QString outputText MEMBER outputText CONSTANT)

public:
    QString provider; ///< its raw value, which names the logo
    QString name;
    QColor tint;
    double usedShare = 0;
    QString usedText; ///< "42%", "~42%", "--"
    double resetShare = 0; ///< the part of the limit's window that has passed
    QString resetText; ///< "2h", "--"
    QString tokensText;
    QString limitText; ///< "5h 42%", "5h あと2時間10分", "データなし"
    QString remainingText; ///< "残り 58%"; empty where no share is reported
    QString inputText; ///< "入力 1.2M"
    QString outputText;

    bool operator==(const ProviderRow &) const = default;
};

ProviderRow providerRow(const ProviderUsageSummary &summary, Instant now);

} // namespace tallyglass
