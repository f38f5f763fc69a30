import QtQuick
import QtQuick.Window

// A symbol of the bundled icon set, tinted. `symbol` is the symbol name the screens use.
Image {
    id: icon
    property string symbol
    property color color: "black"
    property real size: 16
    // Set to paint the symbol with a gradient from `color` at the top to this at the bottom.
    property color gradientEnd: "transparent"

    width: size
    height: size
    fillMode: Image.PreserveAspectFit
    smooth: true
    sourceSize: Qt.size(Math.ceil(size * Screen.devicePixelRatio), Math.ceil(size * Screen.devicePixelRatio))
    // '#' would start a URL fragment: the provider takes the hex digits alone.
    source: symbol.length > 0 ? "image://symbol/" + symbol + "/" + String(color).substring(1)
                                + (gradientEnd.a > 0 ? "-" + String(gradientEnd).substring(1) : "") : ""
    Accessible.ignored: true
}
