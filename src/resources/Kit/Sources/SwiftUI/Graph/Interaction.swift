import Foundation
internal import ZentoroHostInterface

enum PointerEvent {
    enum Kind: Int32 { case down = 0, move = 1, up = 2, leave = 3 }
}

struct HostKey {
    let code: Int32
    let characters: String
    let modifiers: Int32
}

/// What the pointer is doing across updates: the press in progress and the hovered views.
@MainActor
struct InteractionState {
    var pressedPath: ViewPath?
    var chain: [InteractiveElement] = []
    var downPoint = CGPoint.zero
    var dragTarget: InteractiveElement?
    var hovered: Set<ViewPath> = []
    var hoverHandlers: [ViewPath: (Bool) -> Void] = [:]
}

/// An element that takes part in pointer input. Its identity is its view's path, so that a
/// press or hover outlives the update it began in.
@MainActor
class InteractiveElement: WrapperElement {
    let path: ViewPath
    weak var graph: ViewGraph?
    init(_ child: Element, path: ViewPath, graph: ViewGraph) {
        self.path = path
        self.graph = graph
        super.init(child)
    }
    override func place(in rect: CGRect) { frame = rect; child.place(in: rect) }

    /// Whether empty parts of the frame catch the pointer too (buttons do).
    var catchesWholeFrame: Bool { false }
    var acceptsHover: Bool { false }
    var hovered: Bool { graph?.interaction.hovered.contains(path) ?? false }
    var pressed: Bool { graph?.interaction.pressedPath == path }

    override func hits(_ point: CGPoint) -> [InteractiveElement]? {
        if let inner = child.hits(point) { return inner + [self] }
        return (catchesWholeFrame && frame.contains(point)) || child.contains(point) ? [self] : nil
    }

    /// Begins a press; returns true to show it as pressed.
    func press(at point: CGPoint) -> Bool { false }
    /// A press that ended without dragging; returns true when handled.
    func tap(at point: CGPoint, count: Int) -> Bool { false }
    var minimumDragDistance: CGFloat? { nil }
    func drag(from start: CGPoint, to point: CGPoint) {}
    func endDrag(from start: CGPoint, to point: CGPoint) {}
    func hover(_ inside: Bool) {}
    /// A press of the secondary button; returns true when it opened something.
    func secondaryPress(at point: CGPoint) -> Bool { false }
    /// Whether this element still gets the tap after an inner element handled it.
    var alwaysTaps: Bool { false }
}

extension ViewGraph {
    /// Draws what lies in `clip` (the part of the window being painted).
    func render(clip: CGRect = .infinite) {
        guard let host else { return }
        update()
        host.clip = clip
        rootElement?.draw(host)
        motion.departures.draw(host, overlays: false)
        for overlay in overlays { overlay.draw(host) }
        motion.departures.draw(host, overlays: true)
    }

    private func topHits(_ point: CGPoint) -> [InteractiveElement] {
        for overlay in overlays.reversed() {
            if let hits = overlay.hits(point) { return hits }
        }
        return rootElement?.hits(point) ?? []
    }

    func pointer(_ kind: PointerEvent.Kind, at point: CGPoint, clickCount: Int, secondary: Bool = false) -> Bool {
        // A release goes to the elements its press found, so it needs no fresh tree.
        if kind != .up { update() }
        if secondary {
            // The secondary button opens the innermost context menu and does nothing else.
            guard kind == .down else { return kind == .up }
            interaction.chain = []
            let chain = topHits(point)
            if chain.last is DismissCatcher { chain.last?.tap(at: point, count: 1); return true }
            return chain.contains { $0.secondaryPress(at: point) }
        }
        switch kind {
        case .down:
            let chain = topHits(point)
            interaction.chain = chain
            interaction.downPoint = point
            interaction.dragTarget = nil
            if let pressed = chain.first(where: { $0.press(at: point) }) {
                interaction.pressedPath = pressed.path
                invalidate()
            }
            return !chain.isEmpty
        case .move:
            updateHover(point)
            guard !interaction.chain.isEmpty else { return false }
            if let target = interaction.dragTarget {
                target.drag(from: interaction.downPoint, to: point)
                return true
            }
            let distance = hypot(point.x - interaction.downPoint.x, point.y - interaction.downPoint.y)
            if let target = interaction.chain.first(where: { ($0.minimumDragDistance ?? .infinity) <= distance }) {
                interaction.dragTarget = target
                if interaction.pressedPath != nil { interaction.pressedPath = nil; invalidate() }
                target.drag(from: interaction.downPoint, to: point)
            }
            return true
        case .up:
            let chain = interaction.chain
            let dragTarget = interaction.dragTarget
            interaction.chain = []
            interaction.dragTarget = nil
            if interaction.pressedPath != nil { interaction.pressedPath = nil; invalidate() }
            if let dragTarget {
                dragTarget.endDrag(from: interaction.downPoint, to: point)
                return true
            }
            var handled = false
            for element in chain where !handled || element.alwaysTaps {
                if element.tap(at: point, count: max(1, clickCount)) { handled = true }
            }
            return !chain.isEmpty
        case .leave:
            updateHover(nil)
            return false
        }
    }

    private func updateHover(_ point: CGPoint?) {
        let now = Set((point.map(topHits) ?? []).filter(\.acceptsHover).map(\.path))
        guard now != interaction.hovered else { return }
        let entered = now.subtracting(interaction.hovered), left = interaction.hovered.subtracting(now)
        interaction.hovered = now
        for path in left { interaction.hoverHandlers[path]?(false) }
        for path in entered { interaction.hoverHandlers[path]?(true) }
        invalidate()
    }

    func scroll(at point: CGPoint, by delta: CGSize) -> Bool {
        update()
        var target: ScrollElement?
        rootElement?.forEach { element in
            if let scroll = element as? ScrollElement, scroll.frame.contains(point) { target = scroll }
        }
        guard let target else { return false }
        return target.scroll(by: delta)
    }

    func key(_ press: HostKey) -> Bool {
        update()
        var handled = false
        rootElement?.forEach { element in
            if !handled, let button = element as? ButtonElement, button.matches(press) {
                button.action()
                handled = true
            }
        }
        // The views registered last are the innermost: they see the key first.
        for handler in keyHandlers.reversed() where !handled { handled = handler(press) }
        return handled
    }

    func textChanged(_ identifier: Int64, _ text: String) { textFields[identifier]?.setText(text) }
    func textSubmitted(_ identifier: Int64) { textFields[identifier]?.submit() }
    func textFocus(_ identifier: Int64, _ focused: Bool) { textFields[identifier]?.focus(focused) }
}

/// What the graph needs to route a native text field's edits back.
struct TextFieldHandlers {
    let setText: (String) -> Void
    let submit: () -> Void
    let focus: (Bool) -> Void
}
