import Foundation

/// How a change moves from its old value to its new one: a timing curve or a spring, with
/// delay, speed and repetition.
public struct Animation: Equatable, Sendable, CustomStringConvertible {
    enum Curve: Equatable, Sendable {
        /// A cubic Bézier timing curve from (0, 0) to (1, 1) through two control points.
        case bezier(x1: Double, y1: Double, x2: Double, y2: Double, duration: Double)
        case spring(mass: Double, stiffness: Double, damping: Double)
    }
    var curve: Curve
    var delay: Double = 0
    var speed: Double = 1
    /// Runs of the curve; nil repeats for ever.
    var repeats: Int? = 1
    var autoreverses = false

    init(curve: Curve) { self.curve = curve }

    public var description: String { "Animation(\(curve))" }

    public static let `default` = Animation.easeInOut
    public static let linear = Animation.linear(duration: 0.35)
    public static let easeIn = Animation.easeIn(duration: 0.35)
    public static let easeOut = Animation.easeOut(duration: 0.35)
    public static let easeInOut = Animation.easeInOut(duration: 0.35)
    public static let spring = Animation.spring(response: 0.5, dampingFraction: 0.825)
    public static let interactiveSpring = Animation.interactiveSpring()
    public static let bouncy = Animation.bouncy()
    public static let smooth = Animation.smooth()
    public static let snappy = Animation.snappy()

    public static func linear(duration: Double) -> Animation { timingCurve(0, 0, 1, 1, duration: duration) }
    public static func easeIn(duration: Double) -> Animation { timingCurve(0.42, 0, 1, 1, duration: duration) }
    public static func easeOut(duration: Double) -> Animation { timingCurve(0, 0, 0.58, 1, duration: duration) }
    public static func easeInOut(duration: Double) -> Animation { timingCurve(0.42, 0, 0.58, 1, duration: duration) }
    public static func timingCurve(_ c0x: Double, _ c0y: Double, _ c1x: Double, _ c1y: Double, duration: Double = 0.35) -> Animation {
        Animation(curve: .bezier(x1: c0x, y1: c0y, x2: c1x, y2: c1y, duration: max(0, duration)))
    }
    public static func timingCurve(_ start: UnitPoint, _ end: UnitPoint, duration: Double = 0.35) -> Animation {
        timingCurve(Double(start.x), Double(start.y), Double(end.x), Double(end.y), duration: duration)
    }

    /// A spring that takes about `response` seconds per oscillation, damped by `dampingFraction`
    /// (1 is critical: no overshoot).
    public static func spring(response: Double = 0.5, dampingFraction: Double = 0.825, blendDuration: Double = 0) -> Animation {
        let response = max(0.01, response)
        let omega = 2 * Double.pi / response
        return Animation(curve: .spring(mass: 1, stiffness: omega * omega, damping: 2 * max(0, dampingFraction) * omega))
    }
    /// A spring that settles in about `duration`; `bounce` above 0 overshoots, below 0 creeps.
    @_disfavoredOverload
    public static func spring(duration: Double = 0.5, bounce: Double = 0, blendDuration: Double = 0) -> Animation {
        let damping = bounce >= 0 ? 1 - min(bounce, 1) : 1 / (1 + max(bounce, -0.99))
        return spring(response: duration, dampingFraction: damping)
    }
    public static func spring(_ spring: Spring, blendDuration: Double = 0) -> Animation {
        Animation(curve: .spring(mass: spring.mass, stiffness: spring.stiffness, damping: spring.damping))
    }
    public static func interactiveSpring(response: Double = 0.15, dampingFraction: Double = 0.86, blendDuration: Double = 0.25)
        -> Animation
    {
        spring(response: response, dampingFraction: dampingFraction)
    }
    public static func interpolatingSpring(
        mass: Double = 1, stiffness: Double, damping: Double, initialVelocity: Double = 0
    ) -> Animation {
        Animation(curve: .spring(mass: max(0.001, mass), stiffness: max(0.001, stiffness), damping: max(0, damping)))
    }
    public static func interpolatingSpring(duration: Double = 0.5, bounce: Double = 0, initialVelocity: Double = 0) -> Animation {
        spring(duration: duration, bounce: bounce)
    }
    public static var interpolatingSpring: Animation { interpolatingSpring(duration: 0.5) }
    public static func bouncy(duration: Double = 0.5, extraBounce: Double = 0) -> Animation {
        spring(duration: duration, bounce: 0.3 + extraBounce)
    }
    public static func smooth(duration: Double = 0.5, extraBounce: Double = 0) -> Animation {
        spring(duration: duration, bounce: extraBounce)
    }
    public static func snappy(duration: Double = 0.5, extraBounce: Double = 0) -> Animation {
        spring(duration: duration, bounce: 0.15 + extraBounce)
    }

