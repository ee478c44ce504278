#pragma once

#include "platform/MenuBarItem.h"

#include <QColor>
#include <QIcon>
#include <QImage>

#include <memory>

class QWindow;

/// What windows ask of the desktop. Every system has one set of these, which is linked rather than
/// handed in: no test needs another.
namespace tallyglass {

/// Whether there is a screen that windows can be shown on.
bool hasDisplay();

/// The icon in the forms that menu bars and trays want.
struct MenuBarIcon
{
    QString symbol; ///< the name that systems with symbols of their own know it by
    QIcon colored; ///< stands out on any background
    QImage mask; ///< black on nothing, at two pixels a point: the system gives it its colour
};

/// The item appears by itself as soon as the desktop has a place for it.
std::unique_ptr<MenuBarItem> makeMenuBarItem(const MenuBarIcon &icon);

/// How round the corners of a panel below the menu bar are, in pixels.
int dropDownRadius();

/// Makes a window that is about to be shown a panel below the menu bar: one that task bars and
/// switchers leave out, and that goes when the user clicks elsewhere.
void becomeDropDown(QWindow &window);

/// Brings the program to the front, so that one of its ordinary windows gets the keys.
void activateApplication();

/// The system's own drawing of a symbol in the middle of a picture of \a size pixels; null where
/// the system has none of that name.
QImage systemSymbol(const QString &name, QSize size, const QColor &color);

} // namespace tallyglass
