import Foundation
internal import ZentoroHostInterface

/// Progress as a bar, or as a ring with `.progressViewStyle(.circular)`; without a value, a spinner.
public struct ProgressView<Label: View>: View {
    let fraction: Double?
    let label: Label?
    @Environment(\.progressStyle) private var style

    public var body: some View {
        VStack(alignment: .leading, spacing: 4) {
            if let label { label }
            if let fraction, style != .circular {
                GeometryReader { proxy in
                    ZStack(alignment: .leading) {
                        Capsule().fill(Color.fill)
                        Capsule().fill(.tint).frame(width: proxy.size.width * fraction)
                    }
                }
                .frame(height: 6)
            } else {
                ZStack {
                    Circle().stroke(Color.fill, lineWidth: 3)
                    Circle().trim(from: 0, to: fraction ?? 0.3).stroke(.tint, style: StrokeStyle(lineWidth: 3, lineCap: .round))
                        .rotationEffect(.degrees(-90))
                }
                .frame(width: 20, height: 20)
            }
        }
    }
}

extension ProgressView where Label == EmptyView {
    public init() { fraction = nil; label = nil }
    public init<V: BinaryFloatingPoint>(value: V?, total: V = 1.0) {
        fraction = value.map { total > 0 ? clamp(Double($0 / total), 0, 1) : 0 }
        label = nil
    }
}

extension ProgressView where Label == Text {
    public init(_ titleKey: LocalizedStringKey) { fraction = nil; label = Text(titleKey) }
    public init<V: BinaryFloatingPoint>(_ titleKey: LocalizedStringKey, value: V?, total: V = 1.0) {
        fraction = value.map { total > 0 ? clamp(Double($0 / total), 0, 1) : 0 }
        label = Text(titleKey)
    }
}

extension ProgressView {
    public init<V: BinaryFloatingPoint>(value: V?, total: V = 1.0, @ViewBuilder label: () -> Label) {
        fraction = value.map { total > 0 ? clamp(Double($0 / total), 0, 1) : 0 }
        self.label = label()
    }
}

public struct ProgressStyleKind: Equatable, Sendable {
    let kind: Int
    public static let automatic = ProgressStyleKind(kind: 0)
    public static let linear = ProgressStyleKind(kind: 0)
    public static let circular = ProgressStyleKind(kind: 1)
}
private enum ProgressStyleKey: EnvironmentKey { static let defaultValue = ProgressStyleKind.automatic }
extension EnvironmentValues {
    var progressStyle: ProgressStyleKind {
        get { self[ProgressStyleKey.self] }
        set { self[ProgressStyleKey.self] = newValue }
    }
}
extension View {
    public func progressViewStyle(_ style: ProgressStyleKind) -> some View { modifier(EnvironmentModifier { $0.progressStyle = style }) }
}