    public func delay(_ delay: Double) -> Animation {
        var copy = self
        copy.delay += delay
        return copy
    }
    public func speed(_ speed: Double) -> Animation {
        var copy = self
        copy.speed *= max(0.0001, speed)
        return copy
    }
    public func repeatCount(_ count: Int, autoreverses: Bool = true) -> Animation {
        var copy = self
        copy.repeats = max(1, count)
        copy.autoreverses = autoreverses
        return copy
    }
    public func repeatForever(autoreverses: Bool = true) -> Animation {
        var copy = self
        copy.repeats = nil
        copy.autoreverses = autoreverses
        return copy
    }

    /// Where a change stands `elapsed` seconds after it began: the value is
    /// `target + (from - target) * a + velocity * b`, with `velocity` the motion it started with.
    func state(at elapsed: Double) -> (a: Double, b: Double, finished: Bool) {
        let local = (elapsed - delay) * speed
        if local <= 0 { return (1, 0, false) }
        let single = curve.duration
        if repeats == 1 && !autoreverses {
            if case .spring = curve {
                if local >= single { return (0, 0, true) }
                let (a, b) = curve.springResponse(local)
                return (a, b, false)
            }
            if single <= 0 || local >= single { return (0, 0, true) }
            return (1 - curve.progress(local / single), 0, false)
        }
        // Repeated runs go by progress alone, each one from the start value (or back to it).
        guard single > 0 else { return (0, 0, true) }
        let run = Int(local / single)
        if let repeats, run >= repeats {
            let endsReversed = autoreverses && repeats % 2 == 0
            return (endsReversed ? 1 : 0, 0, true)
        }
        var progress = curve.progress((local - Double(run) * single) / single)
        if autoreverses && run % 2 == 1 { progress = 1 - progress }
        return (1 - progress, 0, false)
    }
}

extension Animation.Curve {
    /// Seconds one run takes: for a spring, until it has settled to a thousandth of its travel.
    var duration: Double {
        switch self {
        case .bezier(_, _, _, _, let duration): return duration
        case .spring:
            let epsilon = 1e-3
            var t = 0.0
            // The envelope of the motion falls monotonically, so stepping finds where it ends.
            while t < 30 {
                t += 1.0 / 120
                let (a, b) = springResponse(t)
                if abs(a) < epsilon && abs(b) * omega < epsilon && envelope(t) < epsilon { return t }
            }
            return t
        }
    }

    private var omega: Double {
        guard case let .spring(mass, stiffness, _) = self else { return 1 }
        return (stiffness / mass).squareRoot()
    }
    private var zeta: Double {
        guard case let .spring(mass, stiffness, damping) = self else { return 1 }
        return damping / (2 * (stiffness * mass).squareRoot())
    }
    private func envelope(_ t: Double) -> Double {
        zeta < 1 ? exp(-zeta * omega * t) * (1 + 1 / max(1e-6, (1 - zeta * zeta).squareRoot())) : 0
    }

