#pragma once

#include <QColor>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

namespace tallyglass {

/// A provider's mark in one colour.
class ProviderLogoView : public QQuickPaintedItem
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString provider MEMBER m_provider NOTIFY changed FINAL) ///< its raw value
    /// The provider's own colour unless it is set.
    Q_PROPERTY(QColor tint MEMBER m_tint NOTIFY changed FINAL)

public:
    explicit ProviderLogoView(QQuickItem *parent = nullptr);

    void paint(QPainter *painter) override;

Q_SIGNALS:
    void changed();

private:
    QString m_provider;
    QColor m_tint;
};

} // namespace tallyglass
