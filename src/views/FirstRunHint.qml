import QtQuick

// Says how to begin, as long as there is nothing to show.
Rectangle {
    id: root

    required property PanelColors colors
    required property string saveKeys
    required property string pasteKeys

    readonly property string title: qsTr("Nine places for text you use again")
    readonly property string advice: qsTr("Select some text in any window and press %1: it goes into slot 1. " +
                                          "To paste it, press %2, then 1.").arg(root.saveKeys).arg(root.pasteKeys)

    implicitHeight: column.implicitHeight + 20
    radius: 6
    color: root.colors.accentBackground

    Accessible.role: Accessible.StaticText
    Accessible.name: root.title + ". " + root.advice

    Column {
        id: column

        anchors {
            left: parent.left
            right: parent.right
            margins: 12
            verticalCenter: parent.verticalCenter
        }
        spacing: 4

        Text {
            width: column.width
            text: root.title
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            color: root.colors.text
            font.pixelSize: 13
            font.weight: Font.DemiBold
            Accessible.ignored: true
        }

        Text {
            width: column.width
            text: root.advice
            textFormat: Text.PlainText
            wrapMode: Text.Wrap
            color: root.colors.text
            font.pixelSize: 12
            lineHeight: 1.15
            Accessible.ignored: true
        }
    }
}
