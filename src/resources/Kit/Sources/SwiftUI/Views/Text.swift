import Foundation

public struct Font: Hashable, Sendable {
    public struct Weight: Hashable, Sendable {
        let value: Int32
        public static let ultraLight = Weight(value: 100)
        public static let thin = Weight(value: 200)
        public static let light = Weight(value: 300)
        public static let regular = Weight(value: 400)
        public static let medium = Weight(value: 500)
        public static let semibold = Weight(value: 600)
        public static let bold = Weight(value: 700)
        public static let heavy = Weight(value: 800)
        public static let black = Weight(value: 900)
    }
    public enum Design: Hashable, Sendable { case `default`, serif, rounded, monospaced }
    public enum TextStyle: Hashable, CaseIterable, Sendable {
        case largeTitle, title, title2, title3, headline, subheadline, body, callout, footnote, caption, caption2
        var size: CGFloat {
            switch self {
            case .largeTitle: return 26
            case .title: return 22
            case .title2: return 17
            case .title3: return 15
            case .headline, .body: return 13
            case .callout: return 12
            case .subheadline: return 11
            case .footnote, .caption: return 10
            case .caption2: return 10
            }
        }
    }
    public enum Leading: Hashable, Sendable { case standard, tight, loose }

    var size: CGFloat
    var weight: Weight?
    var design: Design = .default
    var isItalic = false
    var hasMonospacedDigits = false

    public static let largeTitle = Font(size: 26)
    public static let title = Font(size: 22)
    public static let title2 = Font(size: 17)
    public static let title3 = Font(size: 15)
    public static let headline = Font(size: 13, weight: .bold)
    public static let subheadline = Font(size: 11)
    public static let body = Font(size: 13)
    public static let callout = Font(size: 12)
    public static let footnote = Font(size: 10)
    public static let caption = Font(size: 10)
    public static let caption2 = Font(size: 10)

    public static func system(size: CGFloat, weight: Weight? = nil, design: Design? = nil) -> Font {
        Font(size: size, weight: weight, design: design ?? .default)
    }
    public static func system(_ style: TextStyle, design: Design? = nil, weight: Weight? = nil) -> Font {
        Font(size: style.size, weight: weight ?? (style == .headline ? .bold : nil), design: design ?? .default)
    }
    public static func custom(_ name: String, size: CGFloat) -> Font { Font(size: size) }
    public static func custom(_ name: String, size: CGFloat, relativeTo style: TextStyle) -> Font { Font(size: size) }
    public static func custom(_ name: String, fixedSize: CGFloat) -> Font { Font(size: fixedSize) }

    public func weight(_ weight: Weight) -> Font { var f = self; f.weight = weight; return f }
    public func bold() -> Font { weight(.bold) }
    public func italic() -> Font { var f = self; f.isItalic = true; return f }
    public func monospaced() -> Font { var f = self; f.design = .monospaced; return f }
    public func monospacedDigit() -> Font { var f = self; f.hasMonospacedDigits = true; return f }
    public func smallCaps() -> Font { self }
    public func leading(_ leading: Leading) -> Font { self }
    public func width(_ width: Width) -> Font { self }
    public struct Width: Hashable, Sendable {
        public static let compressed = Width(), condensed = Width(), standard = Width(), expanded = Width()
    }

    func resolved(_ traits: TextTraits) -> ResolvedFont {
        let w = traits.weight ?? weight ?? .regular
        let designCode: Int32
        switch traits.monospaced ? .monospaced : design {
        case .default: designCode = 0
        case .monospaced: designCode = 1
        case .rounded: designCode = 2
        case .serif: designCode = 3
        }
        return ResolvedFont(
            size: size, weight: w.value, design: designCode, italic: isItalic || traits.italic,
            monospacedDigits: hasMonospacedDigits || traits.monospacedDigit)
    }
}

public enum TextAlignment: Hashable, CaseIterable, Sendable { case leading, center, trailing }

public enum TruncationMode: Sendable { case head, tail, middle }

/// A text key with interpolations, as a literal passed to Text, Button or Label.
public struct LocalizedStringKey: ExpressibleByStringInterpolation, Hashable, Sendable {
    let string: String
    public init(_ string: String) { self.string = string }
    public init(stringLiteral value: String) { string = value }
    public init(stringInterpolation: StringInterpolation) { string = stringInterpolation.output }

