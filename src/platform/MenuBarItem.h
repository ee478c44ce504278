#pragma once

#include <QObject>
#include <QRect>

namespace tallyglass {

/// The program's icon in the menu bar or in the desktop's tray, with a menu of its own.
class MenuBarItem : public QObject
{
    Q_OBJECT

public:
    ~MenuBarItem() override;

    /// Whether the desktop shows it.
    virtual bool isShown() const = 0;
    /// Where it is on the screen. Some desktops do not tell: then where it was clicked last; empty
    /// before the first click.
    virtual QRect area() const = 0;
    virtual void setToolTip(const QString &text) = 0;

Q_SIGNALS:
    void appeared();
    void clicked();
    void openChosen();
    void refreshChosen();
    void settingsChosen();
    void quitChosen();
};

} // namespace tallyglass
