import Foundation

typealias ContentResolver = @MainActor (ResolveContext) -> [Element]

/// A reusable change to a view: `struct Card: ViewModifier { func body(content: Content) -> some View }`.
@MainActor @preconcurrency
public protocol ViewModifier {
    associatedtype Body: View
    typealias Content = _ViewModifier_Content<Self>
    @ViewBuilder @MainActor @preconcurrency func body(content: Content) -> Body
}

/// Modifiers the kit applies itself to the resolved content.
@MainActor
protocol PrimitiveModifier {
    func resolve(content: ContentResolver, context: ResolveContext) -> [Element]
}

extension ViewModifier where Body == Never {
    public func body(content: Content) -> Never { fatalError("\(Self.self) is applied by the kit") }
}

/// Stands for the modified view inside a modifier's body.
public struct _ViewModifier_Content<Modifier: ViewModifier>: View, PrimitiveView {
    public typealias Body = Never
    func resolve(_ context: ResolveContext) -> [Element] {
        guard let content = context.modifierContent else { return [] }
        var inner = context
        inner.modifierContent = nil
        return content(inner)
    }
}

public struct ModifiedContent<Content, Modifier> {
    public var content: Content
    public var modifier: Modifier
    public init(content: Content, modifier: Modifier) { self.content = content; self.modifier = modifier }
}

extension ModifiedContent: View, PrimitiveView where Content: View, Modifier: ViewModifier {
    public typealias Body = Never
    func resolve(_ context: ResolveContext) -> [Element] {
        let content = self.content
        let saved = context.modifierContent
        let resolver: ContentResolver = { inner in
            var inner = inner
            inner.modifierContent = saved
            return resolveView(content, inner)
        }
        if let primitive = modifier as? any PrimitiveModifier {
            return primitive.resolve(content: resolver, context: context)
        }
        var inner = context.child(.type(ObjectIdentifier(Modifier.self)))
        let modifier = presented(self.modifier, inner)
        context.graph.bindDynamicProperties(of: modifier, context: inner)
        inner.modifierContent = { resolver($0.child(.index(0))) }
        return resolveView(modifier.body(content: _ViewModifier_Content<Modifier>()), inner)
    }
}

extension ModifiedContent: ViewModifier where Content: ViewModifier, Modifier: ViewModifier {
    public func body(content: _ViewModifier_Content<Self>) -> some View {
        content.modifier(self.content).modifier(self.modifier)
    }
}

extension ViewModifier {
    public func concat<T: ViewModifier>(_ modifier: T) -> ModifiedContent<Self, T> {
        ModifiedContent(content: self, modifier: modifier)
    }
}

extension View {
    public func modifier<M: ViewModifier>(_ modifier: M) -> ModifiedContent<Self, M> {
        ModifiedContent(content: self, modifier: modifier)
    }
}

/// A modifier that wraps each resolved element of its content.
struct ElementModifier: ViewModifier, PrimitiveModifier {
    let wrap: @MainActor (Element, ResolveContext) -> Element
    func resolve(content: ContentResolver, context: ResolveContext) -> [Element] {
        content(context).map { wrap($0, context) }
    }
}

/// A modifier that needs the content's place in the graph (for storage of its own).
struct StatefulModifier: ViewModifier, PrimitiveModifier {
    let tag: String
    let apply: @MainActor (ContentResolver, ResolveContext) -> [Element]
    func resolve(content: ContentResolver, context: ResolveContext) -> [Element] {
        apply(content, context.child(.id(AnyHashable(tag))))
    }
}

/// Resolves `content` into one element: several become a VStack, as in SwiftUI's implicit stacks.
@MainActor
func single(_ elements: [Element], context: ResolveContext) -> Element {
    if elements.count == 1 { return elements[0] }
    if elements.isEmpty { return EmptyElement() }
    return StackElement(axis: .vertical, crossFraction: 0.5, spacing: nil, children: elements)
}

final class EmptyElement: Element {
    override var bleed: CGFloat? { 0 }
}

extension View {
    public func padding(_ insets: EdgeInsets) -> some View {
        modifier(ElementModifier { element, context in PaddingElement.make(element, insets: insets, pass: context.graph.pass) })
    }
    public func padding(_ edges: Edge.Set = .all, _ length: CGFloat? = nil) -> some View {
        padding(EdgeInsets(edges, length ?? 16))
    }
    public func padding(_ length: CGFloat) -> some View { padding(.all, length) }

