import Foundation

/// A symbol image by name, drawn by the host from its icon set.
public struct Image: View, PrimitiveView, Equatable {
    public typealias Body = Never
    public enum ResizingMode: Sendable { case stretch, tile }
    public enum Scale: Sendable { case small, medium, large }
    public enum TemplateRenderingMode: Sendable { case template, original }
    let name: String
    var resizable = false
    var variableValue: Double?

    public init(systemName: String) { name = systemName }
    public init(systemName: String, variableValue: Double?) { name = systemName; self.variableValue = variableValue }
    /// Apps carry no image assets here; a named image shows as a photo symbol.
    public init(_ name: String) { self.name = "photo" }
    public init(_ name: String, bundle: Bundle?) { self.name = "photo" }

    public func resizable(capInsets: EdgeInsets = EdgeInsets(), resizingMode: ResizingMode = .stretch) -> Image {
        var copy = self
        copy.resizable = true
        return copy
    }
    public func renderingMode(_ mode: TemplateRenderingMode?) -> Image { self }
    public func interpolation(_ interpolation: Interpolation) -> Image { self }
    public func antialiased(_ active: Bool) -> Image { self }
    public enum Interpolation: Sendable { case none, low, medium, high }

    func resolve(_ context: ResolveContext) -> [Element] {
        let environment = context.environment
        let font = (environment.font ?? .body)
        var size = font.size * 1.15
        switch environment.imageScale {
        case .small: size *= 0.8
        case .large: size *= 1.3
        case .medium: break
        }
        return [SymbolElement(name: name, resizable: resizable, pointSize: ceil(size), environment: environment)]
    }
}

final class SymbolElement: Element {
    let name: String
    let resizable: Bool
    let pointSize: CGFloat
    let environment: EnvironmentValues
    init(name: String, resizable: Bool, pointSize: CGFloat, environment: EnvironmentValues) {
        self.name = name; self.resizable = resizable; self.pointSize = pointSize; self.environment = environment
    }
    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        guard resizable else { return CGSize(width: pointSize, height: pointSize) }
        return proposal.replacingUnspecifiedDimensions(by: CGSize(width: pointSize, height: pointSize))
    }
    override var bleed: CGFloat? { 2 }
    override func draw(_ renderer: HostBridge) {
        renderer.drawSymbol(name, in: frame, paint: environment.foregroundRGBA(in: frame))
    }
    override func contains(_ point: CGPoint) -> Bool { frame.contains(point) }
}

public enum ContentMode: Hashable, CaseIterable, Sendable { case fit, fill }

extension View {
    public func aspectRatio(_ ratio: CGFloat? = nil, contentMode: ContentMode) -> some View {
        modifier(ElementModifier { element, _ in AspectRatioElement(element, ratio: ratio ?? 1, fill: contentMode == .fill) })
    }
    public func aspectRatio(_ ratio: CGSize, contentMode: ContentMode) -> some View {
        aspectRatio(ratio.width / max(ratio.height, 0.0001), contentMode: contentMode)
    }
    public func scaledToFit() -> some View { aspectRatio(contentMode: .fit) }
    public func scaledToFill() -> some View { aspectRatio(contentMode: .fill) }
    public func imageScale(_ scale: Image.Scale) -> some View {
        modifier(EnvironmentModifier { $0.imageScale = scale })
    }
    public func symbolRenderingMode(_ mode: SymbolRenderingMode?) -> some View { self }
    public func symbolVariant(_ variant: SymbolVariants) -> some View { self }
}

public struct SymbolRenderingMode: Sendable {
    public static let monochrome = SymbolRenderingMode(), multicolor = SymbolRenderingMode()
    public static let hierarchical = SymbolRenderingMode(), palette = SymbolRenderingMode()
}
public struct SymbolVariants: Sendable {
    public static let none = SymbolVariants(), fill = SymbolVariants(), circle = SymbolVariants(), square = SymbolVariants(),
        slash = SymbolVariants()
}

private enum ImageScaleKey: EnvironmentKey { static let defaultValue = Image.Scale.medium }
extension EnvironmentValues {
    public var imageScale: Image.Scale {
        get { self[ImageScaleKey.self] }
        set { self[ImageScaleKey.self] = newValue }
    }
}

/// Keeps a width-to-height ratio inside what is offered.
final class AspectRatioElement: WrapperElement {
    let ratio: CGFloat
    let fill: Bool
    init(_ child: Element, ratio: CGFloat, fill: Bool) { self.ratio = ratio; self.fill = fill; super.init(child) }
    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        let offered = proposal.replacingUnspecifiedDimensions(by: child.size(.unspecified))
        var width = offered.width, height = offered.width / ratio
        if (height > offered.height) != fill { height = offered.height; width = height * ratio }
        if !width.isFinite || !height.isFinite { return child.size(proposal) }
        return child.size(ProposedViewSize(width: width, height: height))
    }
    override func place(in rect: CGRect) {
        frame = rect
        child.place(in: Alignment.center.place(measure(ProposedViewSize(rect.size)), in: rect))
    }
}

