import Foundation

struct RGBA: Hashable {
    var red: Double, green: Double, blue: Double, alpha: Double
    func withAlpha(_ factor: Double) -> RGBA { RGBA(red: red, green: green, blue: blue, alpha: alpha * factor) }
}

/// A colour that may differ between the light and the dark palette.
public struct Color: Hashable, CustomStringConvertible, Sendable {
    enum Kind: Hashable { case fixed(light: RGBA, dark: RGBA), accent }
    let kind: Kind
    var alpha: Double = 1
    private let name: String?

    init(light: RGBA, dark: RGBA, name: String? = nil) { kind = .fixed(light: light, dark: dark); self.name = name }
    private init(kind: Kind, alpha: Double, name: String?) { self.kind = kind; self.alpha = alpha; self.name = name }

    public enum RGBColorSpace: Sendable { case sRGB, sRGBLinear, displayP3 }

    public init(red: Double, green: Double, blue: Double, opacity: Double = 1) {
        let c = RGBA(red: red, green: green, blue: blue, alpha: opacity)
        self.init(light: c, dark: c)
    }
    public init(_ space: RGBColorSpace, red: Double, green: Double, blue: Double, opacity: Double = 1) {
        self.init(red: red, green: green, blue: blue, opacity: opacity)
    }
    public init(white: Double, opacity: Double = 1) { self.init(red: white, green: white, blue: white, opacity: opacity) }
    public init(_ space: RGBColorSpace, white: Double, opacity: Double = 1) { self.init(white: white, opacity: opacity) }
    public init(hue: Double, saturation: Double, brightness: Double, opacity: Double = 1) {
        let h = (hue - floor(hue)) * 6, i = Int(h) % 6, f = h - floor(h)
        let v = brightness, p = v * (1 - saturation), q = v * (1 - saturation * f), t = v * (1 - saturation * (1 - f))
        let (r, g, b): (Double, Double, Double) = [(v, t, p), (q, v, p), (p, v, t), (p, q, v), (t, p, v), (v, p, q)][i]
        self.init(red: r, green: g, blue: b, opacity: opacity)
    }

    public func opacity(_ opacity: Double) -> Color { Color(kind: kind, alpha: alpha * opacity, name: name) }

    func rgba(in environment: EnvironmentValues) -> RGBA {
        switch kind {
        case .accent: return environment.accentRGBA.withAlpha(alpha)
        case let .fixed(light, dark): return (environment.colorScheme == .dark ? dark : light).withAlpha(alpha)
        }
    }

    public var description: String { name ?? "Color" }

    private static func system(_ name: String, _ light: (Double, Double, Double), _ dark: (Double, Double, Double)) -> Color {
        Color(
            light: RGBA(red: light.0, green: light.1, blue: light.2, alpha: 1),
            dark: RGBA(red: dark.0, green: dark.1, blue: dark.2, alpha: 1), name: name)
    }
    public static let red = system("red", (1, 0.231, 0.188), (1, 0.271, 0.227))
    public static let orange = system("orange", (1, 0.584, 0), (1, 0.624, 0.039))
    public static let yellow = system("yellow", (1, 0.8, 0), (1, 0.839, 0.039))
    public static let green = system("green", (0.204, 0.78, 0.349), (0.188, 0.82, 0.345))
    public static let mint = system("mint", (0, 0.78, 0.745), (0.388, 0.902, 0.886))
    public static let teal = system("teal", (0.188, 0.69, 0.78), (0.251, 0.784, 0.878))
    public static let cyan = system("cyan", (0.196, 0.678, 0.902), (0.392, 0.824, 1))
    public static let blue = system("blue", (0, 0.478, 1), (0.039, 0.518, 1))
    public static let indigo = system("indigo", (0.345, 0.337, 0.839), (0.369, 0.361, 0.902))
    public static let purple = system("purple", (0.686, 0.322, 0.871), (0.749, 0.353, 0.949))
    public static let pink = system("pink", (1, 0.176, 0.333), (1, 0.216, 0.373))
    public static let brown = system("brown", (0.635, 0.518, 0.369), (0.675, 0.557, 0.408))
    public static let gray = system("gray", (0.557, 0.557, 0.576), (0.557, 0.557, 0.576))
    public static let black = system("black", (0, 0, 0), (0, 0, 0))
    public static let white = system("white", (1, 1, 1), (1, 1, 1))
    public static let clear = Color(
        light: RGBA(red: 0, green: 0, blue: 0, alpha: 0), dark: RGBA(red: 0, green: 0, blue: 0, alpha: 0), name: "clear")
    public static let primary = system("primary", (0, 0, 0), (1, 1, 1)).opacity(0.88)
    public static let secondary = Color(
        light: RGBA(red: 0, green: 0, blue: 0, alpha: 0.5), dark: RGBA(red: 1, green: 1, blue: 1, alpha: 0.55), name: "secondary")
    public static let accentColor = Color(kind: .accent, alpha: 1, name: "accentColor")

