import Foundation

/// The storage of one `@State` property at its view's place in the graph.
@MainActor
final class StateCell<Value> {
    var value: Value
    weak var graph: ViewGraph?
    init(_ value: Value, graph: ViewGraph?) { self.value = value; self.graph = graph }
    func set(_ newValue: Value) {
        value = newValue
        graph?.invalidate()
    }
}

/// Value storage that belongs to the view's place in the graph and survives the view's
/// struct being made again by its parent's body.
@propertyWrapper
public struct State<Value>: DynamicProperty, StorageBound {
    final class Box {
        var initial: Value
        var cell: StateCell<Value>?
        init(_ initial: Value) { self.initial = initial }
    }
    private let box: Box

    public init(wrappedValue value: Value) { box = Box(value) }
    public init(initialValue value: Value) { box = Box(value) }

    public var wrappedValue: Value {
        get { MainActor.assumeIsolated { box.cell?.value ?? box.initial } }
        nonmutating set {
            MainActor.assumeIsolated {
                if let cell = box.cell { cell.set(newValue) } else { box.initial = newValue }
            }
        }
    }

    public var projectedValue: Binding<Value> {
        let box = self.box
        if let cell = MainActor.assumeIsolated({ box.cell }) {
            return Binding(
                get: { MainActor.assumeIsolated { cell.value } },
                set: { value in MainActor.assumeIsolated { cell.set(value) } })
        }
        return Binding(get: { box.initial }, set: { box.initial = $0 })
    }

    func bind(to storage: NodeStorage, index: Int, context: ResolveContext) {
        let initial = box.initial
        let graph = context.graph
        box.cell = storage.slot(index) { StateCell(initial, graph: graph) }
    }
}

/// A reference to a value owned elsewhere: read and written through.
@propertyWrapper @dynamicMemberLookup
public struct Binding<Value> {
    private let getter: () -> Value
    private let setter: (Value, Transaction) -> Void
    public var transaction = Transaction()

    public init(get: @escaping () -> Value, set: @escaping (Value) -> Void) {
        getter = get
        setter = { value, _ in set(value) }
    }
    public init(get: @escaping () -> Value, set: @escaping (Value, Transaction) -> Void) {
        getter = get
        setter = set
    }
    public init(projectedValue: Binding<Value>) { self = projectedValue }
    public init(_ other: Binding<Value>) { self = other }
    public init?(_ other: Binding<Value?>) {
        guard let value = other.wrappedValue else { return nil }
        var last = value
        self.init(
            get: { other.wrappedValue ?? last },
            set: {
                last = $0; other.wrappedValue = $0
            })
    }
    public init<V>(_ other: Binding<V>) where Value == V? {
        self.init(get: { other.wrappedValue }, set: { if let value = $0 { other.wrappedValue = value } })
    }
    public static func constant(_ value: Value) -> Binding<Value> {
        Binding(get: { value }, set: { _ in })
    }

    public var wrappedValue: Value {
        get { getter() }
        nonmutating set { setter(newValue, transaction) }
    }
    public var projectedValue: Binding<Value> { self }

    public subscript<Subject>(dynamicMember keyPath: WritableKeyPath<Value, Subject>) -> Binding<Subject> {
        let parent = self
        return Binding<Subject>(
            get: { parent.wrappedValue[keyPath: keyPath] },
            set: { parent.wrappedValue[keyPath: keyPath] = $0 })
    }

    /// A binding whose changes animate with `animation`.
    public func animation(_ animation: Animation? = .default) -> Binding<Value> {
        var transaction = Transaction(animation: animation)
        transaction.disablesAnimations = animation == nil
        return self.transaction(transaction)
    }
    public func transaction(_ transaction: Transaction) -> Binding<Value> {
        let parent = self
        var copy = Binding(get: getter, set: { value, _ in withTransaction(transaction) { parent.wrappedValue = value } })
        copy.transaction = transaction
        return copy
    }
}

extension Binding: DynamicProperty {}
extension Binding: Identifiable where Value: Identifiable {
    public var id: Value.ID { wrappedValue.id }
}

/// `ForEach($items) { $item in ... }`: a binding to a collection is a collection of bindings.
extension Binding: Sequence where Value: MutableCollection {
    public typealias Element = Binding<Value.Element>
    public typealias Iterator = IndexingIterator<Binding<Value>>
    public typealias SubSequence = Slice<Binding<Value>>
}
extension Binding: Collection where Value: MutableCollection {
    public typealias Index = Value.Index
    public typealias Indices = Value.Indices
    public var startIndex: Index { wrappedValue.startIndex }
    public var endIndex: Index { wrappedValue.endIndex }
    public var indices: Indices { wrappedValue.indices }
    public func index(after i: Index) -> Index { wrappedValue.index(after: i) }
    public subscript(position: Index) -> Binding<Value.Element> {
        let parent = self
        let fallback = wrappedValue[position]
        return Binding<Value.Element>(
            get: { parent.wrappedValue.indices.contains(position) ? parent.wrappedValue[position] : fallback },
            set: { if parent.wrappedValue.indices.contains(position) { parent.wrappedValue[position] = $0 } })
    }
}
extension Binding: BidirectionalCollection where Value: MutableCollection & BidirectionalCollection {
    public func index(before i: Index) -> Index { wrappedValue.index(before: i) }
}
extension Binding: RandomAccessCollection where Value: MutableCollection & RandomAccessCollection {}

