import SwiftUI

// The few colours of the starter app, kept in one place so a change of look is one edit.
enum Theme {
    static let background = Color(red: 0.98, green: 0.96, blue: 0.92)
    static let card = Color.white
    static let accent = Color(red: 0.96, green: 0.45, blue: 0.22)
    static let ink = Color(red: 0.14, green: 0.12, blue: 0.17)
    static let muted = Color(red: 0.45, green: 0.42, blue: 0.48)
}
