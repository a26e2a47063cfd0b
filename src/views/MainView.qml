import QtQuick
import QtQuick.Layouts
import Stavelin.Views

// The panel's whole content.
Rectangle {
    id: root

    required property PanelContent content

    // What is left for the slots is worth more than the help around them.
    readonly property bool hasRoomForHelp: root.height >= 300

    color: colors.background

    PanelColors {
        id: colors
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 0

        NoticeBar {
            Layout.fillWidth: true
            visible: root.content.isWaitingForDaemon
            colors: colors
            text: qsTr("Waiting for stavelin-daemon…")
        }

        NoticeBar {
            Layout.fillWidth: true
            visible: root.content.shortcutProblem !== ""
            colors: colors
            text: root.content.shortcutProblem
        }

        FirstRunHint {
            Layout.fillWidth: true
            Layout.margins: 10
            Layout.bottomMargin: 0
            visible: root.content.isConnected && root.content.isBoardEmpty && root.hasRoomForHelp
            colors: colors
            saveKeys: root.content.saveKeys
            pasteKeys: root.content.pasteKeys
        }

        SlotList {
            Layout.fillWidth: true
            Layout.fillHeight: true
            colors: colors
            slotList: root.content.slotList
            opacity: root.content.isConnected ? 1 : 0.5
        }

        ShortcutFooter {
            Layout.fillWidth: true
            visible: root.hasRoomForHelp
            colors: colors
            content: root.content
        }
    }
}
