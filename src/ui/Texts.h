#pragma once

#include <QObject>
#include <QString>
#include <QtQml/qqmlregistration.h>

namespace tallyglass {

/// The display texts that QML needs without a figure in them: Texts.text("common.settings").
class Texts : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    /// A key that the table does not have ends the program: it is misspelt in a QML file.
    Q_INVOKABLE QString text(const QString &key) const;
};

} // namespace tallyglass