/// Follows one object's `objectWillChange`, resubscribing when the object is another one.
@MainActor
final class ObjectSubscription {
    private var object: ObjectIdentifier?
    private var cancellable: AnyCancellable?

    func follow<O: ObservableObject>(_ observed: O, graph: ViewGraph) {
        let identifier = ObjectIdentifier(observed)
        if object == identifier { return }
        object = identifier
        cancellable = observed.objectWillChange.sink(receiveCompletion: { _ in }) { [weak graph] _ in
            if Thread.isMainThread {
                MainActor.assumeIsolated { graph?.invalidate() }
            } else {
                DispatchQueue.main.async { MainActor.assumeIsolated { graph?.invalidate() } }
            }
        }
    }
}

@MainActor
final class ObjectCell<Object: ObservableObject> {
    let object: Object
    let subscription = ObjectSubscription()
    init(_ object: Object) { self.object = object }
}

/// An ObservableObject that the view makes once, owns, and watches.
@propertyWrapper
public struct StateObject<ObjectType: ObservableObject>: DynamicProperty, StorageBound {
    final class Box {
        let make: () -> ObjectType
        var cell: ObjectCell<ObjectType>?
        lazy var unbound: ObjectType = make()
        init(_ make: @escaping () -> ObjectType) { self.make = make }
    }
    private let box: Box

    public init(wrappedValue thunk: @autoclosure @escaping () -> ObjectType) { box = Box(thunk) }

    public var wrappedValue: ObjectType {
        MainActor.assumeIsolated { box.cell?.object } ?? box.unbound
    }
    public var projectedValue: ObservedObject<ObjectType>.Wrapper {
        ObservedObject<ObjectType>.Wrapper(object: wrappedValue)
    }

    func bind(to storage: NodeStorage, index: Int, context: ResolveContext) {
        let make = box.make
        let cell = storage.slot(index) { ObjectCell(make()) }
        cell.subscription.follow(cell.object, graph: context.graph)
        box.cell = cell
    }
}

/// An ObservableObject owned elsewhere that the view watches.
@propertyWrapper
public struct ObservedObject<ObjectType: ObservableObject>: DynamicProperty, StorageBound {
    @dynamicMemberLookup
    public struct Wrapper {
        let object: ObjectType
        public subscript<Subject>(dynamicMember keyPath: ReferenceWritableKeyPath<ObjectType, Subject>) -> Binding<Subject> {
            let object = self.object
            return Binding(get: { object[keyPath: keyPath] }, set: { object[keyPath: keyPath] = $0 })
        }
    }
    public var wrappedValue: ObjectType
    public init(wrappedValue: ObjectType) { self.wrappedValue = wrappedValue }
    public init(initialValue: ObjectType) { self.wrappedValue = initialValue }
    public var projectedValue: Wrapper { Wrapper(object: wrappedValue) }

    func bind(to storage: NodeStorage, index: Int, context: ResolveContext) {
        storage.slot(index) { ObjectSubscription() }.follow(wrappedValue, graph: context.graph)
    }
}

/// Bindings to the properties of an `@Observable` object: `@Bindable var model`.
@propertyWrapper @dynamicMemberLookup
public struct Bindable<Value: AnyObject>: DynamicProperty {
    public var wrappedValue: Value
    public init(wrappedValue: Value) { self.wrappedValue = wrappedValue }
    public init(_ value: Value) { self.wrappedValue = value }
    public var projectedValue: Bindable<Value> { self }
    public subscript<Subject>(dynamicMember keyPath: ReferenceWritableKeyPath<Value, Subject>) -> Binding<Subject> {
        let object = wrappedValue
        return Binding(get: { object[keyPath: keyPath] }, set: { object[keyPath: keyPath] = $0 })
    }
}

/// A value kept in the app's settings suite (`defaultAppStorage`), or a given store.
@propertyWrapper
public struct AppStorage<Value>: DynamicProperty, StorageBound {
    final class Box {
        var store: UserDefaults?
        weak var graph: ViewGraph?
    }
    private let key: String
    private let defaultValue: Value
    private let explicitStore: UserDefaults?
    private let decode: (Any) -> Value?
    private let encode: (Value) -> Any?
    private let box = Box()

    private init(
        key: String, defaultValue: Value, store: UserDefaults?,
        decode: @escaping (Any) -> Value?, encode: @escaping (Value) -> Any?
    ) {
        self.key = key; self.defaultValue = defaultValue; self.explicitStore = store
        self.decode = decode; self.encode = encode
    }

    private var store: UserDefaults { explicitStore ?? box.store ?? .standard }

