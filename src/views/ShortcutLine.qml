import QtQuick

// A shortcut and what it does.
Item {
    id: root

    required property PanelColors colors
    required property string keys
    required property string meaning

    implicitHeight: Math.max(keysText.implicitHeight, meaningText.implicitHeight)

    Accessible.role: Accessible.StaticText
    Accessible.name: root.keys + ": " + root.meaning

    Text {
        id: keysText

        anchors.left: parent.left
        width: Math.min(implicitWidth, root.width)
        text: root.keys
        textFormat: Text.PlainText
        elide: Text.ElideRight
        color: root.colors.text
        font.pixelSize: 12
        Accessible.ignored: true
    }

    Text {
        id: meaningText

        anchors {
            left: keysText.right
            leftMargin: 10
            right: parent.right
        }
        horizontalAlignment: Text.AlignRight
        text: root.meaning
        textFormat: Text.PlainText
        elide: Text.ElideRight
        color: root.colors.secondaryText
        font.pixelSize: 12
        Accessible.ignored: true
    }
}
