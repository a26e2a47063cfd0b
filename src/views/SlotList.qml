pragma ComponentBehavior: Bound

import QtQuick
import QtQuick.Controls.Basic
import Stavelin.Views

// The slots, one line each. The lines share the height that there is; when they would get too low, the list scrolls.
ListView {
    id: root
    objectName: "slotList"

    required property PanelColors colors
    required property SlotListModel slotList

    readonly property int lowestRow: 30
    readonly property int highestRow: 44
    readonly property int padding: 6
    readonly property int rowHeight: Math.max(root.lowestRow, Math.min(root.highestRow, root.heightPerRow))
    readonly property int heightPerRow: (root.height - 2 * root.padding) / Math.max(1, root.slotList.count)

    model: root.slotList
    clip: true
    boundsBehavior: Flickable.StopAtBounds
    topMargin: root.padding
    bottomMargin: root.padding
    activeFocusOnTab: true
    keyNavigationEnabled: true

    Accessible.role: Accessible.List
    Accessible.name: qsTr("Slots")

    ScrollBar.vertical: ScrollBar {
        policy: root.contentHeight > root.height ? ScrollBar.AsNeeded : ScrollBar.AlwaysOff
    }

    delegate: SlotRow {
        width: ListView.view.width
        height: root.rowHeight
        colors: root.colors
    }
}
