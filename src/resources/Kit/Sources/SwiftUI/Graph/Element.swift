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
    func draw(_ renderer: HostBridge) {
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
    /// Something inside moved without a new tree: bounds are measured again.
    final func forgetDrawnBounds() { boundsCache = nil }
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
            children.allSatisfy({ $0.reusedPass == pass })
        else { return nil }
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