public struct Label<Title: View, Icon: View>: View {
    let title: Title
    let icon: Icon
    @Environment(\.labelStyle) private var style
    @Environment(\.customLabelStyle) private var custom
    public init(@ViewBuilder title: () -> Title, @ViewBuilder icon: () -> Icon) { self.title = title(); self.icon = icon() }
    public var body: some View {
        if let custom {
            custom.make(LabelStyleConfiguration(title: .init(content: AnyView(title)), icon: .init(content: AnyView(icon))))
                .environment(\.customLabelStyle, nil)
        } else if style == .unavailable {
            VStack(spacing: 12) {
                icon.font(.system(size: 44)).foregroundStyle(.secondary)
                title.font(.title2.bold()).multilineTextAlignment(.center)
            }
        } else {
            HStack(spacing: 6) {
                if style != .titleOnly { icon }
                if style != .iconOnly { title }
            }
        }
    }
}

extension Label where Title == Text, Icon == Image {
    public init(_ titleKey: LocalizedStringKey, systemImage: String) {
        self.init(title: { Text(titleKey) }, icon: { Image(systemName: systemImage) })
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, systemImage: String) {
        self.init(title: { Text(title) }, icon: { Image(systemName: systemImage) })
    }
}

/// How a label looks: `.labelStyle(.iconOnly)` or a style of the app's own.
@MainActor @preconcurrency
public protocol LabelStyle {
    associatedtype Body: View
    typealias Configuration = LabelStyleConfiguration
    @ViewBuilder func makeBody(configuration: Configuration) -> Body
}

public struct LabelStyleConfiguration {
    public struct Title: View {
        let content: AnyView
        public var body: some View { content }
    }
    public struct Icon: View {
        let content: AnyView
        public var body: some View { content }
    }
    public let title: Title
    public let icon: Icon
}

struct AnyLabelStyle {
    let make: @MainActor (LabelStyleConfiguration) -> AnyView
}

private enum CustomLabelStyleKey: EnvironmentKey { static let defaultValue: AnyLabelStyle? = nil }
extension EnvironmentValues {
    var customLabelStyle: AnyLabelStyle? {
        get { self[CustomLabelStyleKey.self] }
        set { self[CustomLabelStyleKey.self] = newValue }
    }
}

extension LabelStyle where Self == LabelStyleKind {
    public static var automatic: LabelStyleKind { LabelStyleKind(kind: 0) }
    public static var titleAndIcon: LabelStyleKind { LabelStyleKind(kind: 0) }
    public static var titleOnly: LabelStyleKind { LabelStyleKind(kind: 1) }
    public static var iconOnly: LabelStyleKind { LabelStyleKind(kind: 2) }
}

public struct LabelStyleKind: LabelStyle, Equatable, Sendable {
    let kind: Int
    public func makeBody(configuration: Configuration) -> some View { EmptyView() }
    static let automatic = LabelStyleKind(kind: 0)
    static let titleAndIcon = LabelStyleKind(kind: 0)
    static let titleOnly = LabelStyleKind(kind: 1)
    static let iconOnly = LabelStyleKind(kind: 2)
    /// A large icon over a bold title, as an empty screen shows it.
    static let unavailable = LabelStyleKind(kind: 3)
}
private enum LabelStyleKey: EnvironmentKey { static let defaultValue = LabelStyleKind.automatic }
extension EnvironmentValues {
    var labelStyle: LabelStyleKind {
        get { self[LabelStyleKey.self] }
        set { self[LabelStyleKey.self] = newValue }
    }
}
extension View {
    public func labelStyle<S: LabelStyle>(_ style: S) -> some View {
        modifier(
            EnvironmentModifier {
                if let kind = style as? LabelStyleKind {
                    $0.labelStyle = kind
                    $0.customLabelStyle = nil
                } else {
                    $0.customLabelStyle = AnyLabelStyle { AnyView(style.makeBody(configuration: $0)) }
                }
            })
    }
    public func labelsHidden() -> some View { modifier(EnvironmentModifier { $0.labelsHidden = true }) }
}
private enum LabelsHiddenKey: EnvironmentKey { static let defaultValue = false }
extension EnvironmentValues {
    var labelsHidden: Bool {
        get { self[LabelsHiddenKey.self] }
        set { self[LabelsHiddenKey.self] = newValue }
    }
}
