import Foundation

/// A resolved piece of the view tree: it answers size proposals, takes its place, draws, and
/// says which interactive element lies under a point. Every update resolves a new tree, but a
/// text whose inputs are the same as in the previous tree, and a stack or frame around exactly
/// the same children, is taken over with its remembered sizes and place; what must last
/// beyond that lives in the graph's storage.
@MainActor
class Element {
    var frame = CGRect.zero { didSet { boundsCache = nil } }
    /// The update in which this element was taken over from the previous tree.
    var reusedPass = -1
    /// The update in which it was taken over and kept its place, so it draws as before.
    var unchangedPass = -1
    /// The container this element was last placed in: where a container of the next tree
    /// made of the same children finds the one it can take over.
    weak var owner: Element?
    /// The update being laid out; elements taken over in it keep their place when offered the same.
    static var layoutPass = 0
    var layoutPriority: Double = 0
    /// The last few proposals and their answers: an element is asked a handful of different
    /// proposals in an update, so a short list searched in order beats hashing.
    private var answers: [(proposal: ProposedViewSize, size: CGSize)] = []
    private var oldestAnswer = 0
    private static let answersKept = 8

    var children: [Element] { [] }
    var isSpacer: Bool { false }

    /// The size this element chooses for a proposal; answers are remembered for the update.
    final func size(_ proposal: ProposedViewSize) -> CGSize {
        for answer in answers where answer.proposal == proposal { return answer.size }
        let measured = measure(proposal)
        if answers.count < Element.answersKept {
            answers.append((proposal, measured))
        } else {
            answers[oldestAnswer] = (proposal, measured)
            oldestAnswer = (oldestAnswer + 1) % Element.answersKept
        }
        return measured
    }
    func measure(_ proposal: ProposedViewSize) -> CGSize { .zero }

    func place(in rect: CGRect) {
        if keepsPlace(rect) { return }
        frame = rect
        for child in children { child.place(in: rect) }
    }

    /// True when this element was taken over in this update and offered the rectangle it
    /// already has: its whole subtree stays where it is.
    final func keepsPlace(_ rect: CGRect) -> Bool {
        guard reusedPass == Element.layoutPass else { return false }
        if rect == frame {
            unchangedPass = Element.layoutPass
            return true
        }
        return false
    }

    /// Draws the children, leaving out those that draw nothing inside the clip.
    func draw(_ renderer: Renderer) {
        for child in children {
            if let bounds = child.drawnBounds, !bounds.intersects(renderer.clip) { continue }
            child.draw(renderer)
        }
    }

    /// How far this element's own drawing reaches beyond its frame; nil when it is not bounded
    /// by its frame or drawing it does more than paint (placing a text field).
    var bleed: CGFloat? { nil }
    /// Whether drawing this element is exactly drawing its children, unchanged.
    var drawsOnlyChildren: Bool { bleed == 0 }
    private var boundsCache: CGRect??
    /// Where this element and everything in it draws; nil when that is not known.
    final var drawnBounds: CGRect? {
        if let known = boundsCache { return known }
        var result: CGRect? = nil
        if let bleed {
            var bounds = frame.insetBy(dx: -bleed, dy: -bleed)
            for child in children {
                guard let inner = child.drawnBounds else { bounds = .null; break }
                bounds = bounds.union(inner)
            }
            if !bounds.isNull { result = bounds }
        }
        boundsCache = .some(result)
        return result
    }

    /// The element of the previous tree that was made of exactly `children` and that `same`
    /// accepts (same settings), taken over for this update; nil when there is none.
    static func reusable<E: Element>(_ children: [Element], pass: Int, _ same: (E) -> Bool) -> E? {
        guard let first = children.first, let previous = first.owner as? E, previous.reusedPass != pass,
              children.allSatisfy({ $0.reusedPass == pass }) else { return nil }
        let old = previous.children
        guard old.count == children.count, zip(old, children).allSatisfy({ $0 === $1 }), same(previous) else { return nil }
        previous.reusedPass = pass
        return previous
    }

    /// Makes this element the owner of its children.
    final func adoptChildren() {
        for child in children { child.owner = self }
    }

