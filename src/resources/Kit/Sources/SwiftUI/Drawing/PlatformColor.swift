import Foundation

/// The named colours of the desktop and phone colour types, so that `Color(.white)`,
/// `Color(nsColor: .windowBackgroundColor)` and `Color(uiColor: .systemGray6)` compile and
/// follow the light or dark palette. `NSColor` and `UIColor` are two names for this one type.
public struct PlatformColor: Hashable, Sendable {
    let color: Color

    public init(red: CGFloat, green: CGFloat, blue: CGFloat, alpha: CGFloat) {
        color = Color(red: Double(red), green: Double(green), blue: Double(blue), opacity: Double(alpha))
    }
    public init(calibratedRed red: CGFloat, green: CGFloat, blue: CGFloat, alpha: CGFloat) {
        self.init(red: red, green: green, blue: blue, alpha: alpha)
    }
    public init(srgbRed red: CGFloat, green: CGFloat, blue: CGFloat, alpha: CGFloat) {
        self.init(red: red, green: green, blue: blue, alpha: alpha)
    }
    public init(white: CGFloat, alpha: CGFloat) { self.init(red: white, green: white, blue: white, alpha: alpha) }
    public init(hue: CGFloat, saturation: CGFloat, brightness: CGFloat, alpha: CGFloat) {
        color = Color(hue: Double(hue), saturation: Double(saturation), brightness: Double(brightness), opacity: Double(alpha))
    }
    public init(_ color: Color) { self.color = color }
    public func withAlphaComponent(_ alpha: CGFloat) -> PlatformColor { PlatformColor(color.opacity(Double(alpha))) }

    private static func gray(_ light: Double, _ dark: Double) -> PlatformColor {
        PlatformColor(
            Color(
                light: RGBA(red: light, green: light, blue: light, alpha: 1),
                dark: RGBA(red: dark, green: dark, blue: dark, alpha: 1)))
    }
    private static func tinted(_ light: (Double, Double, Double), _ dark: (Double, Double, Double)) -> PlatformColor {
        PlatformColor(
            Color(
                light: RGBA(red: light.0, green: light.1, blue: light.2, alpha: 1),
                dark: RGBA(red: dark.0, green: dark.1, blue: dark.2, alpha: 1)))
    }

    // Plain colours.
    public static let white = PlatformColor(.white)
    public static let black = PlatformColor(.black)
    public static let clear = PlatformColor(.clear)
    public static let red = PlatformColor(.red), orange = PlatformColor(.orange), yellow = PlatformColor(.yellow)
    public static let green = PlatformColor(.green), blue = PlatformColor(.blue), purple = PlatformColor(.purple)
    public static let brown = PlatformColor(.brown), cyan = PlatformColor(.cyan), magenta = PlatformColor(Color(red: 1, green: 0, blue: 1))
    public static let gray = PlatformColor(.gray), darkGray = gray(0.333, 0.333), lightGray = gray(0.667, 0.667)
    public static let systemRed = PlatformColor(.red), systemOrange = PlatformColor(.orange), systemYellow = PlatformColor(.yellow)
    public static let systemGreen = PlatformColor(.green), systemMint = PlatformColor(.mint), systemTeal = PlatformColor(.teal)
    public static let systemCyan = PlatformColor(.cyan), systemBlue = PlatformColor(.blue), systemIndigo = PlatformColor(.indigo)
    public static let systemPurple = PlatformColor(.purple), systemPink = PlatformColor(.pink), systemBrown = PlatformColor(.brown)
    public static let systemGray = PlatformColor(.gray)
    public static let systemGray2 = tinted((0.682, 0.682, 0.698), (0.388, 0.388, 0.4))
    public static let systemGray3 = tinted((0.78, 0.78, 0.8), (0.282, 0.282, 0.29))
    public static let systemGray4 = tinted((0.82, 0.82, 0.839), (0.227, 0.227, 0.235))
    public static let systemGray5 = tinted((0.898, 0.898, 0.918), (0.173, 0.173, 0.18))
    public static let systemGray6 = tinted((0.949, 0.949, 0.969), (0.11, 0.11, 0.118))

    // Text.
    public static let labelColor = PlatformColor(.primary), textColor = PlatformColor(.primary)
    public static let secondaryLabelColor = PlatformColor(.secondary)
    public static let tertiaryLabelColor = PlatformColor(.tertiaryLabel), placeholderTextColor = PlatformColor(.tertiaryLabel)
    public static let quaternaryLabelColor = PlatformColor(.quaternaryLabel)
    public static let label = PlatformColor(.primary), secondaryLabel = PlatformColor(.secondary)
    public static let tertiaryLabel = PlatformColor(.tertiaryLabel), quaternaryLabel = PlatformColor(.quaternaryLabel)
    public static let placeholderText = PlatformColor(.tertiaryLabel)
    public static let linkColor = PlatformColor(.accentColor), link = PlatformColor(.accentColor)
    public static let controlAccentColor = PlatformColor(.accentColor), selectedContentBackgroundColor = PlatformColor(.accentColor)

    // Backgrounds: the window's, and the lighter one of controls, text and grouped rows.
    public static let windowBackgroundColor = PlatformColor(.windowBackground)
    public static let underPageBackgroundColor = PlatformColor(.windowBackground)
    public static let controlBackgroundColor = PlatformColor(.controlBackground)
    public static let textBackgroundColor = PlatformColor(.controlBackground)
    public static let controlColor = PlatformColor(.controlBackground)
    public static let systemBackground = PlatformColor(.controlBackground)
    public static let secondarySystemBackground = PlatformColor(.windowBackground)
    public static let tertiarySystemBackground = PlatformColor(.controlBackground)
    public static let systemGroupedBackground = PlatformColor(.windowBackground)
    public static let secondarySystemGroupedBackground = PlatformColor(.controlBackground)
    public static let tertiarySystemGroupedBackground = PlatformColor(.windowBackground)

    // Lines and fills.
    public static let separatorColor = PlatformColor(.separator), gridColor = PlatformColor(.separator)
    public static let separator = PlatformColor(.separator), opaqueSeparator = gray(0.776, 0.22)
    public static let systemFill = PlatformColor(.fill), secondarySystemFill = PlatformColor(.fill)
    public static let tertiarySystemFill = PlatformColor(.fill), quaternarySystemFill = PlatformColor(.fill)
}

public typealias NSColor = PlatformColor
public typealias UIColor = PlatformColor

extension Color {
    public init(_ color: PlatformColor) { self = color.color }
    public init(nsColor color: PlatformColor) { self = color.color }
    public init(uiColor color: PlatformColor) { self = color.color }
}
