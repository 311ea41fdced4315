import Foundation

/// How a view comes in when it is inserted and goes when it is removed under an animation.
public struct AnyTransition: Sendable {
    /// One change of the view's look at the start of its insertion (or the end of its removal).
    enum Effect: Equatable, Sendable {
        case opacity
        case scale(CGFloat, UnitPoint)
        /// Moved by its own size towards an edge.
        case move(Edge)
        case offset(CGSize)
    }
    var insertion: [Effect]
    var removal: [Effect]
    var animation: Animation?

    init(insertion: [Effect], removal: [Effect], animation: Animation? = nil) {
        self.insertion = insertion; self.removal = removal; self.animation = animation
    }
    init(_ effects: [Effect]) { self.init(insertion: effects, removal: effects) }

    public static let opacity = AnyTransition([.opacity])
    public static let scale = AnyTransition([.scale(0, .center)])
    public static let slide = AnyTransition(insertion: [.move(.leading)], removal: [.move(.trailing)])
    public static let identity = AnyTransition([])
    public static func move(edge: Edge) -> AnyTransition { AnyTransition([.move(edge)]) }
    public static func scale(scale: CGFloat, anchor: UnitPoint = .center) -> AnyTransition { AnyTransition([.scale(scale, anchor)]) }
    public static func offset(_ offset: CGSize) -> AnyTransition { AnyTransition([.offset(offset)]) }
    public static func offset(x: CGFloat = 0, y: CGFloat = 0) -> AnyTransition { offset(CGSize(width: x, height: y)) }
    public static func asymmetric(insertion: AnyTransition, removal: AnyTransition) -> AnyTransition {
        AnyTransition(insertion: insertion.insertion, removal: removal.removal)
    }
    /// Comes in from `edge` and leaves towards the opposite one, fading as it goes.
    public static func push(from edge: Edge) -> AnyTransition {
        AnyTransition(insertion: [.move(edge), .opacity], removal: [.move(edge.opposite), .opacity])
    }
    public func combined(with other: AnyTransition) -> AnyTransition {
        AnyTransition(insertion: insertion + other.insertion, removal: removal + other.removal, animation: animation ?? other.animation)
    }
    public func animation(_ animation: Animation?) -> AnyTransition {
        var copy = self
        copy.animation = animation
        return copy
    }
}

extension Edge {
    var opposite: Edge {
        switch self {
        case .top: return .bottom
        case .bottom: return .top
        case .leading: return .trailing
        case .trailing: return .leading
        }
    }
}

/// How a view's content changes in place; a changed text cross-fades.
public struct ContentTransition: Equatable, Sendable {
    let fades: Bool
    public static let identity = ContentTransition(fades: false)
    public static let opacity = ContentTransition(fades: true)
    public static let interpolate = ContentTransition(fades: true)
    public static func numericText(countsDown: Bool = false) -> ContentTransition { .opacity }
    public static func numericText(value: Double) -> ContentTransition { .opacity }
}

extension View {
    /// The transition this view comes and goes with when inserted or removed under an animation.
    public func transition(_ transition: AnyTransition) -> some View {
        modifier(TransitionModifier(transition: transition))
    }
    public func contentTransition(_ transition: ContentTransition) -> some View {
        modifier(
            StatefulModifier(tag: "contentTransition") { content, context in
                let elements = content(context)
                guard transition.fades else { return elements }
                return elements.enumerated().map { index, element in
                    crossFade(element, context: context.child(.index(index)))
                }
            })
    }
}

/// The look of a view part of the way through its transition: `progress` 1 is the view as it
/// is, 0 the transition's other end.
final class TransitionElement: WrapperElement {
    let effects: [AnyTransition.Effect]
    var progress: Double {
        didSet { (child as? ModalElement)?.appearance = progress }
    }
    let transition: AnyTransition
    /// The `.animation(_:value:)` scopes around the view, innermost last: a removal follows the
    /// animation of the one that fired.
    let scopes: [ViewPath]
    /// The scroll view's visible rectangle when the view sits in one: a departing view stays in it.
    private(set) var viewport: CGRect?
    weak var graph: ViewGraph?

