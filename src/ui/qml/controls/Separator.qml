import QtQuick
import QtQuick.Layouts
import Tallyglass

/// A line between two sections.
Rectangle {
    implicitHeight: 1
    color: Theme.separator
    Layout.fillWidth: true
}
