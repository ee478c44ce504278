#pragma once

#include "model/UsageProvider.h"
#include "model/UsageWindowKind.h"
#include "store/StorageLocations.h"

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace tallyglass {

/// The field in which one token budget is read and entered. What is entered is stored at once.
class BudgetField : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the settings")
    Q_PROPERTY(QString name READ name CONSTANT FINAL)
    Q_PROPERTY(QString text READ text NOTIFY textChanged FINAL)

public:
    BudgetField(StorageLocations locations, UsageProvider provider, UsageWindowKind window,
                QObject *parent = nullptr);

    /// For those who cannot see which row and column it is in: "Codex 5h".
    QString name() const;
    /// The budget in force, with the separators of the user's language.
    QString text() const { return m_text; }

    /// Stores what the user has written, a negative figure as 0. What is no whole number up to
    /// 999,999,999,999 is not taken. textChanged() follows in any case: the field shows what holds.
    Q_INVOKABLE void enter(const QString &written);
    /// Shows what is stored now.
    Q_INVOKABLE void reload();

Q_SIGNALS:
    void textChanged();

private:
    StorageLocations m_locations;
    UsageProvider m_provider;
    UsageWindowKind m_window;
    QString m_text;
};

} // namespace tallyglass
