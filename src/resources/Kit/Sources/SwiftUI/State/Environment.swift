import Foundation

public protocol EnvironmentKey {
    associatedtype Value
    static var defaultValue: Value { get }
}

/// Values handed down the view tree: each view sees what its ancestors set.
public struct EnvironmentValues: CustomStringConvertible {
    private var values: [ObjectIdentifier: Any] = [:]
    var objects: [ObjectIdentifier: AnyObject] = [:]
    public init() {}

    // What every text and shape reads, kept in fields: a lookup with a cast for each of a
    // thousand texts, and a copy of the whole table for each `.font`, cost a frame's budget.
    private var storedColorScheme = ColorScheme.light
    private var storedFont: Font?
    private var storedAlignment = TextAlignment.leading
    private var storedLineLimit: Int?
    private var storedEnabled = true
    private var storedAccent = RGBA(red: 0, green: 0.48, blue: 1, alpha: 1)
    private var storedForeground: AnyShapeStyle?
    private var storedTint: AnyShapeStyle?
    private var storedTraits = TextTraits()

    public subscript<K: EnvironmentKey>(key: K.Type) -> K.Value {
        get { values[ObjectIdentifier(key)] as? K.Value ?? K.defaultValue }
        set { values[ObjectIdentifier(key)] = newValue }
    }
    public var description: String { "EnvironmentValues(\(values.count) values)" }
}

public enum ColorScheme: Hashable, CaseIterable, Sendable { case light, dark }
public enum LayoutDirection: Hashable, Sendable { case leftToRight, rightToLeft }
public enum ControlSize: Hashable, CaseIterable, Sendable { case mini, small, regular, large, extraLarge }

private enum DefaultsKey: EnvironmentKey { static let defaultValue = UserDefaults.standard }
private enum ControlSizeKey: EnvironmentKey { static let defaultValue = ControlSize.regular }
private enum DismissKey: EnvironmentKey { static let defaultValue = DismissAction(action: {}) }
private enum LayoutDirectionKey: EnvironmentKey { static let defaultValue = LayoutDirection.leftToRight }

/// Traits that `.bold()`, `.italic()` and friends set for all text below them.
struct TextTraits: Equatable {
    var weight: Font.Weight?
    var italic = false
    var monospaced = false
    var monospacedDigit = false
    var underline = false
    var strikethrough = false
}

extension EnvironmentValues {
    public var colorScheme: ColorScheme {
        get { storedColorScheme }
        set { storedColorScheme = newValue }
    }
    public var font: Font? {
        get { storedFont }
        set { storedFont = newValue }
    }
    public var multilineTextAlignment: TextAlignment {
        get { storedAlignment }
        set { storedAlignment = newValue }
    }
    public var lineLimit: Int? {
        get { storedLineLimit }
        set { storedLineLimit = newValue }
    }
    public var isEnabled: Bool {
        get { storedEnabled }
        set { storedEnabled = newValue }
    }
    public var defaultAppStorage: UserDefaults {
        get { self[DefaultsKey.self] }
        set { self[DefaultsKey.self] = newValue }
    }
    public var controlSize: ControlSize {
        get { self[ControlSizeKey.self] }
        set { self[ControlSizeKey.self] = newValue }
    }
    public var dismiss: DismissAction {
        get { self[DismissKey.self] }
        set { self[DismissKey.self] = newValue }
    }
    public var layoutDirection: LayoutDirection {
        get { self[LayoutDirectionKey.self] }
        set { self[LayoutDirectionKey.self] = newValue }
    }
    public var locale: Locale { Locale.current }
    public var timeZone: TimeZone { TimeZone.current }
    public var calendar: Calendar { Calendar.current }

    var accentRGBA: RGBA {
        get { storedAccent }
        set { storedAccent = newValue }
    }
    var foregroundStyle: AnyShapeStyle? {
        get { storedForeground }
        set { storedForeground = newValue }
    }
    var tint: AnyShapeStyle? {
        get { storedTint }
        set { storedTint = newValue }
    }
    var textTraits: TextTraits {
        get { storedTraits }
        set { storedTraits = newValue }
    }
}