    /// What lies under `point`: nil when nothing is drawn there, otherwise the interactive
    /// elements that contain the point, innermost first (empty over plain content, which still
    /// keeps the point from reaching what lies below).
    func hits(_ point: CGPoint) -> [InteractiveElement]? {
        if let bounds = drawnBounds, !bounds.contains(point) { return nil }
        for child in children.reversed() {
            if let hit = child.hits(point) { return hit }
        }
        return children.isEmpty && contains(point) ? [] : nil
    }

    /// Whether this element draws anything at `point`: what taps on a plain view land on.
    func contains(_ point: CGPoint) -> Bool {
        children.contains { $0.contains(point) }
    }

    /// The outline a shadow of this element follows, when it has a simple one.
    func outline() -> Path? { nil }

    /// Every element of the tree, depth first; tests and the text-field registry walk it.
    func forEach(_ body: (Element) -> Void) {
        body(self)
        for child in children { child.forEach(body) }
    }
}

/// An element that adds one effect to one child.
@MainActor
class WrapperElement: Element {
    let child: Element
    /// Kept rather than made on each call: layout, drawing and hit testing ask for it often.
    private let childList: [Element]
    init(_ child: Element) {
        self.child = child
        childList = [child]
        super.init()
        layoutPriority = child.layoutPriority
        child.owner = self
    }
    override var children: [Element] { childList }
    override func measure(_ proposal: ProposedViewSize) -> CGSize { child.size(proposal) }
    override func outline() -> Path? { child.outline() }
}

/// Several elements laid on top of each other (a ZStack, or a body with several views at the root).
final class ZStackElement: Element {
    let items: [Element]
    let alignment: Alignment
    init(children: [Element], alignment: Alignment) {
        items = children; self.alignment = alignment
        super.init()
        adoptChildren()
    }
    static func make(children: [Element], alignment: Alignment, pass: Int) -> ZStackElement {
        reusable(children, pass: pass) { $0.alignment == alignment } ?? ZStackElement(children: children, alignment: alignment)
    }
    override var children: [Element] { items }
    override var bleed: CGFloat? { 0 }
    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        var result = CGSize.zero
        for item in items {
            let s = item.size(proposal)
            result.width = max(result.width, s.width)
            result.height = max(result.height, s.height)
        }
        return result
    }
    override func place(in rect: CGRect) {
        if keepsPlace(rect) { return }
        frame = rect
        for item in items {
            item.place(in: alignment.place(item.size(ProposedViewSize(rect.size)), in: rect))
        }
    }
}

/// An HStack or VStack: SwiftUI's sizing, where the least flexible children are offered
/// their share first and layout priority goes before flexibility.
final class StackElement: Element {
    let axis: Axis
    let crossFraction: CGFloat
    let spacing: CGFloat?
    let items: [Element]

    init(axis: Axis, crossFraction: CGFloat, spacing: CGFloat?, children: [Element]) {
        self.axis = axis; self.crossFraction = crossFraction; self.spacing = spacing; items = children
        super.init()
        adoptChildren()
    }
    static func make(axis: Axis, crossFraction: CGFloat, spacing: CGFloat?, children: [Element], pass: Int) -> StackElement {
        reusable(children, pass: pass) { $0.axis == axis && $0.crossFraction == crossFraction && $0.spacing == spacing }
            ?? StackElement(axis: axis, crossFraction: crossFraction, spacing: spacing, children: children)
    }
    override var children: [Element] { items }
    override var bleed: CGFloat? { 0 }

    static let defaultSpacing: CGFloat = 8

    private func gap(after index: Int) -> CGFloat {
        if let spacing { return spacing }
        return items[index].isSpacer || items[index + 1].isSpacer ? 0 : StackElement.defaultSpacing
    }
    private var totalSpacing: CGFloat {
        items.count < 2 ? 0 : (0..<(items.count - 1)).reduce(0) { $0 + gap(after: $1) }
    }

    private func proposal(main: CGFloat?, cross: CGFloat?) -> ProposedViewSize {
        axis == .horizontal ? ProposedViewSize(width: main, height: cross) : ProposedViewSize(width: cross, height: main)
    }

