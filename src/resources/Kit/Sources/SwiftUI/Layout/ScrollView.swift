import Foundation
internal import ZentoroHostInterface

/// Content larger than its frame, moved with the wheel or the touchpad.
public struct ScrollView<Content: View>: View, PrimitiveView {
    public typealias Body = Never
    let axes: Axis.Set
    let showsIndicators: Bool
    let content: Content
    public init(_ axes: Axis.Set = .vertical, showsIndicators: Bool = true, @ViewBuilder content: () -> Content) {
        self.axes = axes; self.showsIndicators = showsIndicators; self.content = content()
    }
    func resolve(_ context: ResolveContext) -> [Element] {
        let axis: Axis = axes.contains(.vertical) ? .vertical : .horizontal
        var inner = context
        inner.stackAxis = axis
        let children = resolveView(content, inner)
        let body = children.count == 1 ? children[0] : StackElement(axis: axis, crossFraction: 0.5, spacing: nil, children: children)
        let state = context.graph.storage(at: context.child(.id("scroll")).path).0.slot(0) { ScrollState() }
        return [
            ScrollElement(
                body, axis: axis, state: state, graph: context.graph,
                indicator: showsIndicators ? Color.secondary.rgba(in: context.environment).withAlpha(0.6) : nil)
        ]
    }
}

@MainActor
final class ScrollState {
    var offset: CGFloat = 0
}

final class ScrollElement: WrapperElement {
    let axis: Axis
    let state: ScrollState
    weak var graph: ViewGraph?
    let indicator: RGBA?
    private var contentLength: CGFloat = 0
    init(_ child: Element, axis: Axis, state: ScrollState, graph: ViewGraph, indicator: RGBA?) {
        self.axis = axis; self.state = state; self.graph = graph; self.indicator = indicator
        super.init(child)
    }
    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        var inner = proposal
        inner[axis] = nil
        // A scroll view takes all the room it is offered, in both directions.
        var s = child.size(inner)
        if let offered = proposal.width, offered.isFinite { s.width = offered }
        if let offered = proposal.height, offered.isFinite { s.height = offered }
        return s
    }
    override func place(in rect: CGRect) {
        frame = rect
        var inner = ProposedViewSize(rect.size)
        inner[axis] = nil
        var s = child.size(inner)
        s[axis.other] = max(s[axis.other], rect.size[axis.other])
        contentLength = s[axis]
        state.offset = clamp(state.offset, 0, max(0, contentLength - rect.size[axis]))
        let origin =
            axis == .vertical ? CGPoint(x: rect.minX, y: rect.minY - state.offset) : CGPoint(x: rect.minX - state.offset, y: rect.minY)
        var contentRect = CGRect(origin: origin, size: s)
        if axis == .vertical { contentRect.size.width = min(s.width, rect.width) }
        graph?.viewports.append(rect)
        child.place(in: contentRect)
        graph?.viewports.removeLast()
    }
    override func draw(_ renderer: HostBridge) {
        renderer.save()
        renderer.clip(Path(frame))
        child.draw(renderer)
        renderer.restore()
        let visible = frame.size[axis]
        if let indicator, contentLength > visible + 0.5 {
            let length = max(24, visible * visible / contentLength)
            let position = (visible - length) * state.offset / (contentLength - visible)
            let bar =
                axis == .vertical
                ? CGRect(x: frame.maxX - 6, y: frame.minY + position, width: 4, height: length)
                : CGRect(x: frame.minX + position, y: frame.maxY - 6, width: length, height: 4)
            renderer.fill(Path(roundedRect: bar, cornerRadius: 2), .solid(indicator))
        }
    }
    override func hits(_ point: CGPoint) -> [InteractiveElement]? { frame.contains(point) ? child.hits(point) : nil }
    func scroll(by delta: CGSize) -> Bool {
        let change = axis == .vertical ? delta.height : delta.width
        let limit = max(0, contentLength - frame.size[axis])
        let new = clamp(state.offset + change, 0, limit)
        guard new != state.offset else { return false }
        state.offset = new
        graph?.relayout()
        return true
    }
    /// Brings `rect` (in the content's coordinates as laid out now) into view.
    func reveal(_ rect: CGRect, anchor: UnitPoint?) {
        let start = (axis == .vertical ? rect.minY - frame.minY : rect.minX - frame.minX) + state.offset
        let length = rect.size[axis]
        let visible = frame.size[axis]
        if let anchor {
            state.offset = start - (visible - length) * (axis == .vertical ? anchor.y : anchor.x)
        } else if start < state.offset {
            state.offset = start
        } else if start + length > state.offset + visible {
            state.offset = start + length - visible
        }
        state.offset = clamp(state.offset, 0, max(0, contentLength - visible))
    }
}
