import Foundation

/// An outline that fills the space it is offered, drawn in the foreground style unless filled
/// or stroked with something else.
public protocol Shape: Animatable, View {
    func path(in rect: CGRect) -> Path
    func sizeThatFits(_ proposal: ProposedViewSize) -> CGSize
}

extension Shape {
    public func sizeThatFits(_ proposal: ProposedViewSize) -> CGSize { proposal.replacingUnspecifiedDimensions() }
}

public protocol InsettableShape: Shape {
    associatedtype InsetShape: InsettableShape
    func inset(by amount: CGFloat) -> InsetShape
}

extension Shape {
    public var body: ShapeView {
        ShapeView(shape: ShapeSource(self), sizing: { self.sizeThatFits($0) }, fill: nil, stroke: nil)
    }
}

/// A shape with its paint: what the kit turns into a shape element.
public struct ShapeView: View, PrimitiveView {
    public typealias Body = Never
    var shape: ShapeSource
    let sizing: (ProposedViewSize) -> CGSize
    let fill: AnyShapeStyle?
    let stroke: (AnyShapeStyle?, StrokeStyle, inset: Bool)?
    var evenOdd = false

    func resolve(_ context: ResolveContext) -> [Element] {
        var view = self
        if let presented = shape.presented { view.shape = presented(context) }
        let element = ShapeElement(view: view, environment: context.environment)
        animateColor(of: element, context)
        return [element]
    }
}

final class ShapeElement: Element {
    let view: ShapeView
    let environment: EnvironmentValues
    /// The solid colour drawn, while it animates.
    var color: RGBA?
    init(view: ShapeView, environment: EnvironmentValues) { self.view = view; self.environment = environment }

    private func path(in rect: CGRect) -> Path {
        var rect = rect
        if let stroke = view.stroke, stroke.inset {
            rect = rect.insetBy(dx: stroke.1.lineWidth / 2, dy: stroke.1.lineWidth / 2)
        }
        var path = view.shape(rect)
        path.evenOdd = view.evenOdd
        return path
    }
    override func measure(_ proposal: ProposedViewSize) -> CGSize { view.sizing(proposal) }
    /// A stroke is centred on the outline; shapes may also draw past a frame that is smaller than they are.
    override var bleed: CGFloat? { (view.stroke.map { $0.1.lineWidth / 2 } ?? 0) + 2 }
    override func draw(_ renderer: HostBridge) {
        let path = path(in: frame)
        func paint(_ style: AnyShapeStyle?) -> Paint {
            if let color { return .solid(color) }
            if let style { return style.paint(in: frame, environment: environment) }
            return environment.foregroundRGBA(in: frame)
        }
        if let stroke = view.stroke {
            renderer.stroke(path, paint(stroke.0), stroke.1)
        } else {
            renderer.fill(path, paint(view.fill))
        }
    }
    override func contains(_ point: CGPoint) -> Bool {
        frame.contains(point) && (view.stroke != nil || path(in: frame).contains(point))
    }
    /// A stroke alone lets the pointer through to what lies beneath, as a ring or a border
    /// drawn over a control does; a gesture on the stroke still catches its frame.
    override func hits(_ point: CGPoint) -> [InteractiveElement]? {
        view.stroke == nil && contains(point) ? [] : nil
    }
    override func outline() -> Path? { path(in: frame) }
}