    /// The size of each child for a proposal.
    private func allocate(_ proposal: ProposedViewSize) -> [CGSize] {
        let cross = proposal[axis.other]
        guard let offered = proposal[axis] else {
            return items.map { $0.size(self.proposal(main: nil, cross: cross)) }
        }
        var sizes = Array(repeating: CGSize.zero, count: items.count)
        let minimum = items.map { $0.size(self.proposal(main: 0, cross: cross))[axis] }
        let maximum = items.map { $0.size(self.proposal(main: .infinity, cross: cross))[axis] }
        var remaining = offered - totalSpacing
        var priorities: [Double] = []
        for item in items where !priorities.contains(item.layoutPriority) { priorities.append(item.layoutPriority) }
        priorities.sort(by: >)
        for priority in priorities {
            let group = items.indices.filter { items[$0].layoutPriority == priority }
                .sorted { maximum[$0] - minimum[$0] < maximum[$1] - minimum[$1] }
            let reserved = items.indices.filter { items[$0].layoutPriority < priority }.reduce(0) { $0 + minimum[$1] }
            var available = remaining - reserved
            var left = group.count
            for index in group {
                let share = max(0, available / CGFloat(left))
                let s = items[index].size(self.proposal(main: share, cross: cross))
                sizes[index] = s
                available -= s[axis]
                remaining -= s[axis]
                left -= 1
            }
        }
        return sizes
    }

    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        guard !items.isEmpty else { return .zero }
        let sizes = allocate(proposal)
        let main = sizes.reduce(0) { $0 + $1[axis] } + totalSpacing
        let cross = sizes.reduce(0) { max($0, $1[axis.other]) }
        return CGSize(axis: axis, main: main, cross: cross)
    }

    override func place(in rect: CGRect) {
        if keepsPlace(rect) { return }
        frame = rect
        let sizes = allocate(ProposedViewSize(rect.size))
        var position = axis == .horizontal ? rect.minX : rect.minY
        for (index, item) in items.enumerated() {
            let s = sizes[index]
            let crossStart = axis == .horizontal ? rect.minY : rect.minX
            let crossOffset = crossStart + (rect.size[axis.other] - s[axis.other]) * crossFraction
            let origin = axis == .horizontal ? CGPoint(x: position, y: crossOffset) : CGPoint(x: crossOffset, y: position)
            item.place(in: CGRect(origin: origin, size: s))
            position += s[axis]
            if index < items.count - 1 { position += gap(after: index) }
        }
    }
}

final class SpacerElement: Element {
    let minLength: CGFloat
    let axis: Axis?
    init(minLength: CGFloat, axis: Axis?) { self.minLength = minLength; self.axis = axis }
    override var isSpacer: Bool { true }
    override var bleed: CGFloat? { 0 }
    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        switch axis {
        case .horizontal: return CGSize(width: max(minLength, proposal.width ?? minLength), height: 0)
        case .vertical: return CGSize(width: 0, height: max(minLength, proposal.height ?? minLength))
        case nil: return CGSize(width: max(minLength, proposal.width ?? minLength), height: max(minLength, proposal.height ?? minLength))
        }
    }
}

final class PaddingElement: WrapperElement {
    let insets: EdgeInsets
    init(_ child: Element, insets: EdgeInsets) { self.insets = insets; super.init(child) }
    static func make(_ child: Element, insets: EdgeInsets, pass: Int) -> PaddingElement {
        reusable([child], pass: pass) { $0.insets == insets } ?? PaddingElement(child, insets: insets)
    }
    override var bleed: CGFloat? { 0 }
    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        let inner = ProposedViewSize(width: proposal.width.map { max(0, $0 - insets.horizontal) },
                                     height: proposal.height.map { max(0, $0 - insets.vertical) })
        let s = child.size(inner)
        return CGSize(width: s.width + insets.horizontal, height: s.height + insets.vertical)
    }
    override func place(in rect: CGRect) {
        if keepsPlace(rect) { return }
        frame = rect
        child.place(in: CGRect(x: rect.minX + insets.leading, y: rect.minY + insets.top,
                               width: max(0, rect.width - insets.horizontal), height: max(0, rect.height - insets.vertical)))
    }
    override func outline() -> Path? { nil }
}

