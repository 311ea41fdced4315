import Foundation

// The everyday part of Combine that SwiftUI code relies on: ObservableObject, @Published,
// subjects, sink and assign, a few operators, and Timer.publish. Values are delivered
// synchronously to the subscriber, on the thread that sends them.

public protocol Cancellable {
    func cancel()
}

/// Cancels its subscription when cancelled or released.
public final class AnyCancellable: Cancellable, Hashable {
    private var onCancel: (() -> Void)?
    public init(_ cancel: @escaping () -> Void) { onCancel = cancel }
    public init<C: Cancellable>(_ cancellable: C) { onCancel = cancellable.cancel }
    public func cancel() {
        let action = onCancel
        onCancel = nil
        action?()
    }
    deinit { cancel() }
    public func store(in set: inout Set<AnyCancellable>) { set.insert(self) }
    public func store<C: RangeReplaceableCollection>(in collection: inout C) where C.Element == AnyCancellable {
        collection.append(self)
    }
    public static func == (a: AnyCancellable, b: AnyCancellable) -> Bool { a === b }
    public func hash(into hasher: inout Hasher) { hasher.combine(ObjectIdentifier(self)) }
}

public enum Subscribers {
    public enum Completion<Failure: Error> {
        case finished
        case failure(Failure)
    }
}

public protocol Publisher<Output, Failure> {
    associatedtype Output
    associatedtype Failure: Error
    func _subscribe(
        _ receiveValue: @escaping (Output) -> Void,
        _ receiveCompletion: @escaping (Subscribers.Completion<Failure>) -> Void
    ) -> AnyCancellable
}

extension Publisher {
    public func sink(
        receiveCompletion: @escaping (Subscribers.Completion<Failure>) -> Void,
        receiveValue: @escaping (Output) -> Void
    ) -> AnyCancellable {
        _subscribe(receiveValue, receiveCompletion)
    }
    public func map<T>(_ transform: @escaping (Output) -> T) -> AnyPublisher<T, Failure> {
        AnyPublisher { value, completion in self._subscribe({ value(transform($0)) }, completion) }
    }
    public func compactMap<T>(_ transform: @escaping (Output) -> T?) -> AnyPublisher<T, Failure> {
        AnyPublisher { value, completion in self._subscribe({ if let t = transform($0) { value(t) } }, completion) }
    }
    public func filter(_ isIncluded: @escaping (Output) -> Bool) -> AnyPublisher<Output, Failure> {
        AnyPublisher { value, completion in self._subscribe({ if isIncluded($0) { value($0) } }, completion) }
    }
    public func dropFirst(_ count: Int = 1) -> AnyPublisher<Output, Failure> {
        AnyPublisher { value, completion in
            var remaining = count
            return self._subscribe({ if remaining > 0 { remaining -= 1 } else { value($0) } }, completion)
        }
    }
    public func prefix(_ count: Int) -> AnyPublisher<Output, Failure> {
        AnyPublisher { value, completion in
            var seen = 0
            return self._subscribe({ if seen < count { seen += 1; value($0) } }, completion)
        }
    }
    public func receive<S: Scheduler>(on scheduler: S, options: S.SchedulerOptions? = nil) -> AnyPublisher<Output, Failure> {
        AnyPublisher { value, completion in
            self._subscribe({ v in scheduler.schedule { value(v) } }, { c in scheduler.schedule { completion(c) } })
        }
    }
    public func debounce<S: Scheduler>(
        for interval: S.SchedulerTimeType.Stride, scheduler: S,
        options: S.SchedulerOptions? = nil
    ) -> AnyPublisher<Output, Failure> {
        AnyPublisher { value, completion in
            var generation = 0
            return self._subscribe(
                { v in
                    generation += 1
                    let mine = generation
                    scheduler.schedule(after: interval) { if mine == generation { value(v) } }
                }, completion)
        }
    }
    public func eraseToAnyPublisher() -> AnyPublisher<Output, Failure> {
        AnyPublisher { value, completion in self._subscribe(value, completion) }
    }
    public func handleEvents(receiveOutput: ((Output) -> Void)? = nil) -> AnyPublisher<Output, Failure> {
        AnyPublisher { value, completion in
            self._subscribe(
                {
                    receiveOutput?($0); value($0)
                }, completion)
        }
    }
}

