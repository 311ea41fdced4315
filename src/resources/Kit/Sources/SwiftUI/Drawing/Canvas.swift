import Foundation

/// Immediate-mode drawing: `Canvas { context, size in context.fill(path, with: .color(.red)) }`.
public struct Canvas<Symbols: View>: View, PrimitiveView {
    public typealias Body = Never
    let renderer: (inout GraphicsContext, CGSize) -> Void
    public init(
        opaque: Bool = false, colorMode: ColorRenderingMode = .nonLinear, rendersAsynchronously: Bool = false,
        renderer: @escaping (inout GraphicsContext, CGSize) -> Void
    ) where Symbols == EmptyView {
        self.renderer = renderer
    }
    func resolve(_ context: ResolveContext) -> [Element] {
        [CanvasElement(renderer: renderer, context: context)]
    }
}

public enum ColorRenderingMode: Sendable { case nonLinear, linear, extendedLinear }

final class CanvasElement: Element {
    let renderer: (inout GraphicsContext, CGSize) -> Void
    let context: ResolveContext
    init(renderer: @escaping (inout GraphicsContext, CGSize) -> Void, context: ResolveContext) {
        self.renderer = renderer; self.context = context
    }
    override func measure(_ proposal: ProposedViewSize) -> CGSize { proposal.replacingUnspecifiedDimensions() }
    override func draw(_ renderer: HostBridge) {
        renderer.save()
        renderer.clip(Path(frame))
        renderer.concat(CGAffineTransform(translationX: frame.minX, y: frame.minY))
        var graphics = GraphicsContext(renderer: renderer, resolveContext: context)
        self.renderer(&graphics, frame.size)
        renderer.restore()
    }
    override func contains(_ point: CGPoint) -> Bool { frame.contains(point) }
}

/// What a Canvas draws with. Copies keep their own transform, opacity and clip.
@MainActor
public struct GraphicsContext {
    let renderer: HostBridge
    let resolveContext: ResolveContext
    public var transform = CGAffineTransform.identity
    public var opacity: Double = 1
    var clips: [Path] = []
    public var environment: EnvironmentValues { resolveContext.environment }

    init(renderer: HostBridge, resolveContext: ResolveContext) { self.renderer = renderer; self.resolveContext = resolveContext }

    public enum Shading {
        case color(Color)
        case style(AnyShapeStyle)
        case linearGradient(Gradient, startPoint: CGPoint, endPoint: CGPoint)
        case radialGradient(Gradient, center: CGPoint, startRadius: CGFloat, endRadius: CGFloat)
        case conicGradient(Gradient, center: CGPoint, angle: Angle)

        public static var foreground: Shading { .style(AnyShapeStyle(HierarchicalShapeStyle.primary)) }
        public static func color(red: Double, green: Double, blue: Double, opacity: Double = 1) -> Shading {
            .color(Color(red: red, green: green, blue: blue, opacity: opacity))
        }
        public static func linearGradient(_ gradient: Gradient, startPoint: CGPoint, endPoint: CGPoint, options: GradientOptions) -> Shading
        {
            .linearGradient(gradient, startPoint: startPoint, endPoint: endPoint)
        }
        public static func style<S: ShapeStyle>(_ style: S) -> Shading { .style(AnyShapeStyle(style)) }
    }
    public struct GradientOptions: OptionSet, Sendable {
        public let rawValue: UInt32
        public init(rawValue: UInt32) { self.rawValue = rawValue }
    }
    public enum BlendMode: Sendable { case normal, multiply, screen, overlay, darken, lighten, plusLighter, clear, copy }
    public var blendMode: BlendMode = .normal

    private func paint(_ shading: Shading, bounds: CGRect) -> Paint {
        let environment = resolveContext.environment
        switch shading {
        case .color(let color): return .solid(color.rgba(in: environment))
        case .style(let style): return style.paint(in: bounds, environment: environment)
        case let .linearGradient(gradient, start, end): return .linear(gradient.resolved(environment), start, end)
        case let .radialGradient(gradient, center, r0, r1): return .radial(gradient.resolved(environment), center, r0, r1)
        case let .conicGradient(gradient, center, angle): return .angular(gradient.resolved(environment), center, angle.radians)
        }
    }