    init(_ child: Element, transition: AnyTransition, effects: [AnyTransition.Effect], progress: Double, scopes: [ViewPath]) {
        self.transition = transition; self.effects = effects; self.progress = progress; self.scopes = scopes
        super.init(child)
        (child as? ModalElement)?.appearance = progress
    }
    override var bleed: CGFloat? { progress >= 1 ? 0 : nil }
    override var drawsOnlyChildren: Bool { progress >= 1 }
    override func place(in rect: CGRect) {
        frame = rect
        viewport = graph?.viewports.last
        child.place(in: rect)
    }

    /// The transform and opacity of the effects at `progress`.
    func look(_ effects: [AnyTransition.Effect], at progress: Double) -> (CGAffineTransform, Double) {
        var transform = CGAffineTransform.identity, opacity = 1.0
        let away = CGFloat(1 - progress)
        for effect in effects {
            switch effect {
            case .opacity: opacity *= max(0, min(1, progress))
            case let .scale(scale, anchor):
                let s = scale + (1 - scale) * CGFloat(progress), a = anchor.point(in: frame)
                transform = transform.concatenating(
                    CGAffineTransform(translationX: -a.x, y: -a.y).concatenating(CGAffineTransform(scaleX: s, y: s))
                        .concatenating(CGAffineTransform(translationX: a.x, y: a.y)))
            case .move(let edge):
                let shift: CGSize
                switch edge {
                case .leading: shift = CGSize(width: -frame.width, height: 0)
                case .trailing: shift = CGSize(width: frame.width, height: 0)
                case .top: shift = CGSize(width: 0, height: -frame.height)
                case .bottom: shift = CGSize(width: 0, height: frame.height)
                }
                transform = transform.concatenating(CGAffineTransform(translationX: shift.width * away, y: shift.height * away))
            case .offset(let offset):
                transform = transform.concatenating(CGAffineTransform(translationX: offset.width * away, y: offset.height * away))
            }
        }
        return (transform, opacity)
    }

    override func draw(_ renderer: HostBridge) {
        if progress >= 1 {
            child.draw(renderer)
            return
        }
        if child is ModalElement { return child.draw(renderer) }
        let (transform, opacity) = look(effects, at: progress)
        guard opacity > 0 else { return }
        renderer.save()
        renderer.concat(transform)
        if opacity < 1 { renderer.multiplyOpacity(opacity) }
        child.draw(renderer)
        renderer.restore()
    }
    override func hits(_ point: CGPoint) -> [InteractiveElement]? {
        if progress >= 1 || child is ModalElement { return super.hits(point) }
        return progress > 0 ? super.hits(point.applying(look(effects, at: progress).0.inverted())) : nil
    }
    override func outline() -> Path? { progress >= 1 ? child.outline() : nil }
}

struct TransitionModifier: ViewModifier, PrimitiveModifier {
    let transition: AnyTransition
    func resolve(content: ContentResolver, context: ResolveContext) -> [Element] {
        content(context).enumerated().map { index, element in
            context.transitioning(element, transition, at: context.path.appending(.id("transition\(index)")))
        }
    }
}

extension ResolveContext {
    /// Wraps the element of a view that may be inserted or removed with `transition`; a view
    /// that was not there in the previous update comes in along the transaction's animation.
    func transitioning(_ element: Element, _ transition: AnyTransition, at key: ViewPath) -> TransitionElement {
        let motion = graph.motion
        let (progress, isNew) = motion.animator(1.0, at: key, .transition)
        if isNew {
            let returning = motion.departures.cancel(key)
            if let animation = transition.animation ?? environment.transaction.effectiveAnimation,
                returning != nil || graph.rootElement != nil
            {
                progress.run(from: returning ?? 0, animation: animation, at: motion.now)
            }
        }
        let (shown, finished) = progress.sample(motion.now)
        let wrapped = TransitionElement(
            element, transition: transition, effects: transition.insertion, progress: shown, scopes: environment.animationScopes)
        if !finished {
            motion.keepMoving { time in
                let (shown, finished) = progress.sample(time)
                wrapped.progress = shown
                return !finished
            }
        }
        wrapped.graph = graph
        motion.presentTransitions[key] = wrapped
        return wrapped
    }
}

