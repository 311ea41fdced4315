import Foundation

/// A value within a range, shown as a bar (the default) or a ring.
public struct Gauge<Label: View, CurrentValueLabel: View, MinimumValueLabel: View, MaximumValueLabel: View>: View {
    let fraction: Double
    let label: Label
    let current: CurrentValueLabel
    let minimum: MinimumValueLabel
    let maximum: MaximumValueLabel
    @Environment(\.gaugeStyle) private var style

    public init<V: BinaryFloatingPoint>(
        value: V, in bounds: ClosedRange<V> = 0...1, @ViewBuilder label: () -> Label,
        @ViewBuilder currentValueLabel: () -> CurrentValueLabel, @ViewBuilder minimumValueLabel: () -> MinimumValueLabel,
        @ViewBuilder maximumValueLabel: () -> MaximumValueLabel
    ) {
        let span = Double(bounds.upperBound - bounds.lowerBound)
        fraction = span > 0 ? min(max(Double(value - bounds.lowerBound) / span, 0), 1) : 0
        self.label = label(); current = currentValueLabel(); minimum = minimumValueLabel(); maximum = maximumValueLabel()
    }

    public var body: some View {
        if style == .circular {
            VStack(spacing: 4) {
                ZStack {
                    Circle().trim(from: 0, to: 0.75).stroke(Color.fill, style: StrokeStyle(lineWidth: 6, lineCap: .round))
                        .rotationEffect(.degrees(135))
                    Circle().trim(from: 0, to: 0.75 * fraction).stroke(TintShapeStyle(), style: StrokeStyle(lineWidth: 6, lineCap: .round))
                        .rotationEffect(.degrees(135))
                    current.font(.caption.bold())
                }
                .frame(width: 56, height: 56)
                label.font(.caption)
            }
        } else {
            VStack(alignment: .leading, spacing: 4) {
                HStack {
                    label
                    Spacer(minLength: 8)
                    current.foregroundStyle(.secondary)
                }
                HStack(spacing: 6) {
                    minimum.font(.caption).foregroundStyle(.secondary)
                    ProgressView(value: fraction)
                    maximum.font(.caption).foregroundStyle(.secondary)
                }
            }
        }
    }
}

extension Gauge where CurrentValueLabel == EmptyView, MinimumValueLabel == EmptyView, MaximumValueLabel == EmptyView {
    public init<V: BinaryFloatingPoint>(value: V, in bounds: ClosedRange<V> = 0...1, @ViewBuilder label: () -> Label) {
        self.init(
            value: value, in: bounds, label: label, currentValueLabel: { EmptyView() }, minimumValueLabel: { EmptyView() },
            maximumValueLabel: { EmptyView() })
    }
}
extension Gauge where MinimumValueLabel == EmptyView, MaximumValueLabel == EmptyView {
    public init<V: BinaryFloatingPoint>(
        value: V, in bounds: ClosedRange<V> = 0...1, @ViewBuilder label: () -> Label,
        @ViewBuilder currentValueLabel: () -> CurrentValueLabel
    ) {
        self.init(
            value: value, in: bounds, label: label, currentValueLabel: currentValueLabel, minimumValueLabel: { EmptyView() },
            maximumValueLabel: { EmptyView() })
    }
}

public struct GaugeStyleKind: Equatable, Sendable {
    let kind: Int
    public static let automatic = GaugeStyleKind(kind: 0)
    public static let linearCapacity = GaugeStyleKind(kind: 0)
    public static let accessoryLinear = GaugeStyleKind(kind: 0)
    public static let accessoryLinearCapacity = GaugeStyleKind(kind: 0)
    public static let circular = GaugeStyleKind(kind: 1)
    public static let accessoryCircular = GaugeStyleKind(kind: 1)
    public static let accessoryCircularCapacity = GaugeStyleKind(kind: 1)
}
private enum GaugeStyleKey: EnvironmentKey { static let defaultValue = GaugeStyleKind.automatic }
extension EnvironmentValues {
    var gaugeStyle: GaugeStyleKind {
        get { self[GaugeStyleKey.self] }
        set { self[GaugeStyleKey.self] = newValue }
    }
}
extension View {
    public func gaugeStyle(_ style: GaugeStyleKind) -> some View { modifier(EnvironmentModifier { $0.gaugeStyle = style }) }
}

