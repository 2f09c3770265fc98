import QtQuick
import QtQuick.Layouts
import Cairnfield.Components
import Cairnfield.History

// One attempt: how it ended, where its work is, and what stopped it if anything did.
Flickable {
    id: view

    required property receiptDetail receipt
    required property string notice

    signal copySummary
    signal revealVaultFiles

    onReceiptChanged: contentY = 0
    contentWidth: width
    contentHeight: column.implicitHeight + 2 * Theme.pageMargin
    boundsBehavior: Flickable.StopAtBounds
    clip: true
    activeFocusOnTab: true
    Accessible.role: Accessible.Pane
    Accessible.name: qsTr("Cleanup detail")
    Keys.onUpPressed: flick(0, 600)
    Keys.onDownPressed: flick(0, -600)

    ThinScrollBar {
        view: view
    }
    FocusRing {
        parent: view
        anchors.margins: Theme.spaceTiny
        shown: view.activeFocus
    }

    ColumnLayout {
        id: column

        x: Theme.pageMargin
        y: Theme.pageMargin
        width: view.width - 2 * Theme.pageMargin
        spacing: Theme.cardGap

        ColumnLayout {
            spacing: Theme.spaceTiny

            RowLayout {
                spacing: Theme.spaceSmall

                SymbolIcon {
                    symbolName: view.receipt.head.symbolName
                    size: Theme.iconSizeLarge
                    color: Theme.tint(view.receipt.head.tint)
                }
                InfoText {
                    Layout.fillWidth: true
                    text: view.receipt.head.outcome
                    font: Theme.titleFont
                    Accessible.role: Accessible.Heading
                }
            }
            InfoText {
                Layout.fillWidth: true
                text: view.receipt.head.date
                color: Theme.textSecondary
            }
        }
        DetailCard {
            Layout.fillWidth: true
            rows: view.receipt.rows
        }
        StatusSurface {
            Layout.fillWidth: true
            visible: view.receipt.failure !== ""
            contentItem: ColumnLayout {
                spacing: Theme.spaceSmall

                SectionHeader {
                    Layout.fillWidth: true
                    title: qsTr("What stopped it")
                }
                InfoText {
                    Layout.fillWidth: true
                    text: view.receipt.failure
                }
            }
        }
        Flow {
            Layout.fillWidth: true
            spacing: Theme.spaceSmall

            PlainButton {
                text: qsTr("Copy recovery summary")
                symbolName: "doc.on.doc"
                onClicked: view.copySummary()
            }
            PlainButton {
                text: qsTr("Reveal vault files")
                symbolName: "folder"
                visible: view.receipt.hasVaultFiles
                onClicked: view.revealVaultFiles()
            }
        }
        SymbolLabel {
            Layout.fillWidth: true
            text: view.notice
            symbolName: "exclamationmark.triangle"
            tint: Theme.orange
            visible: text !== ""
        }
    }
}
