import Foundation

/// Rotation and scale about an anchor: drawing and hit testing go through the transform, made
/// from the frame and an amount (an angle, or scales), which may be animating.
final class TransformElement: WrapperElement {
    let make: (CGRect, CGSize) -> CGAffineTransform
    var amount: CGSize
    private var transform = CGAffineTransform.identity
    init(_ child: Element, amount: CGSize, make: @escaping (CGRect, CGSize) -> CGAffineTransform) {
        self.make = make; self.amount = amount
        super.init(child)
    }
    override func place(in rect: CGRect) {
        frame = rect
        child.place(in: rect)
        transform = make(rect, amount)
    }
    override func draw(_ renderer: HostBridge) {
        renderer.save()
        renderer.concat(transform)
        child.draw(renderer)
        renderer.restore()
    }
    override func hits(_ point: CGPoint) -> [InteractiveElement]? { child.hits(point.applying(transform.inverted())) }
    override func contains(_ point: CGPoint) -> Bool { child.contains(point.applying(transform.inverted())) }
    override func outline() -> Path? { nil }
}

final class OpacityElement: WrapperElement {
    var opacity: Double
    init(_ child: Element, opacity: Double) { self.opacity = opacity; super.init(child) }
    override var bleed: CGFloat? { 0 }
    override var drawsOnlyChildren: Bool { false }
    override func place(in rect: CGRect) { frame = rect; child.place(in: rect) }
    override func draw(_ renderer: HostBridge) {
        guard opacity > 0 else { return }
        renderer.save()
        renderer.multiplyOpacity(opacity)
        child.draw(renderer)
        renderer.restore()
    }
    override func hits(_ point: CGPoint) -> [InteractiveElement]? { opacity > 0 ? child.hits(point) : nil }
}

final class ClipElement: WrapperElement {
    let shape: (CGRect) -> Path
    init(_ child: Element, shape: @escaping (CGRect) -> Path) { self.shape = shape; super.init(child) }
    override var bleed: CGFloat? { 0 }
    override var drawsOnlyChildren: Bool { false }
    override func place(in rect: CGRect) { frame = rect; child.place(in: rect) }
    override func draw(_ renderer: HostBridge) {
        renderer.save()
        renderer.clip(shape(frame))
        child.draw(renderer)
        renderer.restore()
    }
    override func hits(_ point: CGPoint) -> [InteractiveElement]? { frame.contains(point) ? child.hits(point) : nil }
    override func contains(_ point: CGPoint) -> Bool { frame.contains(point) && child.contains(point) }
    override func outline() -> Path? { shape(frame) }
}

final class ShadowElement: WrapperElement {
    let color: Color, radius: CGFloat, offset: CGSize
    let environment: EnvironmentValues
    init(_ child: Element, color: Color, radius: CGFloat, offset: CGSize, environment: EnvironmentValues) {
        self.color = color; self.radius = radius; self.offset = offset; self.environment = environment
        super.init(child)
    }
    override func place(in rect: CGRect) { frame = rect; child.place(in: rect) }
    override func draw(_ renderer: HostBridge) {
        if let outline = child.outline() {
            renderer.shadow(outline, color: color.rgba(in: environment), radius: radius, offset: offset)
        }
        child.draw(renderer)
    }
}

/// Space that only takes part in hit testing: `.contentShape(Rectangle())`.
final class ContentShapeElement: WrapperElement {
    override var bleed: CGFloat? { 0 }
    override func place(in rect: CGRect) { frame = rect; child.place(in: rect) }
    override func contains(_ point: CGPoint) -> Bool { frame.contains(point) }
    override func hits(_ point: CGPoint) -> [InteractiveElement]? {
        child.hits(point) ?? (frame.contains(point) ? [] : nil)
    }
}