extension Shape {
    private var shapeView: ShapeView {
        ShapeView(shape: ShapeSource(self), sizing: { self.sizeThatFits($0) }, fill: nil, stroke: nil)
    }
    public func fill<S: ShapeStyle>(_ style: S, style fillStyle: FillStyle = FillStyle()) -> ShapeView {
        var view = ShapeView(shape: shapeView.shape, sizing: shapeView.sizing, fill: AnyShapeStyle(style), stroke: nil)
        view.evenOdd = fillStyle.isEOFilled
        return view
    }
    public func fill(style fillStyle: FillStyle = FillStyle()) -> ShapeView {
        var view = shapeView
        view.evenOdd = fillStyle.isEOFilled
        return view
    }
    public func stroke<S: ShapeStyle>(_ style: S, lineWidth: CGFloat = 1) -> ShapeView {
        ShapeView(
            shape: shapeView.shape, sizing: shapeView.sizing, fill: nil,
            stroke: (AnyShapeStyle(style), StrokeStyle(lineWidth: lineWidth), false))
    }
    public func stroke<S: ShapeStyle>(_ style: S, style strokeStyle: StrokeStyle, antialiased: Bool = true) -> ShapeView {
        ShapeView(shape: shapeView.shape, sizing: shapeView.sizing, fill: nil, stroke: (AnyShapeStyle(style), strokeStyle, false))
    }
    public func stroke(lineWidth: CGFloat = 1) -> ShapeView {
        ShapeView(shape: shapeView.shape, sizing: shapeView.sizing, fill: nil, stroke: (nil, StrokeStyle(lineWidth: lineWidth), false))
    }
    public func stroke(style strokeStyle: StrokeStyle) -> ShapeView {
        ShapeView(shape: shapeView.shape, sizing: shapeView.sizing, fill: nil, stroke: (nil, strokeStyle, false))
    }
    public func strokeBorder<S: ShapeStyle>(_ style: S, lineWidth: CGFloat = 1, antialiased: Bool = true) -> ShapeView {
        ShapeView(
            shape: shapeView.shape, sizing: shapeView.sizing, fill: nil,
            stroke: (AnyShapeStyle(style), StrokeStyle(lineWidth: lineWidth), true))
    }
    public func strokeBorder<S: ShapeStyle>(_ style: S, style strokeStyle: StrokeStyle, antialiased: Bool = true) -> ShapeView {
        ShapeView(shape: shapeView.shape, sizing: shapeView.sizing, fill: nil, stroke: (AnyShapeStyle(style), strokeStyle, true))
    }
    public func strokeBorder(lineWidth: CGFloat = 1, antialiased: Bool = true) -> ShapeView {
        ShapeView(shape: shapeView.shape, sizing: shapeView.sizing, fill: nil, stroke: (nil, StrokeStyle(lineWidth: lineWidth), true))
    }
    public func trim(from start: CGFloat = 0, to end: CGFloat = 1) -> TrimmedShape<Self> {
        TrimmedShape(base: self, start: start, end: end)
    }
    public func rotation(_ angle: Angle, anchor: UnitPoint = .center) -> TransformedShape<Self> {
        TransformedShape(base: self) { rect in
            let a = anchor.point(in: rect)
            return CGAffineTransform(translationX: -a.x, y: -a.y)
                .concatenating(CGAffineTransform(rotationAngle: CGFloat(angle.radians)))
                .concatenating(CGAffineTransform(translationX: a.x, y: a.y))
        }
    }
    public func offset(x: CGFloat = 0, y: CGFloat = 0) -> TransformedShape<Self> {
        TransformedShape(base: self) { _ in CGAffineTransform(translationX: x, y: y) }
    }
    public func scale(_ scale: CGFloat, anchor: UnitPoint = .center) -> TransformedShape<Self> {
        TransformedShape(base: self) { rect in
            let a = anchor.point(in: rect)
            return CGAffineTransform(translationX: -a.x, y: -a.y)
                .concatenating(CGAffineTransform(scaleX: scale, y: scale))
                .concatenating(CGAffineTransform(translationX: a.x, y: a.y))
        }
    }
}

public struct TrimmedShape<Base: Shape>: Shape {
    var base: Base
    var start: CGFloat, end: CGFloat
    public func path(in rect: CGRect) -> Path { base.path(in: rect).trimmedPath(from: start, to: end) }
    public var animatableData: AnimatablePair<Base.AnimatableData, AnimatablePair<CGFloat, CGFloat>> {
        get { AnimatablePair(base.animatableData, AnimatablePair(start, end)) }
        set {
            base.animatableData = newValue.first
            (start, end) = (newValue.second.first, newValue.second.second)
        }
    }
}

public struct TransformedShape<Base: Shape>: Shape {
    let base: Base
    let transform: (CGRect) -> CGAffineTransform
    public func path(in rect: CGRect) -> Path { base.path(in: rect).applying(transform(rect)) }
}

public struct Rectangle: InsettableShape {
    var insetAmount: CGFloat = 0
    public init() {}
    public func path(in rect: CGRect) -> Path { Path(rect.insetBy(dx: insetAmount, dy: insetAmount)) }
    public func inset(by amount: CGFloat) -> Rectangle { var s = self; s.insetAmount += amount; return s }
}