    /// The damped oscillator's displacement at `t` for a unit start displacement (`a`) and
    /// for a unit start velocity (`b`).
    func springResponse(_ t: Double) -> (Double, Double) {
        let w = omega, z = zeta
        if z < 1 {
            let wd = w * (1 - z * z).squareRoot()
            let decay = exp(-z * w * t)
            return (decay * (cos(wd * t) + z * w / wd * sin(wd * t)), decay * sin(wd * t) / wd)
        }
        if abs(z - 1) < 1e-6 {
            let decay = exp(-w * t)
            return (decay * (1 + w * t), t * decay)
        }
        let root = (z * z - 1).squareRoot()
        let r1 = -w * (z - root), r2 = -w * (z + root)
        let e1 = exp(r1 * t), e2 = exp(r2 * t)
        return ((-r2 * e1 + r1 * e2) / (r1 - r2), (e1 - e2) / (r1 - r2))
    }

    /// The curve's progress (0 to 1, a spring may overshoot) at `fraction` of a run.
    func progress(_ fraction: Double) -> Double {
        let x = min(max(fraction, 0), 1)
        switch self {
        case let .bezier(x1, y1, x2, y2, _):
            if x1 == y1 && x2 == y2 { return x }
            return Self.bezier(x, x1, y1, x2, y2)
        case .spring:
            return 1 - springResponse(x * duration).0
        }
    }

    /// Solves the curve's x for `x` (Newton's method, bisection when it stalls), returns its y.
    private static func bezier(_ x: Double, _ x1: Double, _ y1: Double, _ x2: Double, _ y2: Double) -> Double {
        let cx = 3 * x1, bx = 3 * (x2 - x1) - cx, ax = 1 - cx - bx
        let cy = 3 * y1, by = 3 * (y2 - y1) - cy, ay = 1 - cy - by
        func sampleX(_ s: Double) -> Double { ((ax * s + bx) * s + cx) * s }
        func sampleY(_ s: Double) -> Double { ((ay * s + by) * s + cy) * s }
        var s = x
        for _ in 0..<8 {
            let error = sampleX(s) - x
            if abs(error) < 1e-7 { return sampleY(s) }
            let slope = (3 * ax * s + 2 * bx) * s + cx
            if abs(slope) < 1e-6 { break }
            s -= error / slope
        }
        var low = 0.0, high = 1.0
        s = x
        while high - low > 1e-7 {
            if sampleX(s) < x { low = s } else { high = s }
            s = (low + high) / 2
        }
        return sampleY(s)
    }
}

/// A spring's physical parameters.
public struct Spring: Equatable, Sendable {
    public var mass: Double, stiffness: Double, damping: Double
    public init(mass: Double = 1, stiffness: Double, damping: Double, allowOverDamping: Bool = false) {
        self.mass = mass; self.stiffness = stiffness; self.damping = damping
    }
    public init(response: Double = 0.5, dampingRatio: Double = 1) {
        let omega = 2 * Double.pi / max(0.01, response)
        self.init(stiffness: omega * omega, damping: 2 * dampingRatio * omega)
    }
    public init(duration: Double = 0.5, bounce: Double = 0) {
        self.init(response: duration, dampingRatio: bounce >= 0 ? 1 - min(bounce, 1) : 1 / (1 + max(bounce, -0.99)))
    }
    public static let smooth = Spring(duration: 0.5, bounce: 0)
    public static let snappy = Spring(duration: 0.5, bounce: 0.15)
    public static let bouncy = Spring(duration: 0.5, bounce: 0.3)
}

/// The context of one state change: the animation its effects on screen follow.
public struct Transaction {
    public var animation: Animation?
    public var disablesAnimations = false
    public var isContinuous = false
    public init() {}
    public init(animation: Animation?) { self.animation = animation }

    /// The transaction of the change being made now (inside `withTransaction`); only the main
    /// thread changes state that views show.
    nonisolated(unsafe) static var current = Transaction()

    /// The animation that changes made under this transaction follow, if any.
    var effectiveAnimation: Animation? { disablesAnimations ? nil : animation }
}

/// Makes the changes of `body` under `transaction`: what they change on screen animates with
/// its animation. State reads inside and after see the new values at once.
@discardableResult
public func withTransaction<Result>(_ transaction: Transaction, _ body: () throws -> Result) rethrows -> Result {
    let saved = Transaction.current
    Transaction.current = transaction
    defer { Transaction.current = saved }
    return try body()
}