    static let tertiaryLabel = Color(
        light: RGBA(red: 0, green: 0, blue: 0, alpha: 0.26), dark: RGBA(red: 1, green: 1, blue: 1, alpha: 0.25))
    static let quaternaryLabel = Color(
        light: RGBA(red: 0, green: 0, blue: 0, alpha: 0.1), dark: RGBA(red: 1, green: 1, blue: 1, alpha: 0.1))
    static let windowBackground = Color(
        light: RGBA(red: 0.925, green: 0.925, blue: 0.925, alpha: 1), dark: RGBA(red: 0.196, green: 0.196, blue: 0.196, alpha: 1))
    static let controlBackground = Color(
        light: RGBA(red: 1, green: 1, blue: 1, alpha: 1), dark: RGBA(red: 0.28, green: 0.28, blue: 0.29, alpha: 1))
    static let controlBorder = Color(
        light: RGBA(red: 0, green: 0, blue: 0, alpha: 0.16), dark: RGBA(red: 1, green: 1, blue: 1, alpha: 0.12))
    static let separator = Color(light: RGBA(red: 0, green: 0, blue: 0, alpha: 0.1), dark: RGBA(red: 1, green: 1, blue: 1, alpha: 0.12))
    static let fill = Color(light: RGBA(red: 0, green: 0, blue: 0, alpha: 0.06), dark: RGBA(red: 1, green: 1, blue: 1, alpha: 0.1))

    /// A gentle top-to-bottom gradient of this colour, as `Color.blue.gradient`.
    public var gradient: LinearGradient {
        LinearGradient(colors: [self.mixed(white: 0.12), self], startPoint: .top, endPoint: .bottom)
    }
    func mixed(white amount: Double) -> Color {
        func mix(_ c: RGBA) -> RGBA {
            RGBA(
                red: c.red + (1 - c.red) * amount, green: c.green + (1 - c.green) * amount,
                blue: c.blue + (1 - c.blue) * amount, alpha: c.alpha)
        }
        switch kind {
        case let .fixed(light, dark): return Color(kind: .fixed(light: mix(light), dark: mix(dark)), alpha: alpha, name: nil)
        case .accent: return self
        }
    }
}

/// Anything a shape can be filled or stroked with.
public protocol ShapeStyle {}

/// How a style paints a given rectangle.
enum Paint {
    case solid(RGBA)
    case linear([(Double, RGBA)], CGPoint, CGPoint)
    case radial([(Double, RGBA)], CGPoint, CGFloat, CGFloat)
    case angular([(Double, RGBA)], CGPoint, Double)
}

protocol PaintSource {
    func paint(in rect: CGRect, environment: EnvironmentValues) -> Paint
}

extension Color: ShapeStyle, PaintSource {
    func paint(in rect: CGRect, environment: EnvironmentValues) -> Paint { .solid(rgba(in: environment)) }
}

public struct AnyShapeStyle: ShapeStyle, PaintSource {
    let source: PaintSource
    public init<S: ShapeStyle>(_ style: S) {
        if let any = style as? AnyShapeStyle { self = any; return }
        source = (style as? PaintSource) ?? Color.primary
    }
    /// The style to keep as the environment's foreground: levels of the foreground are taken
    /// from the foreground in force, so the style never refers to itself.
    static func foreground<S: ShapeStyle>(_ style: S, in environment: EnvironmentValues) -> AnyShapeStyle {
        let any = AnyShapeStyle(style)
        if let level = any.source as? HierarchicalShapeStyle { return level.resolved(in: environment) }
        return any
    }
    func paint(in rect: CGRect, environment: EnvironmentValues) -> Paint { source.paint(in: rect, environment: environment) }
}

