import QtQuick

// One slot: its number and the beginning of its text.
Item {
    id: root

    required property PanelColors colors
    required property int slotIndex
    required property string preview
    required property bool isEmpty

    readonly property string placeholder: root.isEmpty ? qsTr("Empty") : qsTr("Only blanks")
    readonly property bool hasPreview: root.preview !== ""

    Accessible.role: Accessible.ListItem
    Accessible.name: qsTr("Slot %1: %2").arg(root.slotIndex).arg(root.hasPreview ? root.preview : root.placeholder)

    Rectangle {
        id: badge

        anchors {
            left: parent.left
            leftMargin: 12
            verticalCenter: parent.verticalCenter
        }
        width: 24
        height: 24
        radius: 5
        color: root.isEmpty ? "transparent" : root.colors.accentBackground
        border.width: root.isEmpty ? 1 : 0
        border.color: root.colors.line

        Text {
            anchors.centerIn: parent
            text: root.slotIndex
            textFormat: Text.PlainText
            color: root.isEmpty ? root.colors.quietText : root.colors.accent
            font.pixelSize: 13
            font.weight: root.isEmpty ? Font.Normal : Font.DemiBold
            Accessible.ignored: true
        }
    }

    Text {
        anchors {
            left: badge.right
            leftMargin: 10
            right: parent.right
            rightMargin: 12
            verticalCenter: parent.verticalCenter
        }
        text: root.hasPreview ? root.preview : root.placeholder
        textFormat: Text.PlainText
        elide: Text.ElideRight
        maximumLineCount: 1
        color: root.hasPreview ? root.colors.text : root.colors.quietText
        font.pixelSize: 13
        font.italic: !root.hasPreview && !root.isEmpty
        Accessible.ignored: true
    }

    Rectangle {
        anchors {
            left: badge.right
            leftMargin: 10
            right: parent.right
            bottom: parent.bottom
        }
        height: 1
        color: root.colors.line
    }
}