extension Publisher where Failure == Never {
    public func sink(receiveValue: @escaping (Output) -> Void) -> AnyCancellable {
        _subscribe(receiveValue, { _ in })
    }
    public func assign<Root>(to keyPath: ReferenceWritableKeyPath<Root, Output>, on object: Root) -> AnyCancellable {
        _subscribe({ object[keyPath: keyPath] = $0 }, { _ in })
    }
    /// Republishes into an `@Published` property for as long as the property's object lives.
    public func assign(to published: inout Published<Output>.Publisher) {
        let subject = published.subject
        published.upstream = _subscribe({ [weak subject] in subject?.send($0) }, { _ in })
    }
}

extension Publisher where Output: Equatable {
    public func removeDuplicates() -> AnyPublisher<Output, Failure> {
        AnyPublisher { value, completion in
            var last: Output?
            return self._subscribe({ v in if v != last { last = v; value(v) } }, completion)
        }
    }
}

public struct AnyPublisher<Output, Failure: Error>: Publisher {
    private let subscribe: (@escaping (Output) -> Void, @escaping (Subscribers.Completion<Failure>) -> Void) -> AnyCancellable
    init(_ subscribe: @escaping (@escaping (Output) -> Void, @escaping (Subscribers.Completion<Failure>) -> Void) -> AnyCancellable) {
        self.subscribe = subscribe
    }
    public func _subscribe(
        _ receiveValue: @escaping (Output) -> Void,
        _ receiveCompletion: @escaping (Subscribers.Completion<Failure>) -> Void
    ) -> AnyCancellable {
        subscribe(receiveValue, receiveCompletion)
    }
}

/// The subscribers of a subject, in the order they came.
final class SubscriberList<Output, Failure: Error> {
    private var next = 0
    private var entries: [(Int, (Output) -> Void, (Subscribers.Completion<Failure>) -> Void)] = []
    private var completed: Subscribers.Completion<Failure>?
    private let lock = NSLock()

    func add(_ value: @escaping (Output) -> Void, _ completion: @escaping (Subscribers.Completion<Failure>) -> Void) -> AnyCancellable {
        lock.lock()
        if let completed {
            lock.unlock()
            completion(completed)
            return AnyCancellable {}
        }
        next += 1
        let identifier = next
        entries.append((identifier, value, completion))
        lock.unlock()
        return AnyCancellable { [weak self] in
            guard let self else { return }
            self.lock.lock()
            self.entries.removeAll { $0.0 == identifier }
            self.lock.unlock()
        }
    }
    func send(_ value: Output) {
        lock.lock()
        let current = entries
        lock.unlock()
        for entry in current { entry.1(value) }
    }
    func complete(_ completion: Subscribers.Completion<Failure>) {
        lock.lock()
        let current = entries
        entries = []
        completed = completion
        lock.unlock()
        for entry in current { entry.2(completion) }
    }
}

public final class PassthroughSubject<Output, Failure: Error>: Publisher {
    private let subscribers = SubscriberList<Output, Failure>()
    public init() {}
    public func send(_ value: Output) { subscribers.send(value) }
    public func send() where Output == Void { subscribers.send(()) }
    public func send(completion: Subscribers.Completion<Failure>) { subscribers.complete(completion) }
    public func _subscribe(
        _ receiveValue: @escaping (Output) -> Void,
        _ receiveCompletion: @escaping (Subscribers.Completion<Failure>) -> Void
    ) -> AnyCancellable {
        subscribers.add(receiveValue, receiveCompletion)
    }
}

public final class CurrentValueSubject<Output, Failure: Error>: Publisher {
    private let subscribers = SubscriberList<Output, Failure>()
    public var value: Output { didSet { subscribers.send(value) } }
    public init(_ value: Output) { self.value = value }
    public func send(_ value: Output) { self.value = value }
    public func send(completion: Subscribers.Completion<Failure>) { subscribers.complete(completion) }
    public func _subscribe(
        _ receiveValue: @escaping (Output) -> Void,
        _ receiveCompletion: @escaping (Subscribers.Completion<Failure>) -> Void
    ) -> AnyCancellable {
        receiveValue(value)
        return subscribers.add(receiveValue, receiveCompletion)
    }
}

public struct Just<Output>: Publisher {
    public typealias Failure = Never
    public let output: Output
    public init(_ output: Output) { self.output = output }
    public func _subscribe(
        _ receiveValue: @escaping (Output) -> Void,
        _ receiveCompletion: @escaping (Subscribers.Completion<Never>) -> Void
    ) -> AnyCancellable {
        receiveValue(output)
        receiveCompletion(.finished)
        return AnyCancellable {}
    }
}