/// The foreground's levels of emphasis: `.primary`, `.secondary`, ...
public struct HierarchicalShapeStyle: ShapeStyle, PaintSource {
    let level: Int
    public static let primary = HierarchicalShapeStyle(level: 0)
    public static let secondary = HierarchicalShapeStyle(level: 1)
    public static let tertiary = HierarchicalShapeStyle(level: 2)
    public static let quaternary = HierarchicalShapeStyle(level: 3)
    func paint(in rect: CGRect, environment: EnvironmentValues) -> Paint {
        resolved(in: environment).paint(in: rect, environment: environment)
    }
    /// This level of the environment's foreground: the foreground itself, or fainter.
    func resolved(in environment: EnvironmentValues) -> AnyShapeStyle {
        guard let foreground = environment.foregroundStyle else {
            return AnyShapeStyle([Color.primary, .secondary, .tertiaryLabel, .quaternaryLabel][min(level, 3)])
        }
        if level == 0 { return foreground }
        return AnyShapeStyle(OpacityStyle(base: foreground, opacity: [1, 0.55, 0.3, 0.18][min(level, 3)]))
    }
}

public struct TintShapeStyle: ShapeStyle, PaintSource {
    func paint(in rect: CGRect, environment: EnvironmentValues) -> Paint {
        (environment.tint ?? AnyShapeStyle(Color.accentColor)).paint(in: rect, environment: environment)
    }
}

/// The style that fills the background of a window or control.
public struct BackgroundStyle: ShapeStyle, PaintSource {
    var level = 0
    public init() {}
    init(level: Int) { self.level = level }
    func paint(in rect: CGRect, environment: EnvironmentValues) -> Paint {
        .solid((level == 0 ? Color.windowBackground : Color.controlBackground).rgba(in: environment))
    }
    /// The background's layers: a shade apart from the window, for cards on it.
    public var secondary: BackgroundStyle { BackgroundStyle(level: 1) }
    public var tertiary: BackgroundStyle { BackgroundStyle(level: 2) }
    public var quaternary: BackgroundStyle { BackgroundStyle(level: 3) }
}

/// The material styles draw as a translucent veil.
public struct Material: ShapeStyle, PaintSource {
    let alpha: Double
    public static let ultraThinMaterial = Material(alpha: 0.45)
    public static let thinMaterial = Material(alpha: 0.6)
    public static let regularMaterial = Material(alpha: 0.72)
    public static let thickMaterial = Material(alpha: 0.85)
    public static let ultraThickMaterial = Material(alpha: 0.93)
    public static let bar = Material(alpha: 0.85)
    func paint(in rect: CGRect, environment: EnvironmentValues) -> Paint {
        .solid(Color.windowBackground.rgba(in: environment).withAlpha(alpha))
    }
}

extension ShapeStyle where Self == HierarchicalShapeStyle {
    public static var primary: HierarchicalShapeStyle { .primary }
    public static var secondary: HierarchicalShapeStyle { .secondary }
    public static var tertiary: HierarchicalShapeStyle { .tertiary }
    public static var quaternary: HierarchicalShapeStyle { .quaternary }
}
extension ShapeStyle where Self == TintShapeStyle {
    public static var tint: TintShapeStyle { TintShapeStyle() }
}
extension ShapeStyle where Self == BackgroundStyle {
    public static var background: BackgroundStyle { BackgroundStyle() }
}
extension ShapeStyle where Self == Material {
    public static var ultraThinMaterial: Material { .ultraThinMaterial }
    public static var thinMaterial: Material { .thinMaterial }
    public static var regularMaterial: Material { .regularMaterial }
    public static var thickMaterial: Material { .thickMaterial }
    public static var ultraThickMaterial: Material { .ultraThickMaterial }
    public static var bar: Material { .bar }
}
extension ShapeStyle where Self == Color {
    public static var red: Color { .red }
    public static var orange: Color { .orange }
    public static var yellow: Color { .yellow }
    public static var green: Color { .green }
    public static var mint: Color { .mint }
    public static var teal: Color { .teal }
    public static var cyan: Color { .cyan }
    public static var blue: Color { .blue }
    public static var indigo: Color { .indigo }
    public static var purple: Color { .purple }
    public static var pink: Color { .pink }
    public static var brown: Color { .brown }
    public static var gray: Color { .gray }
    public static var black: Color { .black }
    public static var white: Color { .white }
    public static var clear: Color { .clear }
    public static var accentColor: Color { .accentColor }
}

extension ShapeStyle {
    public func opacity(_ opacity: Double) -> some ShapeStyle { OpacityStyle(base: AnyShapeStyle(self), opacity: opacity) }
}