    public struct StringInterpolation: StringInterpolationProtocol {
        var output = ""
        public init(literalCapacity: Int, interpolationCount: Int) {}
        public mutating func appendLiteral(_ literal: String) { output += literal }
        public mutating func appendInterpolation<T>(_ value: T) { output += String(describing: value) }
        public mutating func appendInterpolation(_ value: String) { output += value }
        public mutating func appendInterpolation<T: BinaryFloatingPoint & CVarArg>(_ value: T, specifier: String) {
            output += String(format: specifier, value)
        }
        public mutating func appendInterpolation<T: BinaryInteger & CVarArg>(_ value: T, specifier: String) {
            output += String(format: specifier, value)
        }
        public mutating func appendInterpolation(_ text: Text) { output += text.plainText }
        public mutating func appendInterpolation(_ date: Date, style: Text.DateStyle) { output += style.format(date) }
        public mutating func appendInterpolation<F: FormatStyle>(_ value: F.FormatInput, format: F) where F.FormatOutput == String {
            output += format.format(value)
        }
        public mutating func appendInterpolation(_ image: Image) {}
    }
}

/// Text, made of styled runs joined with `+`.
public struct Text: Equatable {
    struct Run: Equatable {
        var string: String
        var font: Font?
        var color: Color?
        var weight: Font.Weight?
        var italic = false
        var monospaced = false
        var underline = false
        var strikethrough = false
    }
    var runs: [Run]

    public init(_ key: LocalizedStringKey) { runs = [Run(string: key.string)] }
    public init(_ key: LocalizedStringKey, tableName: String? = nil, bundle: Bundle? = nil, comment: StaticString? = nil) {
        runs = [Run(string: key.string)]
    }
    public init<S: StringProtocol>(_ content: S) { runs = [Run(string: String(content))] }
    public init(verbatim content: String) { runs = [Run(string: content)] }
    public init(_ attributed: AttributedString) { runs = [Run(string: String(attributed.characters))] }
    public init<F: FormatStyle>(_ input: F.FormatInput, format: F) where F.FormatOutput == String {
        runs = [Run(string: format.format(input))]
    }
    public init(_ date: Date, style: DateStyle) { runs = [Run(string: style.format(date))] }
    public init(_ interval: ClosedRange<Date>) {
        let f = DateFormatter()
        f.dateStyle = .short
        f.timeStyle = .short
        runs = [Run(string: "\(f.string(from: interval.lowerBound)) – \(f.string(from: interval.upperBound))")]
    }
    public init(timerInterval: ClosedRange<Date>, countsDown: Bool = true) {
        let remaining = max(0, countsDown ? timerInterval.upperBound.timeIntervalSinceNow : -timerInterval.lowerBound.timeIntervalSinceNow)
        runs = [Run(string: DateStyle.clock(Int(remaining)))]
    }
    public init(_ image: Image) { runs = [Run(string: "")] }

    var plainText: String { runs.map(\.string).joined() }

    public struct DateStyle: Sendable {
        let kind: Int
        public static let time = DateStyle(kind: 0)
        public static let date = DateStyle(kind: 1)
        public static let relative = DateStyle(kind: 2)
        public static let offset = DateStyle(kind: 3)
        public static let timer = DateStyle(kind: 4)
        func format(_ date: Date) -> String {
            switch kind {
            case 0:
                let f = DateFormatter(); f.dateStyle = .none; f.timeStyle = .short
                return f.string(from: date)
            case 1:
                let f = DateFormatter(); f.dateStyle = .long; f.timeStyle = .none
                return f.string(from: date)
            case 2:
                return DateStyle.relative(date.timeIntervalSinceNow)
            default:
                return DateStyle.clock(Int(abs(date.timeIntervalSinceNow)))
            }
        }
        static func relative(_ interval: TimeInterval) -> String {
            let seconds = Int(abs(interval).rounded())
            let (amount, unit): (Int, String) =
                seconds < 60
                ? (seconds, "second")
                : seconds < 3600
                    ? (seconds / 60, "minute")
                    : seconds < 86400 ? (seconds / 3600, "hour") : (seconds / 86400, "day")
            let phrase = "\(amount) \(unit)\(amount == 1 ? "" : "s")"
            return interval < 0 ? "\(phrase) ago" : "in \(phrase)"
        }
        static func clock(_ seconds: Int) -> String {
            let h = seconds / 3600, m = (seconds % 3600) / 60, s = seconds % 60
            return h > 0 ? String(format: "%d:%02d:%02d", h, m, s) : String(format: "%d:%02d", m, s)
        }
    }