/// The publisher that tells an ObservableObject's watchers it is about to change.
public final class ObservableObjectPublisher: Publisher {
    public typealias Output = Void
    public typealias Failure = Never
    private let subscribers = SubscriberList<Void, Never>()
    public init() {}
    public func send() { subscribers.send(()) }
    public func _subscribe(
        _ receiveValue: @escaping (Void) -> Void,
        _ receiveCompletion: @escaping (Subscribers.Completion<Never>) -> Void
    ) -> AnyCancellable {
        subscribers.add(receiveValue, receiveCompletion)
    }
}

public protocol ObservableObject: AnyObject {
    associatedtype ObjectWillChangePublisher: Publisher = ObservableObjectPublisher where ObjectWillChangePublisher.Failure == Never
    var objectWillChange: ObjectWillChangePublisher { get }
}

/// Each object's default `objectWillChange`, kept beside the object for as long as it lives.
private final class WillChangeTable: @unchecked Sendable {
    static let shared = WillChangeTable()
    private struct Entry { weak var object: AnyObject?; let publisher: ObservableObjectPublisher }
    private var entries: [ObjectIdentifier: Entry] = [:]
    private let lock = NSLock()
    private var insertionsSinceSweep = 0

    func publisher(for object: AnyObject) -> ObservableObjectPublisher {
        lock.lock()
        defer { lock.unlock() }
        let key = ObjectIdentifier(object)
        if let entry = entries[key], entry.object === object { return entry.publisher }
        let publisher = ObservableObjectPublisher()
        entries[key] = Entry(object: object, publisher: publisher)
        insertionsSinceSweep += 1
        if insertionsSinceSweep > 256 {
            insertionsSinceSweep = 0
            entries = entries.filter { $0.value.object != nil }
        }
        return publisher
    }
}

extension ObservableObject where ObjectWillChangePublisher == ObservableObjectPublisher {
    public var objectWillChange: ObservableObjectPublisher { WillChangeTable.shared.publisher(for: self) }
}

/// A property of an ObservableObject whose changes are announced before they happen.
@propertyWrapper
public struct Published<Value> {
    public struct Publisher: SwiftUI.Publisher {
        public typealias Output = Value
        public typealias Failure = Never
        final class Subject {
            var value: Value
            let subscribers = SubscriberList<Value, Never>()
            init(_ value: Value) { self.value = value }
            func send(_ newValue: Value) {
                subscribers.send(newValue)
                value = newValue
            }
        }
        let subject: Subject
        var upstream: AnyCancellable?
        public func _subscribe(
            _ receiveValue: @escaping (Value) -> Void,
            _ receiveCompletion: @escaping (Subscribers.Completion<Never>) -> Void
        ) -> AnyCancellable {
            receiveValue(subject.value)
            return subject.subscribers.add(receiveValue, receiveCompletion)
        }
    }
    private var publisher: Publisher

    public init(wrappedValue: Value) { publisher = Publisher(subject: Publisher.Subject(wrappedValue)) }
    public init(initialValue: Value) { self.init(wrappedValue: initialValue) }

    public var wrappedValue: Value {
        get { publisher.subject.value }
        set { publisher.subject.send(newValue) }
    }
    public var projectedValue: Publisher {
        get { publisher }
        set { publisher = newValue }
    }

    public static subscript<EnclosingSelf: AnyObject>(
        _enclosingInstance object: EnclosingSelf,
        wrapped wrappedKeyPath: ReferenceWritableKeyPath<EnclosingSelf, Value>,
        storage storageKeyPath: ReferenceWritableKeyPath<EnclosingSelf, Published<Value>>
    ) -> Value {
        get { object[keyPath: storageKeyPath].publisher.subject.value }
        set {
            if let observable = object as? any ObservableObject { announceChange(of: observable) }
            object[keyPath: storageKeyPath].publisher.subject.send(newValue)
        }
    }
}

private func announceChange<O: ObservableObject>(of object: O) {
    (object.objectWillChange as? ObservableObjectPublisher)?.send()
}

/// Where a publisher's values are delivered: a dispatch queue or a run loop.
public protocol Scheduler {
    associatedtype SchedulerTimeType: SchedulerTime
    associatedtype SchedulerOptions
    func schedule(_ action: @escaping () -> Void)
    func schedule(after interval: SchedulerTimeType.Stride, _ action: @escaping () -> Void)
}

public protocol SchedulerTime {
    associatedtype Stride: SchedulerStride
}

