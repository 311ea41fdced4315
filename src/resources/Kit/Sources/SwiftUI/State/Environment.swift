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

    public subscript<K: EnvironmentKey>(key: K.Type) -> K.Value {
        get { values[ObjectIdentifier(key)] as? K.Value ?? K.defaultValue }
        set { values[ObjectIdentifier(key)] = newValue }
    }
    public var description: String { "EnvironmentValues(\(values.count) values)" }
}

public enum ColorScheme: Hashable, CaseIterable, Sendable { case light, dark }
public enum LayoutDirection: Hashable, Sendable { case leftToRight, rightToLeft }
public enum ControlSize: Hashable, CaseIterable, Sendable { case mini, small, regular, large, extraLarge }

private enum ColorSchemeKey: EnvironmentKey { static let defaultValue = ColorScheme.light }
private enum AccentKey: EnvironmentKey { static let defaultValue = RGBA(red: 0, green: 0.48, blue: 1, alpha: 1) }
private enum FontKey: EnvironmentKey { static let defaultValue: Font? = nil }
private enum ForegroundKey: EnvironmentKey { static let defaultValue: AnyShapeStyle? = nil }
private enum TintKey: EnvironmentKey { static let defaultValue: AnyShapeStyle? = nil }
private enum TextAlignmentKey: EnvironmentKey { static let defaultValue = TextAlignment.leading }
private enum LineLimitKey: EnvironmentKey { static let defaultValue: Int? = nil }
private enum EnabledKey: EnvironmentKey { static let defaultValue = true }
private enum TextTraitsKey: EnvironmentKey { static let defaultValue = TextTraits() }
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
        get { self[ColorSchemeKey.self] }
        set { self[ColorSchemeKey.self] = newValue }
    }
    public var font: Font? {
        get { self[FontKey.self] }
        set { self[FontKey.self] = newValue }
    }
    public var multilineTextAlignment: TextAlignment {
        get { self[TextAlignmentKey.self] }
        set { self[TextAlignmentKey.self] = newValue }
    }
    public var lineLimit: Int? {
        get { self[LineLimitKey.self] }
        set { self[LineLimitKey.self] = newValue }
    }
    public var isEnabled: Bool {
        get { self[EnabledKey.self] }
        set { self[EnabledKey.self] = newValue }
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
        get { self[AccentKey.self] }
        set { self[AccentKey.self] = newValue }
    }
    var foregroundStyle: AnyShapeStyle? {
        get { self[ForegroundKey.self] }
        set { self[ForegroundKey.self] = newValue }
    }
    var tint: AnyShapeStyle? {
        get { self[TintKey.self] }
        set { self[TintKey.self] = newValue }
    }
    var textTraits: TextTraits {
        get { self[TextTraitsKey.self] }
        set { self[TextTraitsKey.self] = newValue }
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