@discardableResult
public func withTransaction<R, V>(_ keyPath: WritableKeyPath<Transaction, V>, _ value: V, _ body: () throws -> R) rethrows -> R {
    var transaction = Transaction.current
    transaction[keyPath: keyPath] = value
    return try withTransaction(transaction, body)
}

@discardableResult
public func withAnimation<Result>(_ animation: Animation? = .default, _ body: () throws -> Result) rethrows -> Result {
    var transaction = Transaction.current
    transaction.animation = animation
    transaction.disablesAnimations = false
    return try withTransaction(transaction, body)
}

public struct AnimationCompletionCriteria: Hashable, Sendable {
    public static let logicallyComplete = AnimationCompletionCriteria()
    public static let removed = AnimationCompletionCriteria()
}

/// Animates the changes of `body` and runs `completion` once the animation has ended.
@discardableResult
public func withAnimation<Result>(
    _ animation: Animation? = .default, completionCriteria: AnimationCompletionCriteria = .logicallyComplete,
    _ body: () throws -> Result, completion: @escaping @MainActor () -> Void
) rethrows -> Result {
    let result = try withAnimation(animation, body)
    let seconds = animation?.totalDuration ?? 0
    if seconds.isFinite {
        DispatchQueue.main.asyncAfter(deadline: .now() + seconds) { MainActor.assumeIsolated { completion() } }
    }
    return result
}

extension Animation {
    /// Seconds from the start until the animation ends; infinite when it repeats for ever.
    var totalDuration: Double {
        guard let repeats else { return .infinity }
        return delay + curve.duration * Double(repeats) / speed
    }
}

// MARK: - Values that can be interpolated

/// A value with addition and scaling: what animations interpolate.
public protocol VectorArithmetic: AdditiveArithmetic {
    mutating func scale(by rhs: Double)
    var magnitudeSquared: Double { get }
}

extension VectorArithmetic {
    public func scaled(by rhs: Double) -> Self {
        var copy = self
        copy.scale(by: rhs)
        return copy
    }
    /// The value `fraction` of the way from `self` to `other`.
    func interpolated(towards other: Self, amount fraction: Double) -> Self { self + (other - self).scaled(by: fraction) }
}

extension Double: VectorArithmetic {
    public mutating func scale(by rhs: Double) { self *= rhs }
    public var magnitudeSquared: Double { self * self }
}
extension Float: VectorArithmetic {
    public mutating func scale(by rhs: Double) { self *= Float(rhs) }
    public var magnitudeSquared: Double { Double(self * self) }
}
extension CGFloat: VectorArithmetic {
    public mutating func scale(by rhs: Double) { self *= CGFloat(rhs) }
    public var magnitudeSquared: Double { Double(self * self) }
}

public struct EmptyAnimatableData: VectorArithmetic {
    public init() {}
    public static var zero: EmptyAnimatableData { EmptyAnimatableData() }
    public static func + (a: Self, b: Self) -> Self { a }
    public static func - (a: Self, b: Self) -> Self { a }
    public mutating func scale(by rhs: Double) {}
    public var magnitudeSquared: Double { 0 }
}

public struct AnimatablePair<First: VectorArithmetic, Second: VectorArithmetic>: VectorArithmetic {
    public var first: First
    public var second: Second
    public init(_ first: First, _ second: Second) { self.first = first; self.second = second }
    public static var zero: Self { Self(.zero, .zero) }
    public static func + (a: Self, b: Self) -> Self { Self(a.first + b.first, a.second + b.second) }
    public static func - (a: Self, b: Self) -> Self { Self(a.first - b.first, a.second - b.second) }
    public mutating func scale(by rhs: Double) {
        first.scale(by: rhs)
        second.scale(by: rhs)
    }
    public var magnitudeSquared: Double { first.magnitudeSquared + second.magnitudeSquared }
}

/// A value whose `animatableData` moves along an animation: custom shapes declare it to
/// animate their own parameters.
public protocol Animatable {
    associatedtype AnimatableData: VectorArithmetic
    var animatableData: AnimatableData { get set }
}