final class FixedFrameElement: WrapperElement {
    let width: CGFloat?, height: CGFloat?
    let alignment: Alignment
    init(_ child: Element, width: CGFloat?, height: CGFloat?, alignment: Alignment) {
        self.width = width; self.height = height; self.alignment = alignment
        super.init(child)
    }
    static func make(_ child: Element, width: CGFloat?, height: CGFloat?, alignment: Alignment, pass: Int) -> FixedFrameElement {
        reusable([child], pass: pass) { $0.width == width && $0.height == height && $0.alignment == alignment }
            ?? FixedFrameElement(child, width: width, height: height, alignment: alignment)
    }
    override var bleed: CGFloat? { 0 }
    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        if let width, let height { return CGSize(width: width, height: height) }
        let s = child.size(ProposedViewSize(width: width ?? proposal.width, height: height ?? proposal.height))
        return CGSize(width: width ?? s.width, height: height ?? s.height)
    }
    override func place(in rect: CGRect) {
        if keepsPlace(rect) { return }
        frame = rect
        let s = child.size(ProposedViewSize(width: width ?? rect.width, height: height ?? rect.height))
        child.place(in: alignment.place(s, in: rect))
    }
    override func outline() -> Path? { nil }
}

final class FlexibleFrameElement: WrapperElement {
    let minWidth: CGFloat?, idealWidth: CGFloat?, maxWidth: CGFloat?
    let minHeight: CGFloat?, idealHeight: CGFloat?, maxHeight: CGFloat?
    let alignment: Alignment
    init(_ child: Element, minWidth: CGFloat?, idealWidth: CGFloat?, maxWidth: CGFloat?,
         minHeight: CGFloat?, idealHeight: CGFloat?, maxHeight: CGFloat?, alignment: Alignment) {
        self.minWidth = minWidth; self.idealWidth = idealWidth; self.maxWidth = maxWidth
        self.minHeight = minHeight; self.idealHeight = idealHeight; self.maxHeight = maxHeight
        self.alignment = alignment
        super.init(child)
    }
    static func make(_ child: Element, minWidth: CGFloat?, idealWidth: CGFloat?, maxWidth: CGFloat?,
                     minHeight: CGFloat?, idealHeight: CGFloat?, maxHeight: CGFloat?, alignment: Alignment,
                     pass: Int) -> FlexibleFrameElement {
        reusable([child], pass: pass) {
            $0.minWidth == minWidth && $0.idealWidth == idealWidth && $0.maxWidth == maxWidth && $0.minHeight == minHeight
                && $0.idealHeight == idealHeight && $0.maxHeight == maxHeight && $0.alignment == alignment
        } ?? FlexibleFrameElement(child, minWidth: minWidth, idealWidth: idealWidth, maxWidth: maxWidth,
                                  minHeight: minHeight, idealHeight: idealHeight, maxHeight: maxHeight, alignment: alignment)
    }
    override var bleed: CGFloat? { 0 }

    private static func childProposal(_ offered: CGFloat?, _ low: CGFloat?, _ ideal: CGFloat?, _ high: CGFloat?) -> CGFloat? {
        guard let value = offered ?? ideal else { return nil }
        if low == nil && high == nil { return value }
        return clamp(value, low ?? -.infinity, high ?? .infinity)
    }
    private static func result(_ offered: CGFloat?, _ child: CGFloat, _ low: CGFloat?, _ ideal: CGFloat?, _ high: CGFloat?) -> CGFloat {
        if low == nil && high == nil { return child }
        if let offered {
            return clamp(offered, low ?? child, max(low ?? child, high ?? child))
        }
        return clamp(ideal ?? child, low ?? -.infinity, high ?? .infinity)
    }

    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        let inner = ProposedViewSize(
            width: Self.childProposal(proposal.width, minWidth, idealWidth, maxWidth),
            height: Self.childProposal(proposal.height, minHeight, idealHeight, maxHeight))
        let s = child.size(inner)
        var width = Self.result(proposal.width, s.width, minWidth, idealWidth, maxWidth)
        var height = Self.result(proposal.height, s.height, minHeight, idealHeight, maxHeight)
        if !width.isFinite { width = s.width }
        if !height.isFinite { height = s.height }
        return CGSize(width: width, height: height)
    }
    override func place(in rect: CGRect) {
        if keepsPlace(rect) { return }
        frame = rect
        let inner = ProposedViewSize(
            width: Self.childProposal(rect.width, minWidth, idealWidth, maxWidth),
            height: Self.childProposal(rect.height, minHeight, idealHeight, maxHeight))
        let s = child.size(inner)
        child.place(in: alignment.place(CGSize(width: min(s.width, rect.width), height: min(s.height, rect.height)), in: rect))
    }
    override func outline() -> Path? { nil }
}