public struct DismissAction {
    let action: () -> Void
    public func callAsFunction() { action() }
}

extension View {
    public func environment<V>(_ keyPath: WritableKeyPath<EnvironmentValues, V>, _ value: V) -> some View {
        modifier(EnvironmentModifier { $0[keyPath: keyPath] = value })
    }
    /// Makes an observable object available to `@Environment(Type.self)` below.
    public func environment<T: AnyObject & Observable>(_ object: T?) -> some View {
        modifier(EnvironmentModifier { if let object { $0.objects[ObjectIdentifier(T.self)] = object } })
    }
    public func environmentObject<T: ObservableObject>(_ object: T) -> some View {
        modifier(EnvironmentModifier { $0.objects[ObjectIdentifier(T.self)] = object })
    }
    public func transformEnvironment<V>(_ keyPath: WritableKeyPath<EnvironmentValues, V>, transform: @escaping (inout V) -> Void)
        -> some View
    {
        modifier(EnvironmentModifier { transform(&$0[keyPath: keyPath]) })
    }
    public func defaultAppStorage(_ store: UserDefaults) -> some View {
        environment(\.defaultAppStorage, store)
    }
    public func preferredColorScheme(_ scheme: ColorScheme?) -> some View {
        modifier(EnvironmentModifier { if let scheme { $0.colorScheme = scheme } })
    }
    public func disabled(_ disabled: Bool) -> some View {
        modifier(EnvironmentModifier { if disabled { $0.isEnabled = false } })
    }
    public func controlSize(_ size: ControlSize) -> some View { environment(\.controlSize, size) }
}

struct EnvironmentModifier: ViewModifier, PrimitiveModifier {
    let change: (inout EnvironmentValues) -> Void
    func resolve(content: ContentResolver, context: ResolveContext) -> [Element] {
        var inner = context
        change(&inner.environment)
        return content(inner)
    }
}

/// Reads a value from the environment: `@Environment(\.colorScheme) var colorScheme`.
@propertyWrapper
public struct Environment<Value>: DynamicProperty, StorageBound {
    final class Box { var environment: EnvironmentValues? }
    private let read: (EnvironmentValues) -> Value
    private let box = Box()

    public init(_ keyPath: KeyPath<EnvironmentValues, Value>) {
        read = { $0[keyPath: keyPath] }
    }
    public init(_ type: Value.Type) where Value: AnyObject & Observable {
        read = { environment in
            guard let object = environment.objects[ObjectIdentifier(type)] as? Value else {
                fatalError("No \(type) in the environment: add .environment(\(type)(...)) above this view.")
            }
            return object
        }
    }
    public var wrappedValue: Value { read(box.environment ?? EnvironmentValues()) }

    func bind(to storage: NodeStorage, index: Int, context: ResolveContext) {
        box.environment = context.environment
    }
}

/// An ObservableObject that an ancestor supplied with `.environmentObject(_:)`.
@propertyWrapper
public struct EnvironmentObject<Object: ObservableObject>: DynamicProperty, StorageBound {
    final class Box { var object: Object? }
    private let box = Box()
    public init() {}
    public var wrappedValue: Object {
        guard let object = box.object else {
            fatalError("No \(Object.self) in the environment: add .environmentObject(...) above this view.")
        }
        return object
    }
    public var projectedValue: ObservedObject<Object>.Wrapper { ObservedObject<Object>.Wrapper(object: wrappedValue) }

    func bind(to storage: NodeStorage, index: Int, context: ResolveContext) {
        box.object = context.environment.objects[ObjectIdentifier(Object.self)] as? Object
        if let object = box.object {
            storage.slot(index) { ObjectSubscription() }.follow(object, graph: context.graph)
        }
    }
}
