import QtQuick

// One line across the panel about something that does not work now.
Rectangle {
    id: root

    required property PanelColors colors
    required property string text

    implicitHeight: message.implicitHeight + 12
    color: root.colors.noticeBackground

    Accessible.role: Accessible.AlertMessage
    Accessible.name: root.text

    Text {
        id: message

        anchors {
            left: parent.left
            right: parent.right
            margins: 12
            verticalCenter: parent.verticalCenter
        }
        text: root.text
        textFormat: Text.PlainText
        wrapMode: Text.Wrap
        color: root.colors.noticeText
        font.pixelSize: 12
        Accessible.ignored: true
    }
}