    private func withState(_ body: () -> Void) {
        renderer.save()
        renderer.concat(transform)
        for clip in clips { renderer.clip(clip) }
        if opacity < 1 { renderer.multiplyOpacity(opacity) }
        body()
        renderer.restore()
    }

    public func fill(_ path: Path, with shading: Shading, style: FillStyle = FillStyle()) {
        var path = path
        path.evenOdd = style.isEOFilled
        withState { renderer.fill(path, paint(shading, bounds: path.boundingRect)) }
    }
    public func stroke(_ path: Path, with shading: Shading, style: StrokeStyle) {
        withState { renderer.stroke(path, paint(shading, bounds: path.boundingRect), style) }
    }
    public func stroke(_ path: Path, with shading: Shading, lineWidth: CGFloat = 1) {
        stroke(path, with: shading, style: StrokeStyle(lineWidth: lineWidth))
    }

    public mutating func translateBy(x: CGFloat, y: CGFloat) {
        transform = CGAffineTransform(translationX: x, y: y).concatenating(transform)
    }
    public mutating func scaleBy(x: CGFloat, y: CGFloat) { transform = CGAffineTransform(scaleX: x, y: y).concatenating(transform) }
    public mutating func rotate(by angle: Angle) { transform = CGAffineTransform(rotationAngle: angle.radians).concatenating(transform) }
    public mutating func concatenate(_ matrix: CGAffineTransform) { transform = matrix.concatenating(transform) }
    public mutating func clip(to path: Path, style: FillStyle = FillStyle(), options: ClipOptions = ClipOptions()) {
        clips.append(path.applying(transform))
    }
    public struct ClipOptions: OptionSet, Sendable {
        public let rawValue: UInt32
        public init(rawValue: UInt32) { self.rawValue = rawValue }
        public static let inverse = ClipOptions(rawValue: 1)
    }
    public mutating func addFilter(_ filter: Filter, options: FilterOptions = FilterOptions()) {}
    public struct Filter: Sendable {
        public static func shadow(color: Color = .black, radius: CGFloat, x: CGFloat = 0, y: CGFloat = 0) -> Filter { Filter() }
        public static func blur(radius: CGFloat) -> Filter { Filter() }
    }
    public struct FilterOptions: OptionSet, Sendable {
        public let rawValue: UInt32
        public init(rawValue: UInt32) { self.rawValue = rawValue }
    }

    /// A copy for drawing a group of things with its own state.
    public func drawLayer(content: (inout GraphicsContext) -> Void) {
        var copy = self
        content(&copy)
    }

    private func textElement(_ text: Text) -> TextElement? {
        text.resolve(resolveContext).first as? TextElement
    }
    public func draw(_ text: Text, at point: CGPoint, anchor: UnitPoint = .center) {
        guard let element = textElement(text) else { return }
        let s = element.size(ProposedViewSize(width: nil, height: nil))
        let rect = CGRect(x: point.x - s.width * anchor.x, y: point.y - s.height * anchor.y, width: s.width, height: s.height)
        withState { renderer.drawText(element.runs, alignment: .leading, lineLimit: nil, in: rect) }
    }
    public func draw(_ text: Text, in rect: CGRect) {
        guard let element = textElement(text) else { return }
        withState { renderer.drawText(element.runs, alignment: element.alignment, lineLimit: nil, in: rect) }
    }
    public func draw(_ image: Image, in rect: CGRect, style: FillStyle = FillStyle()) {
        let paint = resolveContext.environment.foregroundRGBA(in: rect)
        withState { renderer.drawSymbol(image.name, in: rect, paint: paint) }
    }
    public func draw(_ image: Image, at point: CGPoint, anchor: UnitPoint = .center) {
        let side: CGFloat = 20
        draw(image, in: CGRect(x: point.x - side * anchor.x, y: point.y - side * anchor.y, width: side, height: side))
    }
    public func resolve(_ text: Text) -> Text { text }
    public func resolve(_ image: Image) -> Image { image }
}