public struct RoundedRectangle: InsettableShape {
    public var cornerSize: CGSize
    public var style: RoundedCornerStyle
    var insetAmount: CGFloat = 0
    public init(cornerRadius: CGFloat, style: RoundedCornerStyle = .continuous) {
        cornerSize = CGSize(width: cornerRadius, height: cornerRadius); self.style = style
    }
    public init(cornerSize: CGSize, style: RoundedCornerStyle = .continuous) { self.cornerSize = cornerSize; self.style = style }
    public func path(in rect: CGRect) -> Path {
        Path(roundedRect: rect.insetBy(dx: insetAmount, dy: insetAmount), cornerSize: cornerSize)
    }
    public func inset(by amount: CGFloat) -> RoundedRectangle { var s = self; s.insetAmount += amount; return s }
    public var animatableData: CGSize.AnimatableData {
        get { cornerSize.animatableData }
        set { cornerSize.animatableData = newValue }
    }
}

public struct UnevenRoundedRectangle: Shape {
    let radius: CGFloat
    public init(
        topLeadingRadius: CGFloat = 0, bottomLeadingRadius: CGFloat = 0, bottomTrailingRadius: CGFloat = 0,
        topTrailingRadius: CGFloat = 0, style: RoundedCornerStyle = .continuous
    ) {
        radius = max(topLeadingRadius, bottomLeadingRadius, bottomTrailingRadius, topTrailingRadius)
    }
    public func path(in rect: CGRect) -> Path { Path(roundedRect: rect, cornerRadius: radius) }
}

public struct Circle: InsettableShape {
    var insetAmount: CGFloat = 0
    public init() {}
    public func path(in rect: CGRect) -> Path {
        let side = min(rect.width, rect.height) - insetAmount * 2
        return Path(ellipseIn: CGRect(x: rect.midX - side / 2, y: rect.midY - side / 2, width: max(0, side), height: max(0, side)))
    }
    public func inset(by amount: CGFloat) -> Circle { var s = self; s.insetAmount += amount; return s }
}

public struct Ellipse: InsettableShape {
    var insetAmount: CGFloat = 0
    public init() {}
    public func path(in rect: CGRect) -> Path { Path(ellipseIn: rect.insetBy(dx: insetAmount, dy: insetAmount)) }
    public func inset(by amount: CGFloat) -> Ellipse { var s = self; s.insetAmount += amount; return s }
}

public struct Capsule: InsettableShape {
    var insetAmount: CGFloat = 0
    public init(style: RoundedCornerStyle = .continuous) {}
    public func path(in rect: CGRect) -> Path {
        let r = rect.insetBy(dx: insetAmount, dy: insetAmount)
        return Path(roundedRect: r, cornerRadius: min(r.width, r.height) / 2)
    }
    public func inset(by amount: CGFloat) -> Capsule { var s = self; s.insetAmount += amount; return s }
}

extension Path: Shape {
    public func path(in rect: CGRect) -> Path { self }
}

public struct AnyShape: Shape {
    let make: (CGRect) -> Path
    public init<S: Shape>(_ shape: S) { make = { shape.path(in: $0) } }
    public func path(in rect: CGRect) -> Path { make(rect) }
}

extension Shape where Self == Rectangle { public static var rect: Rectangle { Rectangle() } }
extension Shape where Self == Circle { public static var circle: Circle { Circle() } }
extension Shape where Self == Capsule { public static var capsule: Capsule { Capsule() } }
extension Shape where Self == Ellipse { public static var ellipse: Ellipse { Ellipse() } }
extension Shape where Self == RoundedRectangle {
    public static func rect(cornerRadius: CGFloat, style: RoundedCornerStyle = .continuous) -> RoundedRectangle {
        RoundedRectangle(cornerRadius: cornerRadius, style: style)
    }
}

// Colours and gradients are views that fill the space offered to them.
extension Color: View, PrimitiveView {
    public typealias Body = Never
    func resolve(_ context: ResolveContext) -> [Element] { Rectangle().fill(self).resolve(context) }
}
extension LinearGradient: View, PrimitiveView {
    public typealias Body = Never
    func resolve(_ context: ResolveContext) -> [Element] { Rectangle().fill(self).resolve(context) }
}
extension RadialGradient: View, PrimitiveView {
    public typealias Body = Never
    func resolve(_ context: ResolveContext) -> [Element] { Rectangle().fill(self).resolve(context) }
}
extension AngularGradient: View, PrimitiveView {
    public typealias Body = Never
    func resolve(_ context: ResolveContext) -> [Element] { Rectangle().fill(self).resolve(context) }
}
