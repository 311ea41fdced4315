import Foundation

/// Animations are accepted and end at their final state at once.
public struct Animation: Equatable, Sendable {
    let duration: Double
    public static let `default` = Animation(duration: 0.35)
    public static let linear = Animation(duration: 0.35)
    public static let easeIn = Animation(duration: 0.35)
    public static let easeOut = Animation(duration: 0.35)
    public static let easeInOut = Animation(duration: 0.35)
    public static let spring = Animation(duration: 0.5)
    public static let bouncy = Animation(duration: 0.5)
    public static let smooth = Animation(duration: 0.5)
    public static let snappy = Animation(duration: 0.3)
    public static let interactiveSpring = Animation(duration: 0.15)
    public static func linear(duration: Double) -> Animation { Animation(duration: duration) }
    public static func easeIn(duration: Double) -> Animation { Animation(duration: duration) }
    public static func easeOut(duration: Double) -> Animation { Animation(duration: duration) }
    public static func easeInOut(duration: Double) -> Animation { Animation(duration: duration) }
    public static func spring(response: Double = 0.5, dampingFraction: Double = 0.825, blendDuration: Double = 0) -> Animation {
        Animation(duration: response)
    }
    @_disfavoredOverload
    public static func spring(duration: Double = 0.5, bounce: Double = 0, blendDuration: Double = 0) -> Animation {
        Animation(duration: duration)
    }
    public static func bouncy(duration: Double = 0.5, extraBounce: Double = 0) -> Animation { Animation(duration: duration) }
    public static func interpolatingSpring(stiffness: Double, damping: Double) -> Animation { .spring }
    public func delay(_ delay: Double) -> Animation { self }
    public func speed(_ speed: Double) -> Animation { self }
    public func repeatForever(autoreverses: Bool = true) -> Animation { self }
    public func repeatCount(_ count: Int, autoreverses: Bool = true) -> Animation { self }
}

@discardableResult
public func withAnimation<Result>(_ animation: Animation? = .default, _ body: () throws -> Result) rethrows -> Result {
    try body()
}

public struct AnyTransition: Sendable {
    public static let opacity = AnyTransition(), scale = AnyTransition(), slide = AnyTransition(), identity = AnyTransition()
    public static func move(edge: Edge) -> AnyTransition { AnyTransition() }
    public static func scale(scale: CGFloat, anchor: UnitPoint = .center) -> AnyTransition { AnyTransition() }
    public static func offset(x: CGFloat = 0, y: CGFloat = 0) -> AnyTransition { AnyTransition() }
    public static func asymmetric(insertion: AnyTransition, removal: AnyTransition) -> AnyTransition { AnyTransition() }
    public static func push(from edge: Edge) -> AnyTransition { AnyTransition() }
    public func combined(with other: AnyTransition) -> AnyTransition { self }
    public func animation(_ animation: Animation?) -> AnyTransition { self }
}

public struct ContentTransition: Sendable {
    public static let identity = ContentTransition(), opacity = ContentTransition(), interpolate = ContentTransition()
    public static func numericText(countsDown: Bool = false) -> ContentTransition { ContentTransition() }
    public static func numericText(value: Double) -> ContentTransition { ContentTransition() }
}

extension View {
    public func animation<V: Equatable>(_ animation: Animation?, value: V) -> some View { self }
    public func animation(_ animation: Animation?) -> some View { self }
    public func transition(_ transition: AnyTransition) -> some View { self }
    public func contentTransition(_ transition: ContentTransition) -> some View { self }
}

/// Values an animation could interpolate; the kit shows the final value at once.
public protocol VectorArithmetic: AdditiveArithmetic {
    mutating func scale(by rhs: Double)
    var magnitudeSquared: Double { get }
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
    public mutating func scale(by rhs: Double) { first.scale(by: rhs); second.scale(by: rhs) }
    public var magnitudeSquared: Double { first.magnitudeSquared + second.magnitudeSquared }
}

/// A view or shape whose `animatableData` an animation would step through.
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

/// A view modifier that could animate; applied at its final value.
public protocol AnimatableModifier: Animatable, ViewModifier {}