/// Views on their way out: each drawn where it last was until its removal transition ends.
@MainActor
struct Departures {
    struct Departure {
        let key: ViewPath
        let element: TransitionElement
        let animation: Animation
        let start: Double
        let from: Double
    }
    private(set) var list: [Departure] = []
    /// The animations of the `.animation(_:value:)` scopes that fired in the update being resolved.
    var firedScopes: [ViewPath: Animation] = [:]

    var isEmpty: Bool { list.isEmpty }

    /// Takes a departing view back: it was inserted again. Returns its progress.
    mutating func cancel(_ key: ViewPath) -> Double? {
        guard let index = list.firstIndex(where: { $0.key == key }) else { return nil }
        return list.remove(at: index).element.progress
    }

    /// Starts the removal of the views that were there in the previous update and are gone.
    mutating func collect(leaving previous: [ViewPath: TransitionElement], staying: [ViewPath: TransitionElement], motion: Motion) {
        let fired = firedScopes
        firedScopes.removeAll(keepingCapacity: true)
        for (key, element) in previous where staying[key] == nil {
            let scoped = element.scopes.reversed().lazy.compactMap { fired[$0] }.first
            guard let animation = element.transition.animation ?? scoped ?? motion.transaction.effectiveAnimation else { continue }
            let leaving = TransitionElement(
                element.child, transition: element.transition, effects: element.transition.removal,
                progress: element.progress, scopes: [])
            leaving.frame = element.frame
            leaving.copyViewport(from: element)
            list.append(Departure(key: key, element: leaving, animation: animation, start: motion.now, from: element.progress))
        }
    }

    /// Moves every departing view on to `time`; false when none is left.
    mutating func advance(to time: Double) -> Bool {
        list.removeAll { departure in
            let (a, _, finished) = departure.animation.state(at: time - departure.start)
            departure.element.progress = departure.from * a
            return finished || departure.element.progress <= 0 && departure.animation.repeats == 1
        }
        return !list.isEmpty
    }

    func draw(_ renderer: HostBridge, overlays: Bool) {
        for departure in list where (departure.element.child is ModalElement) == overlays {
            renderer.save()
            if let viewport = departure.element.viewport { renderer.clip(Path(viewport)) }
            departure.element.draw(renderer)
            renderer.restore()
        }
    }
}

extension TransitionElement {
    fileprivate func copyViewport(from other: TransitionElement) { viewport = other.viewport }
}

private enum AnimationScopesKey: EnvironmentKey { static let defaultValue: [ViewPath] = [] }

extension EnvironmentValues {
    /// The `.animation(_:value:)` modifiers around a view, innermost last.
    var animationScopes: [ViewPath] {
        get { self[AnimationScopesKey.self] }
        set { self[AnimationScopesKey.self] = newValue }
    }
}

// MARK: - Content transitions

/// A text whose content changed under an animation: the old one fades out as the new one fades in.
final class CrossFadeElement: WrapperElement {
    let old: Element
    let progress: Double
    init(_ child: Element, old: Element, progress: Double) {
        self.old = old; self.progress = progress
        super.init(child)
    }
    override var bleed: CGFloat? { nil }
    override func place(in rect: CGRect) {
        frame = rect
        child.place(in: rect)
        // The old content keeps its size, centred on the new place.
        old.place(in: Alignment.center.place(old.frame.size, in: rect))
    }
    override func draw(_ renderer: HostBridge) {
        renderer.save()
        renderer.multiplyOpacity(1 - progress)
        old.draw(renderer)
        renderer.restore()
        renderer.save()
        renderer.multiplyOpacity(progress)
        child.draw(renderer)
        renderer.restore()
    }
}

@MainActor
private final class FadeMemory {
    var shown: Element?
    var text: String?
    var old: Element?
}

