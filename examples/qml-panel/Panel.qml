// SPDX-License-Identifier: MIT

import QtQuick 2.15
import QtQuick.Controls 2.15
import QtQuick.Layouts 1.15
import LibConfigurationManager 1.0

/// Some settings of an embosser. Each call waits for the service: good enough for a few settings.
ApplicationWindow {
    id: panel

    required property QtObject embosser
    property bool isPresent

    /// The keys of a value list.
    function keys(row) {
        return embosser.getValueList(row).map((choice) => choice.key)
    }

    function choose(box, list, key) {
        box.model = list
        box.currentIndex = list.indexOf(key)
    }

    /// Also after each change, since the service may have refused it.
    function read() {
        model.text = embosser.getModel()
        choose(speed, keys(Lcm.RowValueList.Speed), embosser.getPrintSpeed())
        choose(lineSpacing, keys(Lcm.RowValueList.LineSpacing), embosser.getBrailleLineSpacing())
        copies.value = embosser.getNumberOfCopies()
    }

    visible: true
    width: 400
    height: 300
    title: isPresent ? qsTr("Embosser") : qsTr("No embosser")
    Component.onCompleted: if (isPresent) read()

    Connections {
        target: panel.embosser
        function onConnected() {
            panel.isPresent = true
            panel.read()
        }
        function onDisconnected() { panel.isPresent = false }
    }

    GridLayout {
        anchors { fill: parent; margins: 16 }
        columns: 2
        enabled: panel.isPresent

        Label { text: qsTr("Model") }
        Label {
            id: model
            objectName: "model"
        }

        Label { text: qsTr("Speed") }
        ComboBox {
            id: speed
            objectName: "speed"
            Layout.fillWidth: true
            onActivated: {
                panel.embosser.setPrintSpeed(currentText)
                panel.read()
            }
        }

        Label { text: qsTr("Line spacing") }
        ComboBox {
            id: lineSpacing
            objectName: "lineSpacing"
            Layout.fillWidth: true
            onActivated: {
                panel.embosser.setBrailleLineSpacing(currentText)
                panel.read()
            }
        }

        Label { text: qsTr("Copies") }
        SpinBox {
            id: copies
            objectName: "copies"
            to: 10000
            onValueModified: {
                panel.embosser.setNumberOfCopies(value)
                panel.read()
            }
        }
    }
}
