import Foundation

/// The properties of a view that animate, each a separate value at the view's place.
enum AnimatedProperty: Int {
    case opacity, offset, scale, rotation, position, frameWidth, frameHeight, shape, fill, transition, presentation, matched
    /// The data of an app's own `Animatable` view or modifier.
    case custom
}

/// One animated value at one place in the graph.
struct AnimatorKey: Hashable {
    let path: ViewPath
    /// The property, and which of its kind at this place (`.opacity(a).opacity(b)`).
    let slot: Int
}

@MainActor
class AnyAnimator {
    var lastPass = 0
}

/// A value and the animation that carries its presentation towards it. The app always sees
/// the target; only what is drawn moves.
@MainActor
final class AnimatedValue<V: VectorArithmetic>: AnyAnimator {
    private(set) var target: V
    private var from: V
    private var velocity: V
    private var start = 0.0
    private(set) var animation: Animation?

    init(_ value: V) {
        target = value; from = value; velocity = .zero
    }

    /// The value drawn at `time`, and whether its animation has ended.
    func sample(_ time: Double) -> (V, finished: Bool) {
        guard let animation else { return (target, true) }
        let (a, b, finished) = animation.state(at: time - start)
        if finished {
            self.animation = nil
            return (target, true)
        }
        return (target + (from - target).scaled(by: a) + velocity.scaled(by: b), false)
    }

    /// Moves the target; with an animation, from where the value is drawn now and as fast as
    /// it moves there, so a change in the middle of an animation bends it instead of jumping.
    func retarget(_ value: V, animation: Animation?, at time: Double) {
        guard let animation else {
            target = value
            self.animation = nil
            return
        }
        let (current, finished) = sample(time)
        var speed = V.zero
        if !finished {
            let step = 1.0 / 240
            let (earlier, _) = sample(time - step)
            speed = (current - earlier).scaled(by: 1 / step)
        }
        if case .spring = animation.curve, animation.repeats == 1, !animation.autoreverses {
            velocity = speed
        } else {
            velocity = .zero
        }
        from = current
        target = value
        start = time
        self.animation = animation
    }

    /// Starts an animation from `value` to the target, as an inserted view's transition does.
    func run(from value: V, animation: Animation, at time: Double) {
        from = value
        velocity = .zero
        start = time
        self.animation = animation
    }
}

/// The animation engine of one graph: the values being animated, the transaction of the
/// update being resolved, the clock, and whether the host must come back for another frame.
@MainActor
final class Motion {
    /// Seconds on a steady clock. Tests set their own to step through animations.
    static var clock: () -> Double = { ProcessInfo.processInfo.systemUptime }
    /// The time between frames while something moves.
    static let frameInterval = 1.0 / 60

    /// The moment the update being resolved shows.
    private(set) var now = 0.0
    /// The transaction of the changes the update being resolved shows.
    private(set) var transaction = Transaction()
    private var pending: Transaction?
    private var animators: [AnimatorKey: AnyAnimator] = [:]
    private var ordinals: [AnimatorKey: Int] = [:]
    private(set) var pass = 0
    /// Whether a value was still moving in the last update.
    private(set) var moving = false
    /// The shortest interval a live timeline asked for in the last update.
    private var timelineInterval: Double?
    private var lastFrame = -Double.infinity
    /// Views that went away with a transition, drawn until it ends.
    var departures = Departures()
    /// Transition scopes present in the update being resolved, and in the previous one.
    var presentTransitions: [ViewPath: TransitionElement] = [:]
    var previousTransitions: [ViewPath: TransitionElement] = [:]
    var matched = MatchedGeometry()
    /// What moves the drawn values of the tree in place, for frames where nothing else changed.
    private var sinks: [(Double) -> Bool] = []
    /// Whether something moves that only resolving the tree again can show.
    private var needsResolve = false

    /// Remembers the transaction of a state change so that the update that shows it animates.
    func record(_ change: Transaction) {
        if change.effectiveAnimation != nil || change.disablesAnimations { pending = change }
    }