@MainActor
private func firstText(_ element: Element) -> String? {
    var found: String?
    element.forEach { if found == nil, let text = $0 as? TextElement { found = text.string } }
    return found
}

@MainActor
private func crossFade(_ element: Element, context: ResolveContext) -> Element {
    let motion = context.graph.motion
    let node = context.graph.storage(at: context.path).0
    let memory = node.slot(Int.max - 1) { FadeMemory() }
    let text = firstText(element)
    let (progress, _) = motion.animator(1.0, at: context.path, .presentation)
    if let previous = memory.shown, memory.text != nil, text != memory.text,
        let animation = context.environment.transaction.effectiveAnimation
    {
        memory.old = previous
        progress.run(from: 0, animation: animation, at: motion.now)
    }
    memory.shown = element
    memory.text = text
    let (shown, finished) = progress.sample(motion.now)
    guard !finished, let old = memory.old else {
        memory.old = nil
        return element
    }
    motion.keepMoving()
    return CrossFadeElement(element, old: old, progress: shown)
}

// MARK: - Matched geometry

/// Which views share a geometry: `@Namespace var namespace` and `.matchedGeometryEffect(id:in:)`.
@propertyWrapper
public struct Namespace: DynamicProperty, StorageBound {
    public struct ID: Hashable, Sendable {
        let value: Int
    }
    final class Box {
        var id: ID?
        static var next = 0
        func take() -> ID {
            if let id { return id }
            Box.next += 1
            let made = ID(value: Box.next)
            id = made
            return made
        }
    }
    @MainActor final class Cell { let id: ID; init(_ id: ID) { self.id = id } }
    private let box = Box()
    public init() {}
    public var wrappedValue: ID { box.take() }
    func bind(to storage: NodeStorage, index: Int, context: ResolveContext) {
        let box = self.box
        box.id = storage.slot(index) { Cell(box.take()) }.id
    }
}

public struct MatchedGeometryProperties: OptionSet, Sendable {
    public let rawValue: Int
    public init(rawValue: Int) { self.rawValue = rawValue }
    public static let position = MatchedGeometryProperties(rawValue: 1)
    public static let size = MatchedGeometryProperties(rawValue: 2)
    public static let frame: MatchedGeometryProperties = [.position, .size]
}

/// Where views with an identity were last placed: a view that takes its place elsewhere under
/// an animation (a row moved by an insertion above it, a matched view taking over an id) moves
/// from there to its new place.
@MainActor
struct MatchedGeometry {
    enum Key: Hashable {
        case matched(Namespace.ID, AnyHashable)
        /// The n-th element of a row of a ForEach.
        case row(ViewPath, Int)
    }
    private var placed: [Key: (rect: CGRect, pass: Int)] = [:]
    private var animators: [Key: AnimatedValue<CGRect.AnimatableData>] = [:]

    /// Now and then forgets the views that have not been placed for a while.
    mutating func beginPass(_ pass: Int) {
        guard pass % 64 == 0 else { return }
        placed = placed.filter { $0.value.pass >= pass - 64 }
        let live = placed
        animators = animators.filter { live[$0.key] != nil }
    }

    /// The view of `key` stays where it was placed, in update `pass`.
    mutating func keep(_ key: Key, pass: Int) {
        if case .row = key { placed[key]?.pass = pass }
    }

    func isMoving(_ key: Key) -> Bool { animators[key]?.animation != nil }

    /// Whether a view still moves to its place at `time`.
    func moving(at time: Double) -> Bool { animators.values.contains { !$0.sample(time).finished } }

