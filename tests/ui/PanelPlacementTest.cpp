#include "ui/PanelPlacement.h"

#include "support/Table.h"

using namespace tallyglass;

struct PlaceRow
{
    const char *name;
    QSize panel;
    QRect icon;
    QRect available;
    QPoint place;
};

class PanelPlacementTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void placesThePanel_data()
    {
        constexpr QSize panel(360, 600);
        constexpr QRect barBelow(0, 0, 1280, 870);
        constexpr QRect barAbove(0, 30, 1280, 870);
        constexpr QRect barLeft(40, 0, 1240, 900);
        constexpr QRect second(1280, 0, 1920, 1050); // screen to the right of the first
        test::table<PlaceRow>({
            {"bar above", panel, {600, 4, 22, 22}, barAbove, {431, 34}},
            {"bar below", panel, {600, 874, 22, 22}, barBelow, {431, 266}},
            {"icon in the corner", panel, {1250, 874, 22, 22}, barBelow, {916, 266}},
            {"bar at the left", panel, {8, 870, 22, 22}, barLeft, {44, 266}},
            {"second screen", panel, {3170, 1055, 22, 22}, second, {2836, 446}},
            {"no icon", panel, {}, barAbove, {916, 34}},
            {"panel higher than the screen", {360, 1000}, {600, 874, 22, 22}, barBelow, {431, 4}},
        });
    }
    void placesThePanel()
    {
        const auto row = test::currentRow<PlaceRow>();
        QCOMPARE(panelPlace(row.panel, row.icon, row.available), row.place);
    }
};

QTEST_GUILESS_MAIN(PanelPlacementTest)
#include "PanelPlacementTest.moc"