public protocol SchedulerStride: ExpressibleByFloatLiteral, ExpressibleByIntegerLiteral {
    var seconds: Double { get }
    static func seconds(_ s: Double) -> Self
    static func milliseconds(_ ms: Int) -> Self
}

public struct SchedulerSeconds: SchedulerStride {
    public let seconds: Double
    public init(seconds: Double) { self.seconds = seconds }
    public init(floatLiteral value: Double) { seconds = value }
    public init(integerLiteral value: Int) { seconds = Double(value) }
    public static func seconds(_ s: Double) -> SchedulerSeconds { SchedulerSeconds(seconds: s) }
    public static func seconds(_ s: Int) -> SchedulerSeconds { SchedulerSeconds(seconds: Double(s)) }
    public static func milliseconds(_ ms: Int) -> SchedulerSeconds { SchedulerSeconds(seconds: Double(ms) / 1000) }
}

public struct SchedulerClock: SchedulerTime {
    public typealias Stride = SchedulerSeconds
}

extension DispatchQueue: Scheduler {
    public typealias SchedulerTimeType = SchedulerClock
    public typealias SchedulerOptions = Never
    public func schedule(_ action: @escaping () -> Void) { async(execute: action) }
    public func schedule(after interval: SchedulerSeconds, _ action: @escaping () -> Void) {
        asyncAfter(deadline: .now() + interval.seconds, execute: action)
    }
}

extension RunLoop: Scheduler {
    public typealias SchedulerTimeType = SchedulerClock
    public typealias SchedulerOptions = Never
    public func schedule(_ action: @escaping () -> Void) { perform(action) }
    public func schedule(after interval: SchedulerSeconds, _ action: @escaping () -> Void) {
        let timer = Timer(timeInterval: interval.seconds, repeats: false) { _ in action() }
        add(timer, forMode: .common)
    }
}

extension Timer {
    /// `Timer.publish(every: 1, on: .main, in: .common).autoconnect()`: the current date at
    /// every interval, from a timer on the given run loop.
    public static func publish(
        every interval: TimeInterval, tolerance: TimeInterval? = nil, on runLoop: RunLoop,
        in mode: RunLoop.Mode, options: Never? = nil
    ) -> TimerPublisher {
        TimerPublisher(interval: interval, runLoop: runLoop, mode: mode)
    }

    public final class TimerPublisher: Publisher {
        public typealias Output = Date
        public typealias Failure = Never
        let interval: TimeInterval
        let runLoop: RunLoop
        let mode: RunLoop.Mode
        private let subscribers = SubscriberList<Date, Never>()
        private var timer: Timer?

        init(interval: TimeInterval, runLoop: RunLoop, mode: RunLoop.Mode) {
            self.interval = interval; self.runLoop = runLoop; self.mode = mode
        }
        public func _subscribe(
            _ receiveValue: @escaping (Date) -> Void,
            _ receiveCompletion: @escaping (Subscribers.Completion<Never>) -> Void
        ) -> AnyCancellable {
            subscribers.add(receiveValue, receiveCompletion)
        }
        /// Starts the timer; cancelling the result stops it.
        public func connect() -> Cancellable {
            if timer == nil {
                let timer = Timer(timeInterval: interval, repeats: true) { [weak self] _ in self?.subscribers.send(Date()) }
                runLoop.add(timer, forMode: mode)
                self.timer = timer
            }
            return AnyCancellable { [weak self] in
                self?.timer?.invalidate()
                self?.timer = nil
            }
        }
        /// Starts the timer with the first subscriber and stops it with the last.
        public func autoconnect() -> Publishers.Autoconnect<TimerPublisher> { Publishers.Autoconnect(upstream: self) }
        deinit { timer?.invalidate() }
    }
}

public enum Publishers {
    public final class Autoconnect<Upstream: Timer.TimerPublisher>: Publisher {
        public typealias Output = Date
        public typealias Failure = Never
        public let upstream: Upstream
        private var connection: Cancellable?
        private var count = 0
        init(upstream: Upstream) { self.upstream = upstream }
        public func _subscribe(
            _ receiveValue: @escaping (Date) -> Void,
            _ receiveCompletion: @escaping (Subscribers.Completion<Never>) -> Void
        ) -> AnyCancellable {
            let subscription = upstream._subscribe(receiveValue, receiveCompletion)
            count += 1
            if connection == nil { connection = upstream.connect() }
            return AnyCancellable { [weak self] in
                subscription.cancel()
                guard let self else { return }
                self.count -= 1
                if self.count == 0 { self.connection?.cancel(); self.connection = nil }
            }
        }
    }
}