    /// Where the view of `key` placed at `rect` is drawn.
    mutating func place(_ key: Key, at rect: CGRect, animation: Animation?, motion: Motion) -> CGRect {
        let previous = placed[key]
        // A second view with the same id in one update stays where it is.
        if case .matched = key, let previous, previous.pass == motion.pass, previous.rect != rect { return rect }
        placed[key] = (rect, motion.pass)
        let animator: AnimatedValue<CGRect.AnimatableData>
        if let existing = animators[key] {
            animator = existing
        } else {
            guard let previous, previous.rect != rect, animation != nil else { return rect }
            animator = AnimatedValue(previous.rect.animatableData)
            animators[key] = animator
        }
        if animator.target != rect.animatableData { animator.retarget(rect.animatableData, animation: animation, at: motion.now) }
        let (shown, finished) = animator.sample(motion.now)
        if finished {
            animators[key] = nil
            return rect
        }
        motion.keepMovingInPlace()
        var result = CGRect.zero
        result.animatableData = shown
        return result
    }
}

final class MatchedGeometryElement: WrapperElement {
    let key: MatchedGeometry.Key
    let animation: Animation?
    let properties: MatchedGeometryProperties
    unowned let motion: Motion
    private var transform = CGAffineTransform.identity
    init(_ child: Element, key: MatchedGeometry.Key, animation: Animation?, properties: MatchedGeometryProperties, motion: Motion) {
        self.key = key; self.animation = animation; self.properties = properties; self.motion = motion
        super.init(child)
    }
    /// The element for `child`; the previous update's when nothing about it moves.
    static func make(
        _ child: Element, key: MatchedGeometry.Key, properties: MatchedGeometryProperties, context: ResolveContext
    ) -> MatchedGeometryElement {
        let motion = context.graph.motion, animation = context.environment.transaction.effectiveAnimation
        if animation == nil, !motion.matched.isMoving(key),
            let previous = reusable(
                [child], pass: context.graph.pass, { (e: MatchedGeometryElement) in e.key == key && e.transform.isIdentity })
        {
            motion.matched.keep(key, pass: context.graph.pass)
            return previous
        }
        return MatchedGeometryElement(child, key: key, animation: animation, properties: properties, motion: motion)
    }
    override var bleed: CGFloat? { transform.isIdentity ? 0 : nil }
    override func place(in rect: CGRect) {
        if keepsPlace(rect) { return }
        frame = rect
        child.place(in: rect)
        let shown = motion.matched.place(key, at: rect, animation: animation, motion: motion)
        var t = CGAffineTransform.identity
        if properties.contains(.size), rect.width > 0, rect.height > 0 {
            t = CGAffineTransform(translationX: -rect.minX, y: -rect.minY)
                .concatenating(CGAffineTransform(scaleX: shown.width / rect.width, y: shown.height / rect.height))
                .concatenating(CGAffineTransform(translationX: rect.minX, y: rect.minY))
        }
        if properties.contains(.position) {
            let dx = properties.contains(.size) ? shown.minX - rect.minX : shown.midX - rect.midX
            let dy = properties.contains(.size) ? shown.minY - rect.minY : shown.midY - rect.midY
            t = t.concatenating(CGAffineTransform(translationX: dx, y: dy))
        }
        transform = t
    }
    override func draw(_ renderer: HostBridge) {
        guard !transform.isIdentity else { return child.draw(renderer) }
        renderer.save()
        renderer.concat(transform)
        child.draw(renderer)
        renderer.restore()
    }
}

extension ResolveContext {
    /// The elements of a row of a ForEach, which slide to their new place when rows are
    /// inserted, removed or moved under an animation.
    func sliding(_ elements: [Element], row: ViewPath) -> [Element] {
        elements.enumerated().map { index, element in
            MatchedGeometryElement.make(element, key: .row(row, index), properties: .position, context: self)
        }
    }
}

extension View {
    /// Views with the same `id` in `namespace` share a geometry: when one takes the other's
    /// place under an animation, it moves and resizes from where the other was.
    public func matchedGeometryEffect<ID: Hashable>(
        id: ID, in namespace: Namespace.ID, properties: MatchedGeometryProperties = .frame,
        anchor: UnitPoint = .center, isSource: Bool = true
    ) -> some View {
        modifier(
            ElementModifier { element, context in
                MatchedGeometryElement.make(element, key: .matched(namespace, AnyHashable(id)), properties: properties, context: context)
            })
    }
}
