#pragma once

#include <QColor>
#include <QIcon>
#include <QImage>
#include <QObject>
#include <QRect>

#include <memory>

class QWindow;

/// What windows ask of the desktop. Every system has one set of these, which is linked rather than
/// handed in: no test needs another.
namespace tallyglass {

/// Chooses, by the environment, how the toolkit is to behave. To be called before its application
/// object is made.
void prepareForWindows();

/// The icon in the forms that menu bars and trays want.
struct MenuBarIcon
{
    QString symbol; ///< the name that systems with symbols of their own know it by
    QIcon colored; ///< stands out on any background
    QImage mask; ///< black on nothing, at two pixels a point: the system gives it its colour
};

/// The program's icon in the menu bar or in the desktop's tray, with a menu of its own.
class MenuBarItem : public QObject
{
    Q_OBJECT

public:
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

/// The item appears by itself as soon as the desktop has a place for it.
std::unique_ptr<MenuBarItem> makeMenuBarItem(const MenuBarIcon &icon);

/// How round the corners of a panel below the menu bar are, in pixels.
int dropDownRadius();

/// Makes a window that is about to be shown a panel below the menu bar: one that task bars and
/// switchers leave out, and that goes when the user clicks elsewhere than on \a icon.
void becomeDropDown(QWindow &window, const QRect &icon);

/// Brings a window that is shown to the front, where it gets the keys.
void bringToFront(QWindow &window);

/// The system's own drawing of a symbol in the middle of a picture of \a size pixels; null where
/// the system has none of that name.
QImage systemSymbol(const QString &name, QSize size, const QColor &color);

} // namespace tallyglass