struct OpacityStyle: ShapeStyle, PaintSource {
    let base: AnyShapeStyle
    let opacity: Double
    func paint(in rect: CGRect, environment: EnvironmentValues) -> Paint {
        func fade(_ stops: [(Double, RGBA)]) -> [(Double, RGBA)] { stops.map { ($0.0, $0.1.withAlpha(opacity)) } }
        switch base.paint(in: rect, environment: environment) {
        case .solid(let c): return .solid(c.withAlpha(opacity))
        case let .linear(s, a, b): return .linear(fade(s), a, b)
        case let .radial(s, c, r0, r1): return .radial(fade(s), c, r0, r1)
        case let .angular(s, c, a): return .angular(fade(s), c, a)
        }
    }
}

public struct Gradient: Hashable {
    public struct Stop: Hashable {
        public var color: Color
        public var location: CGFloat
        public init(color: Color, location: CGFloat) { self.color = color; self.location = location }
    }
    public var stops: [Stop]
    public init(stops: [Stop]) { self.stops = stops }
    public init(colors: [Color]) {
        let last = max(colors.count - 1, 1)
        stops = colors.enumerated().map { Stop(color: $0.element, location: CGFloat($0.offset) / CGFloat(last)) }
    }
    func resolved(_ environment: EnvironmentValues) -> [(Double, RGBA)] {
        stops.map { (Double($0.location), $0.color.rgba(in: environment)) }
    }
}

public struct LinearGradient: ShapeStyle, PaintSource {
    let gradient: Gradient
    let startPoint: UnitPoint, endPoint: UnitPoint
    public init(gradient: Gradient, startPoint: UnitPoint, endPoint: UnitPoint) {
        self.gradient = gradient; self.startPoint = startPoint; self.endPoint = endPoint
    }
    public init(colors: [Color], startPoint: UnitPoint, endPoint: UnitPoint) {
        self.init(gradient: Gradient(colors: colors), startPoint: startPoint, endPoint: endPoint)
    }
    public init(stops: [Gradient.Stop], startPoint: UnitPoint, endPoint: UnitPoint) {
        self.init(gradient: Gradient(stops: stops), startPoint: startPoint, endPoint: endPoint)
    }
    func paint(in rect: CGRect, environment: EnvironmentValues) -> Paint {
        .linear(gradient.resolved(environment), startPoint.point(in: rect), endPoint.point(in: rect))
    }
}

public struct RadialGradient: ShapeStyle, PaintSource {
    let gradient: Gradient
    let center: UnitPoint
    let startRadius: CGFloat, endRadius: CGFloat
    public init(gradient: Gradient, center: UnitPoint, startRadius: CGFloat, endRadius: CGFloat) {
        self.gradient = gradient; self.center = center; self.startRadius = startRadius; self.endRadius = endRadius
    }
    public init(colors: [Color], center: UnitPoint, startRadius: CGFloat, endRadius: CGFloat) {
        self.init(gradient: Gradient(colors: colors), center: center, startRadius: startRadius, endRadius: endRadius)
    }
    public init(stops: [Gradient.Stop], center: UnitPoint, startRadius: CGFloat, endRadius: CGFloat) {
        self.init(gradient: Gradient(stops: stops), center: center, startRadius: startRadius, endRadius: endRadius)
    }
    func paint(in rect: CGRect, environment: EnvironmentValues) -> Paint {
        .radial(gradient.resolved(environment), center.point(in: rect), startRadius, endRadius)
    }
}

public struct AngularGradient: ShapeStyle, PaintSource {
    let gradient: Gradient
    let center: UnitPoint
    let startAngle: Angle, endAngle: Angle
    public init(gradient: Gradient, center: UnitPoint, startAngle: Angle = .zero, endAngle: Angle = .degrees(360)) {
        self.gradient = gradient; self.center = center; self.startAngle = startAngle; self.endAngle = endAngle
    }
    public init(colors: [Color], center: UnitPoint, startAngle: Angle = .zero, endAngle: Angle = .degrees(360)) {
        self.init(gradient: Gradient(colors: colors), center: center, startAngle: startAngle, endAngle: endAngle)
    }
    public init(gradient: Gradient, center: UnitPoint, angle: Angle) {
        self.init(gradient: gradient, center: center, startAngle: angle, endAngle: angle + .degrees(360))
    }
    public init(colors: [Color], center: UnitPoint, angle: Angle = .zero) {
        self.init(gradient: Gradient(colors: colors), center: center, angle: angle)
    }
    func paint(in rect: CGRect, environment: EnvironmentValues) -> Paint {
        // Stops are spread over the given sweep of the full turn.
        let span = max((endAngle - startAngle).degrees, 0.0001) / 360
        let stops = gradient.resolved(environment).map { ($0.0 * span, $0.1) }
        return .angular(stops, center.point(in: rect), startAngle.degrees)
    }
}

public typealias EllipticalGradient = RadialGradient