    private func mapRuns(_ change: (inout Run) -> Void) -> Text {
        var copy = self
        for i in copy.runs.indices { change(&copy.runs[i]) }
        return copy
    }
    public func font(_ font: Font?) -> Text { mapRuns { $0.font = font } }
    public func fontWeight(_ weight: Font.Weight?) -> Text { mapRuns { $0.weight = weight } }
    public func bold() -> Text { fontWeight(.bold) }
    public func bold(_ active: Bool) -> Text { active ? bold() : self }
    public func italic() -> Text { mapRuns { $0.italic = true } }
    public func italic(_ active: Bool) -> Text { active ? italic() : self }
    public func monospaced(_ active: Bool = true) -> Text { mapRuns { $0.monospaced = active } }
    public func monospacedDigit() -> Text { mapRuns { $0.font = ($0.font ?? .body).monospacedDigit() } }
    public func foregroundColor(_ color: Color?) -> Text { mapRuns { $0.color = color } }
    public func foregroundStyle(_ color: Color) -> Text { foregroundColor(color) }
    public func underline(_ active: Bool = true, color: Color? = nil) -> Text { mapRuns { $0.underline = active } }
    public func strikethrough(_ active: Bool = true, color: Color? = nil) -> Text { mapRuns { $0.strikethrough = active } }
    public func kerning(_ kerning: CGFloat) -> Text { self }
    public func tracking(_ tracking: CGFloat) -> Text { self }
    public func baselineOffset(_ offset: CGFloat) -> Text { self }

    public static func + (a: Text, b: Text) -> Text { Text(runs: a.runs + b.runs) }
    private init(runs: [Run]) { self.runs = runs }
}

extension Text: View, PrimitiveView {
    public typealias Body = Never
    func resolve(_ context: ResolveContext) -> [Element] {
        let environment = context.environment
        let traits = environment.textTraits
        let fallbackColor: RGBA
        if let style = environment.foregroundStyle, case .solid(let c) = style.paint(in: .zero, environment: environment) {
            fallbackColor = environment.isEnabled ? c : c.withAlpha(0.4)
        } else {
            fallbackColor = Color.primary.rgba(in: environment).withAlpha(environment.isEnabled ? 1 : 0.4)
        }
        let resolved = runs.map { run -> TextRun in
            var runTraits = traits
            if let weight = run.weight { runTraits.weight = weight }
            runTraits.italic = traits.italic || run.italic
            runTraits.monospaced = traits.monospaced || run.monospaced
            let font = (run.font ?? environment.font ?? .body).resolved(runTraits)
            return TextRun(
                string: run.string, font: font, color: run.color?.rgba(in: environment) ?? fallbackColor,
                underline: run.underline || traits.underline, strikethrough: run.strikethrough || traits.strikethrough)
        }
        let alignment = environment.multilineTextAlignment, lineLimit = environment.lineLimit
        let graph = context.graph
        if let previous = graph.reusableText(at: context.path), previous.runs == resolved, previous.alignment == alignment,
            previous.lineLimit == lineLimit, previous.host === graph.host
        {
            previous.reusedPass = graph.pass
            graph.keepText(previous, at: context.path)
            return [previous]
        }
        let made = TextElement(runs: resolved, alignment: alignment, lineLimit: lineLimit, host: graph.host)
        graph.keepText(made, at: context.path)
        return [made]
    }
}

final class TextElement: Element {
    let runs: [TextRun]
    let alignment: TextAlignment
    let lineLimit: Int?
    let host: HostBridge?
    init(runs: [TextRun], alignment: TextAlignment, lineLimit: Int?, host: HostBridge?) {
        self.runs = runs; self.alignment = alignment; self.lineLimit = lineLimit; self.host = host
    }
    var string: String { runs.map(\.string).joined() }

    private lazy var ideal: CGSize = host?.measure(runs, maxWidth: nil, lineLimit: lineLimit) ?? .zero

    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        guard let width = proposal.width, width < ideal.width else { return ideal }
        guard let host else { return .zero }
        let wrapped = host.measure(runs, maxWidth: max(0, width), lineLimit: lineLimit)
        // Text cut short by its line limit fills the width, so its last line can end in "…".
        if lineLimit != nil { return CGSize(width: max(0, width), height: wrapped.height) }
        // Words longer than the width break anywhere, so text never overflows what it accepts.
        return CGSize(width: min(wrapped.width, ideal.width, max(0, width)), height: wrapped.height)
    }
    override func draw(_ renderer: HostBridge) {
        renderer.drawText(runs, alignment: alignment, lineLimit: lineLimit, in: frame)
    }
    override func contains(_ point: CGPoint) -> Bool { frame.contains(point) }
    /// Glyphs may reach a little past the measured box (italics, antialiasing).
    override var bleed: CGFloat? { 2 }
}

