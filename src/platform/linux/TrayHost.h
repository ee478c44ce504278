#pragma once

#include <QObject>

namespace tallyglass {

/// The part of the desktop that shows the icons of programs in the background.
class TrayHost : public QObject
{
    Q_OBJECT

public:
    explicit TrayHost(QObject *parent = nullptr);

    bool isThere() const;

Q_SIGNALS:
    void appeared();

private Q_SLOTS:
    void check();
};

} // namespace tallyglass