extension Animatable where AnimatableData == EmptyAnimatableData {
    public var animatableData: EmptyAnimatableData {
        get { EmptyAnimatableData() }
        set {}
    }
}

/// A modifier whose `animatableData` steps along animations: its body sees each step.
public protocol AnimatableModifier: Animatable, ViewModifier {}

extension Animatable where Self: VectorArithmetic {
    public var animatableData: Self {
        get { self }
        set { self = newValue }
    }
}

extension CGPoint: Animatable {
    public var animatableData: AnimatablePair<CGFloat, CGFloat> {
        get { AnimatablePair(x, y) }
        set { (x, y) = (newValue.first, newValue.second) }
    }
}
extension CGSize: Animatable {
    public var animatableData: AnimatablePair<CGFloat, CGFloat> {
        get { AnimatablePair(width, height) }
        set { (width, height) = (newValue.first, newValue.second) }
    }
}
extension CGRect: Animatable {
    public var animatableData: AnimatablePair<CGPoint.AnimatableData, CGSize.AnimatableData> {
        get { AnimatablePair(origin.animatableData, size.animatableData) }
        set { (origin.animatableData, size.animatableData) = (newValue.first, newValue.second) }
    }
}
extension Angle: Animatable {
    public var animatableData: Double {
        get { radians }
        set { radians = newValue }
    }
}

extension RGBA: VectorArithmetic {
    static var zero: RGBA { RGBA(red: 0, green: 0, blue: 0, alpha: 0) }
    static func + (a: RGBA, b: RGBA) -> RGBA {
        RGBA(red: a.red + b.red, green: a.green + b.green, blue: a.blue + b.blue, alpha: a.alpha + b.alpha)
    }
    static func - (a: RGBA, b: RGBA) -> RGBA {
        RGBA(red: a.red - b.red, green: a.green - b.green, blue: a.blue - b.blue, alpha: a.alpha - b.alpha)
    }
    mutating func scale(by rhs: Double) {
        red *= rhs; green *= rhs; blue *= rhs; alpha *= rhs
    }
    var magnitudeSquared: Double { red * red + green * green + blue * blue + alpha * alpha }
}

// MARK: - Modifiers

extension View {
    /// Animates the changes below this view with `animation` when `value` changes.
    public func animation<V: Equatable>(_ animation: Animation?, value: V) -> some View {
        modifier(
            StatefulModifier(tag: "animation") { content, context in
                let (node, isNew) = context.graph.storage(at: context.path)
                let previous = node.values["animationValue"] as? V
                node.values["animationValue"] = value
                var inner = context
                inner.environment.animationScopes.append(context.path)
                if !isNew && previous != value {
                    inner.environment.transaction.animation = animation
                    inner.environment.transaction.disablesAnimations = false
                    if let animation { context.graph.motion.departures.firedScopes[context.path] = animation }
                }
                return content(inner)
            })
    }
    /// Animates every change below this view with `animation`.
    public func animation(_ animation: Animation?) -> some View {
        transaction { $0.animation = animation }
    }
    /// Changes the transaction of the changes below this view.
    public func transaction(_ transform: @escaping (inout Transaction) -> Void) -> some View {
        modifier(
            StatefulModifier(tag: "transaction") { content, context in
                var inner = context
                transform(&inner.environment.transaction)
                return content(inner)
            })
    }
    public func transaction<V: Equatable>(value: V, _ transform: @escaping (inout Transaction) -> Void) -> some View {
        modifier(
            StatefulModifier(tag: "transaction") { content, context in
                let (node, isNew) = context.graph.storage(at: context.path)
                let previous = node.values["transactionValue"] as? V
                node.values["transactionValue"] = value
                var inner = context
                if !isNew && previous != value { transform(&inner.environment.transaction) }
                return content(inner)
            })
    }
}

private enum TransactionKey: EnvironmentKey { static let defaultValue = Transaction() }

extension EnvironmentValues {
    /// The transaction of the update being resolved, as modifiers above have changed it.
    var transaction: Transaction {
        get { self[TransactionKey.self] }
        set { self[TransactionKey.self] = newValue }
    }
}