extension View {
    public func font(_ font: Font?) -> some View { environment(\.font, font) }
    public func fontWeight(_ weight: Font.Weight?) -> some View {
        modifier(EnvironmentModifier { $0.textTraits.weight = weight })
    }
    public func bold(_ active: Bool = true) -> some View {
        modifier(EnvironmentModifier { if active { $0.textTraits.weight = .bold } })
    }
    public func italic(_ active: Bool = true) -> some View {
        modifier(EnvironmentModifier { if active { $0.textTraits.italic = true } })
    }
    public func monospaced(_ active: Bool = true) -> some View {
        modifier(EnvironmentModifier { if active { $0.textTraits.monospaced = true } })
    }
    public func monospacedDigit() -> some View {
        modifier(EnvironmentModifier { $0.textTraits.monospacedDigit = true })
    }
    public func underline(_ active: Bool = true, color: Color? = nil) -> some View {
        modifier(EnvironmentModifier { if active { $0.textTraits.underline = true } })
    }
    public func strikethrough(_ active: Bool = true, color: Color? = nil) -> some View {
        modifier(EnvironmentModifier { if active { $0.textTraits.strikethrough = true } })
    }
    public func fontDesign(_ design: Font.Design?) -> some View {
        modifier(
            EnvironmentModifier { env in
                if let design {
                    env.font = {
                        var f = env.font ?? .body; f.design = design; return f
                    }()
                }
            })
    }
    public func multilineTextAlignment(_ alignment: TextAlignment) -> some View {
        environment(\.multilineTextAlignment, alignment)
    }
    public func lineLimit(_ limit: Int?) -> some View { environment(\.lineLimit, limit) }
    public func lineLimit(_ limit: Int, reservesSpace: Bool) -> some View { environment(\.lineLimit, limit) }
    public func lineLimit(_ limit: ClosedRange<Int>) -> some View { environment(\.lineLimit, limit.upperBound) }
    public func lineLimit(_ limit: PartialRangeFrom<Int>) -> some View { environment(\.lineLimit, nil) }
    public func lineLimit(_ limit: PartialRangeThrough<Int>) -> some View { environment(\.lineLimit, limit.upperBound) }
    public func lineSpacing(_ spacing: CGFloat) -> some View { self }
    public func truncationMode(_ mode: TruncationMode) -> some View { self }
    public func minimumScaleFactor(_ factor: CGFloat) -> some View { self }
    public func textCase(_ textCase: Text.Case?) -> some View { self }
    public func kerning(_ kerning: CGFloat) -> some View { self }
    public func tracking(_ tracking: CGFloat) -> some View { self }
    public func textSelection(_ selectability: TextSelectability) -> some View { self }
    public func dynamicTypeSize<T>(_ size: T) -> some View { self }

    public func foregroundStyle<S: ShapeStyle>(_ style: S) -> some View {
        modifier(EnvironmentModifier { $0.foregroundStyle = AnyShapeStyle.foreground(style, in: $0) })
    }
    public func foregroundStyle<S1: ShapeStyle, S2: ShapeStyle>(_ primary: S1, _ secondary: S2) -> some View {
        foregroundStyle(primary)
    }
    public func foregroundColor(_ color: Color?) -> some View {
        modifier(EnvironmentModifier { if let color { $0.foregroundStyle = AnyShapeStyle(color) } })
    }
    public func tint<S: ShapeStyle>(_ style: S?) -> some View {
        modifier(EnvironmentModifier { if let style { $0.tint = AnyShapeStyle(style) } })
    }
    public func tint(_ color: Color?) -> some View {
        modifier(EnvironmentModifier { if let color { $0.tint = AnyShapeStyle(color) } })
    }
    public func accentColor(_ color: Color?) -> some View { tint(color) }
}

extension Text {
    public enum Case: Sendable { case uppercase, lowercase }
}

extension EnvironmentValues {
    /// The foreground colour that text and symbols take when nothing else is set.
    func foregroundRGBA(in rect: CGRect = .zero) -> Paint {
        let paint = (foregroundStyle ?? AnyShapeStyle(Color.primary)).paint(in: rect, environment: self)
        guard !isEnabled else { return paint }
        if case .solid(let c) = paint { return .solid(c.withAlpha(0.4)) }
        return paint
    }
}

/// Whether text can be selected; the kit's text is drawn, so selection is accepted without effect.
public struct TextSelectability: Sendable {
    public static let enabled = TextSelectability(), disabled = TextSelectability()
}