    /// Whether the next update must resolve again because something moves and a frame is due.
    var frameDue: Bool {
        guard moving || timelineInterval != nil else { return false }
        let interval = moving ? Motion.frameInterval : timelineInterval!
        return Motion.clock() - lastFrame >= interval * 0.5
    }

    /// Seconds until the next frame (0 when it is due), or nil when nothing moves.
    var nextFrame: Double? {
        guard moving || timelineInterval != nil else { return nil }
        let interval = moving ? Motion.frameInterval : timelineInterval!
        return max(0, lastFrame + interval - Motion.clock())
    }

    func beginPass(_ pass: Int) {
        self.pass = pass
        now = Motion.clock()
        transaction = pending ?? Transaction()
        pending = nil
        moving = false
        needsResolve = false
        sinks.removeAll(keepingCapacity: true)
        timelineInterval = nil
        ordinals.removeAll(keepingCapacity: true)
        swap(&previousTransitions, &presentTransitions)
        presentTransitions.removeAll(keepingCapacity: true)
        matched.beginPass(pass)
    }

    func endPass(graph: ViewGraph) {
        animators = animators.filter { $0.value.lastPass == pass }
        departures.collect(leaving: previousTransitions, staying: presentTransitions, motion: self)
        if departures.advance(to: now) { moving = true }
        lastFrame = now
    }

    /// A live timeline wants frames every `interval` seconds.
    func requestFrames(every interval: Double) {
        timelineInterval = min(timelineInterval ?? .infinity, max(Motion.frameInterval, interval))
    }

    /// Marks that a view still moves to where it was placed; placing the tree again moves it on.
    func keepMovingInPlace() { moving = true }

    /// Marks that something will still be moving after this update, which the next frame
    /// resolves again to show.
    func keepMoving() {
        moving = true
        needsResolve = true
    }

    /// Marks that `sink` moves something drawn: it takes the time of a frame and says whether
    /// it is still moving.
    func keepMoving(_ sink: @escaping (Double) -> Bool) {
        moving = true
        sinks.append(sink)
    }

    /// Moves what is drawn on to the clock's time without resolving the tree, when nothing but
    /// values with sinks moves; false when the tree must be resolved instead.
    func patchFrame() -> Bool {
        guard !needsResolve, timelineInterval == nil else { return false }
        now = Motion.clock()
        sinks.removeAll { !$0(now) }
        moving = !sinks.isEmpty || matched.moving(at: now)
        if departures.advance(to: now) { moving = true }
        lastFrame = now
        return true
    }

    private func key(_ path: ViewPath, _ property: AnimatedProperty) -> AnimatorKey {
        let base = AnimatorKey(path: path, slot: property.rawValue)
        let ordinal = ordinals[base, default: 0]
        ordinals[base] = ordinal + 1
        return ordinal == 0 ? base : AnimatorKey(path: path, slot: property.rawValue + 64 * ordinal)
    }

    /// The animator of `property` at `path`, made at `value` when it is new.
    func animator<V: VectorArithmetic>(_ value: V, at path: ViewPath, _ property: AnimatedProperty) -> (AnimatedValue<V>, isNew: Bool) {
        let key = key(path, property)
        if let existing = animators[key] as? AnimatedValue<V> {
            existing.lastPass = pass
            return (existing, false)
        }
        let made = AnimatedValue(value)
        made.lastPass = pass
        animators[key] = made
        return (made, true)
    }

    /// What to draw for `value` of `property` at `path`: the value itself unless it changed
    /// under an animated transaction and is on its way there.
    /// With `apply`, a frame that only moves values patches what is drawn through it.
    func animated<V: VectorArithmetic>(
        _ value: V, at path: ViewPath, _ property: AnimatedProperty, transaction: Transaction, apply: ((V) -> Void)? = nil
    ) -> V {
        let (animator, isNew) = animator(value, at: path, property)
        if isNew { return value }
        if animator.target != value {
            animator.retarget(value, animation: transaction.effectiveAnimation, at: now)
        }
        let (shown, finished) = animator.sample(now)
        if !finished {
            if let apply {
                keepMoving { time in
                    let (shown, finished) = animator.sample(time)
                    apply(shown)
                    return !finished
                }
            } else {
                keepMoving()
            }
        }
        return shown
    }
}