/// Opens a web address in the desktop's browser.
public struct OpenURLAction {
    let handler: (URL) -> Void
    public init(handler: @escaping (URL) -> Result) { self.handler = { _ = handler($0) } }
    public func callAsFunction(_ url: URL) { handler(url) }
    public func callAsFunction(_ url: URL, completion: @escaping (Bool) -> Void) { handler(url); completion(true) }
    public struct Result: Sendable {
        public static let handled = Result(), discarded = Result(), systemAction = Result()
    }
    static let system = OpenURLAction { url in
        let opener = Process()
        opener.executableURL = URL(fileURLWithPath: "/usr/bin/xdg-open")
        opener.arguments = [url.absoluteString]
        try? opener.run()
        return .handled
    }
}
private enum OpenURLKey: EnvironmentKey { static let defaultValue = OpenURLAction.system }
extension EnvironmentValues {
    public var openURL: OpenURLAction {
        get { self[OpenURLKey.self] }
        set { self[OpenURLKey.self] = newValue }
    }
}

/// Text in the accent colour that opens its address.
public struct Link<Label: View>: View {
    let destination: URL
    let label: Label
    @Environment(\.openURL) private var openURL
    public init(destination: URL, @ViewBuilder label: () -> Label) { self.destination = destination; self.label = label() }
    public var body: some View {
        Button {
            openURL(destination)
        } label: {
            label
        }.buttonStyle(.link)
    }
}
extension Link where Label == Text {
    public init(_ titleKey: LocalizedStringKey, destination: URL) { self.init(destination: destination) { Text(titleKey) } }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, destination: URL) { self.init(destination: destination) { Text(title) } }
}

/// A share button: on this desktop it copies what would be shared to the clipboard.
public struct ShareLink<Label: View>: View, PrimitiveView {
    public typealias Body = Never
    let text: String
    let label: Label
    public init<T>(item: T, subject: Text? = nil, message: Text? = nil, @ViewBuilder label: () -> Label) {
        text = Self.describe(item); self.label = label()
    }
    public init<T>(items: [T], subject: Text? = nil, message: Text? = nil, @ViewBuilder label: () -> Label) {
        text = items.map(Self.describe).joined(separator: "\n"); self.label = label()
    }
    public init<T, P>(item: T, subject: Text? = nil, message: Text? = nil, preview: P, @ViewBuilder label: () -> Label) {
        text = Self.describe(item); self.label = label()
    }
    static func describe<T>(_ item: T) -> String {
        if let url = item as? URL { return url.absoluteString }
        return "\(item)"
    }
    func resolve(_ context: ResolveContext) -> [Element] {
        let graph = context.graph, text = self.text
        return resolveView(
            Button {
                graph.host?.copyText(text)
            } label: {
                label
            }, context)
    }
}
extension ShareLink where Label == SwiftUI.Label<Text, Image> {
    public init<T>(item: T, subject: Text? = nil, message: Text? = nil) {
        self.init(item: item, subject: subject, message: message) { SwiftUI.Label("Share", systemImage: "square.and.arrow.up") }
    }
    public init<T, P>(item: T, subject: Text? = nil, message: Text? = nil, preview: P) {
        self.init(item: item, subject: subject, message: message) { SwiftUI.Label("Share", systemImage: "square.and.arrow.up") }
    }
    public init<T>(_ titleKey: LocalizedStringKey, item: T, subject: Text? = nil, message: Text? = nil) {
        self.init(item: item, subject: subject, message: message) { SwiftUI.Label(titleKey, systemImage: "square.and.arrow.up") }
    }
    @_disfavoredOverload
    public init<S: StringProtocol, T>(_ title: S, item: T, subject: Text? = nil, message: Text? = nil) {
        self.init(item: item, subject: subject, message: message) { SwiftUI.Label(title, systemImage: "square.and.arrow.up") }
    }
}
public struct SharePreview {
    public init(_ titleKey: LocalizedStringKey) {}
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S) {}
    public init(_ titleKey: LocalizedStringKey, image: Image) {}
    public init(_ titleKey: LocalizedStringKey, image: Image, icon: Image) {}
    public init(_ titleKey: LocalizedStringKey, icon: Image) {}
}
