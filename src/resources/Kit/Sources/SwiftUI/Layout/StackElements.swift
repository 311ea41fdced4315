import Foundation

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
