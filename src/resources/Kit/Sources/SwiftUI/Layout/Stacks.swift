import Foundation

public struct VStack<Content: View>: View, PrimitiveView {
    public typealias Body = Never
    let alignment: HorizontalAlignment, spacing: CGFloat?, content: Content
    public init(alignment: HorizontalAlignment = .center, spacing: CGFloat? = nil, @ViewBuilder content: () -> Content) {
        self.alignment = alignment; self.spacing = spacing; self.content = content()
    }
    func resolve(_ context: ResolveContext) -> [Element] {
        var inner = context
        inner.stackAxis = .vertical
        return [
            StackElement.make(
                axis: .vertical, crossFraction: alignment.fraction, spacing: spacing, children: resolveView(content, inner),
                pass: context.graph.pass)
        ]
    }
}

public struct HStack<Content: View>: View, PrimitiveView {
    public typealias Body = Never
    let alignment: VerticalAlignment, spacing: CGFloat?, content: Content
    public init(alignment: VerticalAlignment = .center, spacing: CGFloat? = nil, @ViewBuilder content: () -> Content) {
        self.alignment = alignment; self.spacing = spacing; self.content = content()
    }
    func resolve(_ context: ResolveContext) -> [Element] {
        var inner = context
        inner.stackAxis = .horizontal
        return [
            StackElement.make(
                axis: .horizontal, crossFraction: alignment.fraction, spacing: spacing, children: resolveView(content, inner),
                pass: context.graph.pass)
        ]
    }
}

public struct ZStack<Content: View>: View, PrimitiveView {
    public typealias Body = Never
    let alignment: Alignment, content: Content
    public init(alignment: Alignment = .center, @ViewBuilder content: () -> Content) {
        self.alignment = alignment; self.content = content()
    }
    func resolve(_ context: ResolveContext) -> [Element] {
        var inner = context
        inner.stackAxis = nil
        return [ZStackElement.make(children: resolveView(content, inner), alignment: alignment, pass: context.graph.pass)]
    }
}

/// A column that makes only the rows in view when its content is one ForEach inside a scroll
/// view: rows are as high as the first, so the work per frame does not grow with the data.
public struct LazyVStack<Content: View>: View, PrimitiveView {
    public typealias Body = Never
    let alignment: HorizontalAlignment, spacing: CGFloat?, content: Content
    public init(
        alignment: HorizontalAlignment = .center, spacing: CGFloat? = nil, pinnedViews: PinnedScrollableViews = .init(),
        @ViewBuilder content: () -> Content
    ) {
        self.alignment = alignment; self.spacing = spacing; self.content = content()
    }
    func resolve(_ context: ResolveContext) -> [Element] {
        var inner = context
        inner.stackAxis = .vertical
        if let rows = content as? any LazyRows {
            return [
                LazyStackElement(
                    count: rows.rowCount, spacing: spacing ?? StackElement.defaultSpacing,
                    crossFraction: alignment.fraction, graph: context.graph
                ) { rows.resolveRow($0, inner) }
            ]
        }
        return [
            StackElement.make(
                axis: .vertical, crossFraction: alignment.fraction, spacing: spacing, children: resolveView(content, inner),
                pass: context.graph.pass)
        ]
    }
}

@MainActor
protocol LazyRows {
    var rowCount: Int { get }
    func resolveRow(_ offset: Int, _ context: ResolveContext) -> [Element]
}
extension ForEach: LazyRows {}

final class LazyStackElement: Element {
    let count: Int
    let spacing: CGFloat
    let crossFraction: CGFloat
    unowned let graph: ViewGraph
    let make: (Int) -> [Element]
    private var made: [Int: Element] = [:]
    init(count: Int, spacing: CGFloat, crossFraction: CGFloat, graph: ViewGraph, make: @escaping (Int) -> [Element]) {
        self.count = count; self.spacing = spacing; self.crossFraction = crossFraction; self.graph = graph; self.make = make
    }
    override var children: [Element] { made.keys.sorted().compactMap { made[$0] } }

    private func row(_ index: Int) -> Element {
        if let known = made[index] { return known }
        let elements = make(index)
        let row =
            elements.count == 1
            ? elements[0] : StackElement(axis: .vertical, crossFraction: crossFraction, spacing: spacing, children: elements)
        made[index] = row
        return row
    }
    private func rowSize(_ width: CGFloat?) -> CGSize {
        count == 0 ? .zero : row(0).size(ProposedViewSize(width: width, height: nil))
    }
    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        let first = rowSize(proposal.width)
        let height = CGFloat(count) * first.height + CGFloat(max(0, count - 1)) * spacing
        return CGSize(width: proposal.width ?? first.width, height: height)
    }
    override func place(in rect: CGRect) {
        frame = rect
        guard count > 0 else { return }
        let step = rowSize(rect.width).height + spacing
        let visible = (graph.viewports.last ?? rect).intersection(rect)
        guard !visible.isNull, step > 0 else { return }
        let first = max(0, Int(((visible.minY - rect.minY) / step).rounded(.down)))
        let last = min(count - 1, Int(((visible.maxY - rect.minY) / step).rounded(.down)))
        guard first <= last else { return }
        for index in first...last {
            let element = row(index)
            let s = element.size(ProposedViewSize(width: rect.width, height: nil))
            let x = rect.minX + (rect.width - s.width) * crossFraction
            element.place(in: CGRect(x: x, y: rect.minY + CGFloat(index) * step, width: s.width, height: step - spacing))
        }
        made = made.filter { $0.key >= first && $0.key <= last }
    }
}

public struct LazyHStack<Content: View>: View {
    let alignment: VerticalAlignment, spacing: CGFloat?, content: Content
    public init(
        alignment: VerticalAlignment = .center, spacing: CGFloat? = nil, pinnedViews: PinnedScrollableViews = .init(),
        @ViewBuilder content: () -> Content
    ) {
        self.alignment = alignment; self.spacing = spacing; self.content = content()
    }
    public var body: some View { HStack(alignment: alignment, spacing: spacing) { content } }
}

public struct PinnedScrollableViews: OptionSet, Sendable {
    public let rawValue: UInt32
    public init(rawValue: UInt32) { self.rawValue = rawValue }
    public static let sectionHeaders = PinnedScrollableViews(rawValue: 1)
    public static let sectionFooters = PinnedScrollableViews(rawValue: 2)
}

public struct Spacer: View, PrimitiveView {
    public typealias Body = Never
    let minLength: CGFloat?
    public init(minLength: CGFloat? = nil) { self.minLength = minLength }
    func resolve(_ context: ResolveContext) -> [Element] {
        [SpacerElement(minLength: minLength ?? StackElement.defaultSpacing, axis: context.stackAxis)]
    }
}

/// A thin line across the enclosing stack.
public struct Divider: View, PrimitiveView {
    public typealias Body = Never
    public init() {}
    func resolve(_ context: ResolveContext) -> [Element] {
        [
            DividerElement(
                axis: context.stackAxis == .horizontal ? .vertical : .horizontal,
                color: Color.separator.rgba(in: context.environment))
        ]
    }
}

final class DividerElement: Element {
    let axis: Axis
    let color: RGBA
    init(axis: Axis, color: RGBA) { self.axis = axis; self.color = color }
    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        axis == .horizontal ? CGSize(width: proposal.width ?? 10, height: 1) : CGSize(width: 1, height: proposal.height ?? 10)
    }
    override func draw(_ renderer: HostBridge) { renderer.fill(Path(frame), .solid(color)) }
}
