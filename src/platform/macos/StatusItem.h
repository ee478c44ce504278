#pragma once

#include "platform/Desktop.h"

@class NSMenu;
@class NSStatusItem;
@class TGStatusItemTarget;

namespace tallyglass {

/// The item in the menu bar: a click for the panel, a right click or Control-click for the menu.
class StatusItem final : public MenuBarItem
{
public:
    explicit StatusItem(const MenuBarIcon &icon);
    ~StatusItem() override;

    bool isShown() const override;
    QRect area() const override;
    void setToolTip(const QString &text) override;

private:
    void react();

    NSStatusItem *m_item; ///< nil where nothing is drawn by the system
    NSMenu *m_menu;
    TGStatusItemTarget *m_target; ///< the item and the menu do not keep it
};

} // namespace tallyglass
