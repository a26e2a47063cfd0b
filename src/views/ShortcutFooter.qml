import QtQuick
import Stavelin.Views

// The shortcuts, by the names that stand on the keys.
Rectangle {
    id: root

    required property PanelColors colors
    required property PanelContent content

    implicitHeight: column.implicitHeight + 16
    color: root.colors.card

    Accessible.role: Accessible.Grouping
    Accessible.name: qsTr("Shortcuts")

    Rectangle {
        width: parent.width
        height: 1
        color: root.colors.line
    }

    Column {
        id: column

        anchors {
            left: parent.left
            right: parent.right
            margins: 12
            verticalCenter: parent.verticalCenter
        }
        spacing: 3

        ShortcutLine {
            width: column.width
            colors: root.colors
            keys: root.content.saveKeys
            meaning: qsTr("save what is selected")
        }

        ShortcutLine {
            width: column.width
            colors: root.colors
            keys: qsTr("%1, then 1-9").arg(root.content.pasteKeys)
            meaning: qsTr("paste a slot")
        }

        ShortcutLine {
            width: column.width
            colors: root.colors
            keys: root.content.toggleKeys
            meaning: qsTr("show or hide this panel")
        }
    }
}