    public var wrappedValue: Value {
        get { store.object(forKey: key).flatMap(decode) ?? defaultValue }
        nonmutating set {
            let store = self.store
            if let encoded = encode(newValue) { store.set(encoded, forKey: key) } else { store.removeObject(forKey: key) }
            StoredSettings.changed(store)
            if let graph = box.graph { MainActor.assumeIsolated { graph.invalidate() } }
        }
    }
    public var projectedValue: Binding<Value> {
        let this = self
        return Binding(get: { this.wrappedValue }, set: { this.wrappedValue = $0 })
    }

    func bind(to storage: NodeStorage, index: Int, context: ResolveContext) {
        box.store = context.environment.defaultAppStorage
        box.graph = context.graph
    }
}

extension AppStorage {
    public init(wrappedValue: Value, _ key: String, store: UserDefaults? = nil) where Value == Bool {
        self.init(
            key: key, defaultValue: wrappedValue, store: store, decode: { ($0 as? NSNumber)?.boolValue ?? ($0 as? Bool) }, encode: { $0 })
    }
    public init(wrappedValue: Value, _ key: String, store: UserDefaults? = nil) where Value == Int {
        self.init(
            key: key, defaultValue: wrappedValue, store: store, decode: { ($0 as? NSNumber)?.intValue ?? ($0 as? Int) }, encode: { $0 })
    }
    public init(wrappedValue: Value, _ key: String, store: UserDefaults? = nil) where Value == Double {
        self.init(
            key: key, defaultValue: wrappedValue, store: store, decode: { ($0 as? NSNumber)?.doubleValue ?? ($0 as? Double) },
            encode: { $0 })
    }
    public init(wrappedValue: Value, _ key: String, store: UserDefaults? = nil) where Value == String {
        self.init(key: key, defaultValue: wrappedValue, store: store, decode: { $0 as? String }, encode: { $0 })
    }
    public init(wrappedValue: Value, _ key: String, store: UserDefaults? = nil) where Value == Data {
        self.init(key: key, defaultValue: wrappedValue, store: store, decode: { $0 as? Data }, encode: { $0 })
    }
    public init(wrappedValue: Value, _ key: String, store: UserDefaults? = nil) where Value == URL {
        self.init(
            key: key, defaultValue: wrappedValue, store: store, decode: { ($0 as? String).flatMap(URL.init(string:)) },
            encode: { $0.absoluteString })
    }
    public init(wrappedValue: Value, _ key: String, store: UserDefaults? = nil) where Value: RawRepresentable, Value.RawValue == String {
        self.init(
            key: key, defaultValue: wrappedValue, store: store, decode: { ($0 as? String).flatMap(Value.init(rawValue:)) },
            encode: { $0.rawValue })
    }
    public init(wrappedValue: Value, _ key: String, store: UserDefaults? = nil) where Value: RawRepresentable, Value.RawValue == Int {
        self.init(
            key: key, defaultValue: wrappedValue, store: store, decode: { ($0 as? NSNumber).flatMap { Value(rawValue: $0.intValue) } },
            encode: { $0.rawValue })
    }
    public init(_ key: String, store: UserDefaults? = nil) where Value == String? {
        self.init(key: key, defaultValue: nil, store: store, decode: { $0 as? String }, encode: { $0 })
    }
    public init(_ key: String, store: UserDefaults? = nil) where Value == Int? {
        self.init(key: key, defaultValue: nil, store: store, decode: { ($0 as? NSNumber)?.intValue }, encode: { $0 })
    }
    public init(_ key: String, store: UserDefaults? = nil) where Value == Double? {
        self.init(key: key, defaultValue: nil, store: store, decode: { ($0 as? NSNumber)?.doubleValue }, encode: { $0 })
    }
}

/// Which text field has the keyboard focus: `@FocusState var focused: Bool` or an optional
/// value naming the field.
@propertyWrapper
public struct FocusState<Value: Hashable>: DynamicProperty, StorageBound {
    @propertyWrapper
    public struct Binding {
        let get: () -> Value
        let set: (Value) -> Void
        public var wrappedValue: Value {
            get { get() }
            nonmutating set { set(newValue) }
        }
        public var projectedValue: Binding { self }
    }
    private let state: State<Value>

    public init() where Value == Bool { state = State(wrappedValue: false) }
    public init<T: Hashable>() where Value == T? { state = State(wrappedValue: nil) }

    public var wrappedValue: Value {
        get { state.wrappedValue }
        nonmutating set { state.wrappedValue = newValue }
    }
    public var projectedValue: Binding {
        let binding = state.projectedValue
        return Binding(get: { binding.wrappedValue }, set: { binding.wrappedValue = $0 })
    }

    func bind(to storage: NodeStorage, index: Int, context: ResolveContext) {
        state.bind(to: storage, index: index, context: context)
    }
}

extension State where Value: ExpressibleByNilLiteral {
    // In an extension, so that `@State var items: [Item]` without a value keeps a memberwise
    // initialiser that takes the items themselves.
    public init() { self.init(wrappedValue: nil) }
}