/// `.fixedSize()`: the child's ideal size along the chosen axes, whatever is offered.
final class FixedSizeElement: WrapperElement {
    let horizontal: Bool, vertical: Bool
    init(_ child: Element, horizontal: Bool, vertical: Bool) {
        self.horizontal = horizontal; self.vertical = vertical
        super.init(child)
    }
    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        child.size(ProposedViewSize(width: horizontal ? nil : proposal.width, height: vertical ? nil : proposal.height))
    }
    override func place(in rect: CGRect) {
        frame = rect
        child.place(in: Alignment.center.place(measure(ProposedViewSize(rect.size)), in: rect))
    }
}

final class LayoutPriorityElement: WrapperElement {
    init(_ child: Element, priority: Double) {
        super.init(child)
        layoutPriority = priority
    }
    override var bleed: CGFloat? { 0 }
    override func place(in rect: CGRect) { frame = rect; child.place(in: rect) }
}

/// `.background` and `.overlay`: a second element sized by the first.
final class LayeredElement: WrapperElement {
    let layer: Element
    let alignment: Alignment
    let above: Bool
    init(_ child: Element, layer: Element, alignment: Alignment, above: Bool) {
        self.layer = layer; self.alignment = alignment; self.above = above
        layers = above ? [child, layer] : [layer, child]
        super.init(child)
        layer.owner = self
    }
    private let layers: [Element]
    override var bleed: CGFloat? { 0 }
    override var children: [Element] { layers }
    override func place(in rect: CGRect) {
        frame = rect
        child.place(in: rect)
        layer.place(in: alignment.place(layer.size(ProposedViewSize(rect.size)), in: rect))
    }
    override func outline() -> Path? { above ? child.outline() : (layer.outline() ?? child.outline()) }
}

final class OffsetElement: WrapperElement {
    let offset: CGSize
    init(_ child: Element, offset: CGSize) { self.offset = offset; super.init(child) }
    override var bleed: CGFloat? { 0 }
    override func place(in rect: CGRect) {
        frame = rect
        child.place(in: rect.offsetBy(dx: offset.width, dy: offset.height))
    }
    override func outline() -> Path? { nil }
}

/// Rotation and scale about an anchor: drawing and hit testing go through the transform.
final class TransformElement: WrapperElement {
    let make: (CGRect) -> CGAffineTransform
    private var transform = CGAffineTransform.identity
    init(_ child: Element, make: @escaping (CGRect) -> CGAffineTransform) { self.make = make; super.init(child) }
    override func place(in rect: CGRect) {
        frame = rect
        child.place(in: rect)
        transform = make(rect)
    }
    override func draw(_ renderer: Renderer) {
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
    let opacity: Double
    init(_ child: Element, opacity: Double) { self.opacity = opacity; super.init(child) }
    override var bleed: CGFloat? { 0 }
    override var drawsOnlyChildren: Bool { false }
    override func place(in rect: CGRect) { frame = rect; child.place(in: rect) }
    override func draw(_ renderer: Renderer) {
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
    override func draw(_ renderer: Renderer) {
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
    override func draw(_ renderer: Renderer) {
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

/// The part of the window that must be painted again after an update.
enum Damage: Equatable {
    case rect(CGRect)
    case whole

    /// What differs on screen between the tree drawn before and the new one, added to `earlier`.
    /// Subtrees taken over in place draw as before; what appeared or went away draws within its
    /// bounds; anything with unknown bounds, or taken over but moved, needs the whole window.
    @MainActor
    static func between(_ old: Element, _ new: Element, pass: Int, adding earlier: Damage?) -> Damage {
        var area: CGRect? = nil
        if case .rect(let r) = earlier { area = r }
        func add(_ element: Element) -> Bool {
            guard let bounds = element.drawnBounds else { return false }
            area = area.map { $0.union(bounds) } ?? bounds
            return true
        }
        func visitNew(_ element: Element) -> Bool {
            if element.unchangedPass == pass { return true }
            if element.reusedPass == pass { return false }
            if element.drawsOnlyChildren { return element.children.allSatisfy(visitNew) }
            return add(element)
        }
        func visitOld(_ element: Element) -> Bool {
            if element.reusedPass == pass { return element.unchangedPass == pass }
            if element.drawsOnlyChildren { return element.children.allSatisfy(visitOld) }
            return add(element)
        }
        guard visitNew(new), visitOld(old) else { return .whole }
        return area.map { .rect($0) } ?? earlier ?? .rect(.null)
    }
}