extension ResolveContext {
    /// The value to draw for `value`, which animates when it changes under an animation.
    func animated<V: VectorArithmetic>(_ value: V, _ property: AnimatedProperty) -> V {
        graph.motion.animated(value, at: path, property, transaction: environment.transaction)
    }
    func animated<A: Animatable>(_ value: A, _ property: AnimatedProperty) -> A {
        var shown = value
        shown.animatableData = animated(value.animatableData, property)
        return shown
    }

    /// Sets the element's property at `keyPath` to its animated value, and keeps it moving on
    /// frames that resolve nothing.
    func animate<E: Element, V: VectorArithmetic>(_ element: E, _ keyPath: ReferenceWritableKeyPath<E, V>, _ property: AnimatedProperty)
        -> E
    {
        element[keyPath: keyPath] = graph.motion.animated(
            element[keyPath: keyPath], at: path, property, transaction: environment.transaction
        ) { element[keyPath: keyPath] = $0 }
        return element
    }
    func animate<E: Element, A: Animatable>(_ element: E, _ keyPath: ReferenceWritableKeyPath<E, A>, _ property: AnimatedProperty) -> E {
        element[keyPath: keyPath].animatableData = graph.motion.animated(
            element[keyPath: keyPath].animatableData, at: path, property, transaction: environment.transaction
        ) { element[keyPath: keyPath].animatableData = $0 }
        return element
    }
}

/// An app's view or modifier that is `Animatable`, as its animation shows it now.
@MainActor
func presented<T>(_ value: T, _ context: ResolveContext) -> T {
    // Shapes animate their outline where they are drawn, whether filled, stroked or bare.
    guard let animatable = value as? any Animatable, !(value is any Shape) else { return value }
    func open<A: Animatable>(_ value: A) -> Any {
        A.AnimatableData.self == EmptyAnimatableData.self ? value : context.animated(value, .custom)
    }
    return open(animatable) as! T
}

// MARK: - Shapes

/// A shape's outline, and for a shape with animatable data, the shape as its animation
/// shows it at the update being resolved.
struct ShapeSource {
    let path: (CGRect) -> Path
    let presented: (@MainActor (ResolveContext) -> ShapeSource)?

    init<S: Shape>(_ shape: S) {
        path = { shape.path(in: $0) }
        if S.AnimatableData.self == EmptyAnimatableData.self {
            presented = nil
        } else {
            presented = { context in ShapeSource(still: context.animated(shape, .shape)) }
        }
    }
    private init<S: Shape>(still shape: S) {
        path = { shape.path(in: $0) }
        presented = nil
    }
    func callAsFunction(_ rect: CGRect) -> Path { path(rect) }
}

extension ShapeView {
    /// Gives the element the solid colour to draw while a change of it animates.
    @MainActor
    func animateColor(of element: ShapeElement, _ context: ResolveContext) {
        let style = stroke.map { $0.0 } ?? fill
        let paint = style?.paint(in: .zero, environment: context.environment) ?? context.environment.foregroundRGBA(in: .zero)
        guard case .solid(let color) = paint else { return }
        let shown = context.graph.motion.animated(color, at: context.path, .fill, transaction: context.environment.transaction) {
            element.color = $0 == color ? nil : $0
        }
        element.color = shown == color ? nil : shown
    }
}

extension AnyTransition {
    /// A sheet or an alert: the panel rises in as the window behind dims.
    static let presentation = AnyTransition(insertion: [], removal: [], animation: .spring(duration: 0.35))
}

extension ViewGraph {
    /// A change made under `change` (possibly on another thread's turn): update, animating as it says.
    func invalidate(after change: Transaction) {
        motion.record(change)
        invalidate()
    }
}