    public func frame(width: CGFloat? = nil, height: CGFloat? = nil, alignment: Alignment = .center) -> some View {
        modifier(
            ElementModifier { element, context in
                FixedFrameElement.make(
                    element, width: width.map { context.animated($0, .frameWidth) },
                    height: height.map { context.animated($0, .frameHeight) },
                    alignment: alignment, pass: context.graph.pass)
            })
    }
    public func frame(
        minWidth: CGFloat? = nil, idealWidth: CGFloat? = nil, maxWidth: CGFloat? = nil,
        minHeight: CGFloat? = nil, idealHeight: CGFloat? = nil, maxHeight: CGFloat? = nil,
        alignment: Alignment = .center
    ) -> some View {
        modifier(
            ElementModifier { element, context in
                FlexibleFrameElement.make(
                    element, minWidth: minWidth, idealWidth: idealWidth, maxWidth: maxWidth, minHeight: minHeight,
                    idealHeight: idealHeight, maxHeight: maxHeight, alignment: alignment, pass: context.graph.pass)
            })
    }
    public func fixedSize() -> some View { fixedSize(horizontal: true, vertical: true) }
    public func fixedSize(horizontal: Bool, vertical: Bool) -> some View {
        modifier(ElementModifier { element, context in FixedSizeElement(element, horizontal: horizontal, vertical: vertical) })
    }
    public func layoutPriority(_ value: Double) -> some View {
        modifier(ElementModifier { element, context in LayoutPriorityElement(element, priority: value) })
    }
    public func offset(_ offset: CGSize) -> some View {
        modifier(ElementModifier { element, context in context.animate(OffsetElement(element, offset: offset), \.offset, .offset) })
    }
    public func offset(x: CGFloat = 0, y: CGFloat = 0) -> some View { offset(CGSize(width: x, height: y)) }
    public func position(_ position: CGPoint) -> some View {
        modifier(
            ElementModifier { element, context in context.animate(PositionElement(element, position: position), \.position, .position) })
    }
    public func position(x: CGFloat = 0, y: CGFloat = 0) -> some View { position(CGPoint(x: x, y: y)) }

    public func background<V: View>(alignment: Alignment = .center, @ViewBuilder content: () -> V) -> some View {
        let layer = content()
        return modifier(LayerModifier(layer: AnyView(layer), alignment: alignment, above: false))
    }
    @_disfavoredOverload
    public func background<V: View>(_ view: V, alignment: Alignment = .center) -> some View {
        modifier(LayerModifier(layer: AnyView(view), alignment: alignment, above: false))
    }
    public func background<S: ShapeStyle>(_ style: S, ignoresSafeAreaEdges edges: Edge.Set = .all) -> some View {
        modifier(LayerModifier(layer: AnyView(Rectangle().fill(style)), alignment: .center, above: false))
    }
    public func background<S: ShapeStyle, T: Shape>(_ style: S, in shape: T, fillStyle: FillStyle = FillStyle()) -> some View {
        modifier(LayerModifier(layer: AnyView(shape.fill(style)), alignment: .center, above: false))
    }
    public func background() -> some View { background(.background) }
    public func overlay<V: View>(alignment: Alignment = .center, @ViewBuilder content: () -> V) -> some View {
        modifier(LayerModifier(layer: AnyView(content()), alignment: alignment, above: true))
    }
    public func overlay<V: View>(_ view: V, alignment: Alignment = .center) -> some View {
        modifier(LayerModifier(layer: AnyView(view), alignment: alignment, above: true))
    }
    public func overlay<S: ShapeStyle>(_ style: S, ignoresSafeAreaEdges edges: Edge.Set = .all) -> some View {
        modifier(LayerModifier(layer: AnyView(Rectangle().fill(style)), alignment: .center, above: true))
    }
    public func overlay<S: ShapeStyle, T: Shape>(_ style: S, in shape: T) -> some View {
        modifier(LayerModifier(layer: AnyView(shape.fill(style)), alignment: .center, above: true))
    }
    public func border<S: ShapeStyle>(_ style: S, width: CGFloat = 1) -> some View {
        overlay(Rectangle().strokeBorder(style, lineWidth: width))
    }

