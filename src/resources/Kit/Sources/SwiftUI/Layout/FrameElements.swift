import Foundation

final class PaddingElement: WrapperElement {
    let insets: EdgeInsets
    init(_ child: Element, insets: EdgeInsets) { self.insets = insets; super.init(child) }
    static func make(_ child: Element, insets: EdgeInsets, pass: Int) -> PaddingElement {
        reusable([child], pass: pass) { $0.insets == insets } ?? PaddingElement(child, insets: insets)
    }
    override var bleed: CGFloat? { 0 }
    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        let inner = ProposedViewSize(
            width: proposal.width.map { max(0, $0 - insets.horizontal) },
            height: proposal.height.map { max(0, $0 - insets.vertical) })
        let s = child.size(inner)
        return CGSize(width: s.width + insets.horizontal, height: s.height + insets.vertical)
    }
    override func place(in rect: CGRect) {
        if keepsPlace(rect) { return }
        frame = rect
        child.place(
            in: CGRect(
                x: rect.minX + insets.leading, y: rect.minY + insets.top,
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
    init(
        _ child: Element, minWidth: CGFloat?, idealWidth: CGFloat?, maxWidth: CGFloat?,
        minHeight: CGFloat?, idealHeight: CGFloat?, maxHeight: CGFloat?, alignment: Alignment
    ) {
        self.minWidth = minWidth; self.idealWidth = idealWidth; self.maxWidth = maxWidth
        self.minHeight = minHeight; self.idealHeight = idealHeight; self.maxHeight = maxHeight
        self.alignment = alignment
        super.init(child)
    }
    static func make(
        _ child: Element, minWidth: CGFloat?, idealWidth: CGFloat?, maxWidth: CGFloat?,
        minHeight: CGFloat?, idealHeight: CGFloat?, maxHeight: CGFloat?, alignment: Alignment,
        pass: Int
    ) -> FlexibleFrameElement {
        reusable([child], pass: pass) {
            $0.minWidth == minWidth && $0.idealWidth == idealWidth && $0.maxWidth == maxWidth && $0.minHeight == minHeight
                && $0.idealHeight == idealHeight && $0.maxHeight == maxHeight && $0.alignment == alignment
        }
            ?? FlexibleFrameElement(
                child, minWidth: minWidth, idealWidth: idealWidth, maxWidth: maxWidth,
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
    var offset: CGSize
    init(_ child: Element, offset: CGSize) { self.offset = offset; super.init(child) }
    override var bleed: CGFloat? { 0 }
    override func place(in rect: CGRect) {
        frame = rect
        child.place(in: rect.offsetBy(dx: offset.width, dy: offset.height))
    }
    override func outline() -> Path? { nil }
}