    public func opacity(_ opacity: Double) -> some View {
        modifier(ElementModifier { element, context in context.animate(OpacityElement(element, opacity: opacity), \.opacity, .opacity) })
    }
    public func hidden() -> some View { opacity(0) }
    public func rotationEffect(_ angle: Angle, anchor: UnitPoint = .center) -> some View {
        modifier(
            ElementModifier { element, context in
                let made = TransformElement(element, amount: CGSize(width: angle.radians, height: 0)) { rect, amount in
                    let a = anchor.point(in: rect)
                    return CGAffineTransform(translationX: -a.x, y: -a.y)
                        .concatenating(CGAffineTransform(rotationAngle: amount.width))
                        .concatenating(CGAffineTransform(translationX: a.x, y: a.y))
                }
                return context.animate(made, \.amount, .rotation)
            })
    }
    public func scaleEffect(_ scale: CGFloat, anchor: UnitPoint = .center) -> some View {
        scaleEffect(x: scale, y: scale, anchor: anchor)
    }
    public func scaleEffect(_ scale: CGSize, anchor: UnitPoint = .center) -> some View {
        scaleEffect(x: scale.width, y: scale.height, anchor: anchor)
    }
    public func scaleEffect(x: CGFloat = 1, y: CGFloat = 1, anchor: UnitPoint = .center) -> some View {
        modifier(
            ElementModifier { element, context in
                let made = TransformElement(element, amount: CGSize(width: x, height: y)) { rect, scale in
                    let a = anchor.point(in: rect)
                    return CGAffineTransform(translationX: -a.x, y: -a.y)
                        .concatenating(CGAffineTransform(scaleX: scale.width, y: scale.height))
                        .concatenating(CGAffineTransform(translationX: a.x, y: a.y))
                }
                return context.animate(made, \.amount, .scale)
            })
    }
    public func clipShape<S: Shape>(_ shape: S, style: FillStyle = FillStyle()) -> some View {
        modifier(ElementModifier { element, context in ClipElement(element, shape: { rect in shape.path(in: rect) }) })
    }
    public func clipped(antialiased: Bool = false) -> some View { clipShape(Rectangle()) }
    public func cornerRadius(_ radius: CGFloat, antialiased: Bool = true) -> some View {
        clipShape(RoundedRectangle(cornerRadius: radius))
    }
    public func mask<M: View>(alignment: Alignment = .center, @ViewBuilder _ mask: () -> M) -> some View { self }
    public func shadow(color: Color = Color(.sRGB, white: 0, opacity: 0.33), radius: CGFloat, x: CGFloat = 0, y: CGFloat = 0) -> some View {
        modifier(
            ElementModifier { element, context in
                ShadowElement(element, color: color, radius: radius, offset: CGSize(width: x, height: y), environment: context.environment)
            })
    }
    public func contentShape<S: Shape>(_ shape: S, eoFill: Bool = false) -> some View {
        modifier(ElementModifier { element, _ in ContentShapeElement(element) })
    }
    public func zIndex(_ value: Double) -> some View { self }
    public func compositingGroup() -> some View { self }
    public func drawingGroup(opaque: Bool = false) -> some View { self }
    public func blur(radius: CGFloat, opaque: Bool = false) -> some View { self }
    public func saturation(_ amount: Double) -> some View { self }
    public func brightness(_ amount: Double) -> some View { self }
    public func grayscale(_ amount: Double) -> some View { self }
    public func allowsHitTesting(_ enabled: Bool) -> some View {
        modifier(ElementModifier { element, _ in enabled ? element : HitTransparentElement(element) })
    }
    public func ignoresSafeArea(_ regions: SafeAreaRegions = .all, edges: Edge.Set = .all) -> some View { self }
    public func edgesIgnoringSafeArea(_ edges: Edge.Set) -> some View { self }
    public func accessibilityLabel<S: StringProtocol>(_ label: S) -> some View { self }
    public func accessibilityLabel(_ label: Text) -> some View { self }
    public func accessibilityHint<S: StringProtocol>(_ hint: S) -> some View { self }
    public func accessibilityHidden(_ hidden: Bool) -> some View { self }
    public func accessibilityIdentifier(_ identifier: String) -> some View { self }
    public func help<S: StringProtocol>(_ text: S) -> some View { self }
    public func tag<V: Hashable>(_ tag: V) -> some View {
        modifier(ElementModifier { element, _ in TagElement(element, tag: AnyHashable(tag)) })
    }
}

public struct SafeAreaRegions: OptionSet, Sendable {
    public let rawValue: Int
    public init(rawValue: Int) { self.rawValue = rawValue }
    public static let container = SafeAreaRegions(rawValue: 1)
    public static let keyboard = SafeAreaRegions(rawValue: 2)
    public static let all: SafeAreaRegions = [.container, .keyboard]
}

struct LayerModifier: ViewModifier, PrimitiveModifier {
    let layer: AnyView
    let alignment: Alignment
    let above: Bool
    func resolve(content: ContentResolver, context: ResolveContext) -> [Element] {
        content(context).enumerated().map { index, element in
            var layerContext = context.child(.id(AnyHashable(above ? "overlay\(index)" : "background\(index)")))
            layerContext.stackAxis = nil
            let layerElement = ZStackElement(children: layer.resolve(layerContext), alignment: alignment)
            return LayeredElement(element, layer: layerElement, alignment: alignment, above: above)
        }
    }
}

final class PositionElement: WrapperElement {
    var position: CGPoint
    init(_ child: Element, position: CGPoint) { self.position = position; super.init(child) }
    override func measure(_ proposal: ProposedViewSize) -> CGSize { proposal.replacingUnspecifiedDimensions() }
    override func place(in rect: CGRect) {
        frame = rect
        let s = child.size(ProposedViewSize(rect.size))
        child.place(
            in: CGRect(x: rect.minX + position.x - s.width / 2, y: rect.minY + position.y - s.height / 2, width: s.width, height: s.height))
    }
    override func outline() -> Path? { nil }
}

final class HitTransparentElement: WrapperElement {
    override func place(in rect: CGRect) { frame = rect; child.place(in: rect) }
    override func hits(_ point: CGPoint) -> [InteractiveElement]? { nil }
    override func contains(_ point: CGPoint) -> Bool { false }
}

/// Carries a `.tag` value for the Picker or TabView that holds it.
final class TagElement: WrapperElement {
    let tag: AnyHashable
    init(_ child: Element, tag: AnyHashable) { self.tag = tag; super.init(child) }
    override func place(in rect: CGRect) { frame = rect; child.place(in: rect) }
}
