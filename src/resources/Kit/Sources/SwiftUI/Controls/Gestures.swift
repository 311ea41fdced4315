import Foundation

final class TapElement: InteractiveElement {
    let count: Int
    let action: (CGPoint) -> Void
    init(_ child: Element, path: ViewPath, graph: ViewGraph, count: Int, action: @escaping (CGPoint) -> Void) {
        self.count = count; self.action = action
        super.init(child, path: path, graph: graph)
    }
    override func tap(at point: CGPoint, count clicks: Int) -> Bool {
        guard clicks == count || (count == 1 && clicks > 1) else { return false }
        action(CGPoint(x: point.x - frame.minX, y: point.y - frame.minY))
        return true
    }
}

final class DragElement: InteractiveElement {
    let minimumDistance: CGFloat
    let changed: ((DragGesture.Value) -> Void)?
    let ended: ((DragGesture.Value) -> Void)?
    init(_ child: Element, path: ViewPath, graph: ViewGraph, gesture: DragGesture) {
        minimumDistance = gesture.minimumDistance; changed = gesture.changed; ended = gesture.ended
        super.init(child, path: path, graph: graph)
    }
    override var minimumDragDistance: CGFloat? { minimumDistance }
    private func value(_ start: CGPoint, _ point: CGPoint) -> DragGesture.Value {
        let origin = frame.origin
        return DragGesture.Value(
            startLocation: CGPoint(x: start.x - origin.x, y: start.y - origin.y),
            location: CGPoint(x: point.x - origin.x, y: point.y - origin.y),
            translation: CGSize(width: point.x - start.x, height: point.y - start.y), time: Date())
    }
    override func drag(from start: CGPoint, to point: CGPoint) { changed?(value(start, point)) }
    override func endDrag(from start: CGPoint, to point: CGPoint) { ended?(value(start, point)) }
    override func tap(at point: CGPoint, count: Int) -> Bool {
        guard minimumDistance == 0 else { return false }
        changed?(value(point, point))
        ended?(value(point, point))
        return true
    }
}

final class HoverElement: InteractiveElement {
    override var acceptsHover: Bool { true }
    override func hits(_ point: CGPoint) -> [InteractiveElement]? {
        if let inner = child.hits(point) { return inner + [self] }
        return frame.contains(point) ? [self] : nil
    }
}

public protocol Gesture {}

public struct DragGesture: Gesture {
    public struct Value: Equatable {
        public var startLocation: CGPoint
        public var location: CGPoint
        public var translation: CGSize
        public var time: Date
        public var predictedEndLocation: CGPoint { location }
        public var predictedEndTranslation: CGSize { translation }
        public var velocity: CGSize { .zero }
    }
    public var minimumDistance: CGFloat
    var changed: ((Value) -> Void)?
    var ended: ((Value) -> Void)?
    public init(minimumDistance: CGFloat = 10, coordinateSpace: CoordinateSpace = .local) { self.minimumDistance = minimumDistance }
    public func onChanged(_ action: @escaping (Value) -> Void) -> DragGesture { var g = self; g.changed = action; return g }
    public func onEnded(_ action: @escaping (Value) -> Void) -> DragGesture { var g = self; g.ended = action; return g }
    public func updating<State>(_ state: GestureState<State>, body: @escaping (Value, inout State, inout Transaction) -> Void)
        -> DragGesture
    {
        var g = self
        let previous = g.changed, previousEnd = g.ended
        g.changed = { value in
            MainActor.assumeIsolated {
                var current = state.wrappedValue
                var transaction = Transaction()
                body(value, &current, &transaction)
                state.set(current)
            }
            previous?(value)
        }
        g.ended = { value in
            MainActor.assumeIsolated { state.reset() }; previousEnd?(value)
        }
        return g
    }
}

public struct TapGesture: Gesture {
    let count: Int
    var action: (() -> Void)?
    public init(count: Int = 1) { self.count = count }
    public func onEnded(_ action: @escaping () -> Void) -> TapGesture { var g = self; g.action = action; return g }
}

public struct LongPressGesture: Gesture {
    var action: (() -> Void)?
    public init(minimumDuration: Double = 0.5, maximumDistance: CGFloat = 10) {}
    public func onEnded(_ action: @escaping (Bool) -> Void) -> LongPressGesture { var g = self; g.action = { action(true) }; return g }
}

/// Gesture state that returns to its initial value when the gesture ends.
@propertyWrapper
public struct GestureState<Value>: DynamicProperty, StorageBound {
    private let state: State<Value>
    private let initial: Value
    public init(wrappedValue: Value) { state = State(wrappedValue: wrappedValue); initial = wrappedValue }
    public init(initialValue: Value) { self.init(wrappedValue: initialValue) }
    public var wrappedValue: Value { state.wrappedValue }
    public var projectedValue: GestureState<Value> { self }
    func set(_ value: Value) { state.wrappedValue = value }
    func reset() { state.wrappedValue = initial }
    func bind(to storage: NodeStorage, index: Int, context: ResolveContext) { state.bind(to: storage, index: index, context: context) }
}

extension View {
    public func onTapGesture(count: Int = 1, perform action: @escaping () -> Void) -> some View {
        modifier(
            StatefulModifier(tag: "tap") { content, context in
                content(context).map { TapElement($0, path: context.path, graph: context.graph, count: count) { _ in action() } }
            })
    }
    public func onTapGesture(count: Int = 1, coordinateSpace: CoordinateSpace = .local, perform action: @escaping (CGPoint) -> Void)
        -> some View
    {
        modifier(
            StatefulModifier(tag: "tap") { content, context in
                content(context).map { TapElement($0, path: context.path, graph: context.graph, count: count, action: action) }
            })
    }
    public func onLongPressGesture(
        minimumDuration: Double = 0.5, maximumDistance: CGFloat = 10, perform action: @escaping () -> Void,
        onPressingChanged: ((Bool) -> Void)? = nil
    ) -> some View {
        onTapGesture(perform: action)
    }
    public func gesture(_ gesture: DragGesture) -> some View {
        modifier(
            StatefulModifier(tag: "drag") { content, context in
                content(context).map { DragElement($0, path: context.path, graph: context.graph, gesture: gesture) }
            })
    }
    public func gesture(_ gesture: TapGesture) -> some View {
        onTapGesture(count: gesture.count) { gesture.action?() }
    }
    public func gesture(_ gesture: LongPressGesture) -> some View {
        onTapGesture { gesture.action?() }
    }
    public func simultaneousGesture(_ gesture: DragGesture) -> some View { self.gesture(gesture) }
    public func highPriorityGesture(_ gesture: DragGesture) -> some View { self.gesture(gesture) }
    public func simultaneousGesture(_ gesture: TapGesture) -> some View { self.gesture(gesture) }
    public func highPriorityGesture(_ gesture: TapGesture) -> some View { self.gesture(gesture) }

    public func onHover(perform action: @escaping (Bool) -> Void) -> some View {
        modifier(
            StatefulModifier(tag: "hover") { content, context in
                context.graph.interaction.hoverHandlers[context.path] = action
                return content(context).map { HoverElement($0, path: context.path, graph: context.graph) }
            })
    }
}

// Lifecycle: what runs when a view appears, changes or goes away.
extension View {
    public func onAppear(perform action: (() -> Void)? = nil) -> some View {
        modifier(
            StatefulModifier(tag: "appear") { content, context in
                let (_, isNew) = context.graph.storage(at: context.path)
                if isNew, let action { context.graph.afterUpdate(action) }
                return content(context)
            })
    }
    public func onDisappear(perform action: (() -> Void)? = nil) -> some View {
        modifier(
            StatefulModifier(tag: "disappear") { content, context in
                context.graph.storage(at: context.path).0.onDisappear = action
                return content(context)
            })
    }
    /// Runs `action` on the main actor when the view appears; the task is cancelled when it goes away.
    public func task(priority: TaskPriority = .userInitiated, _ action: @escaping @MainActor @Sendable () async -> Void) -> some View {
        modifier(
            StatefulModifier(tag: "task") { content, context in
                let (node, isNew) = context.graph.storage(at: context.path)
                if isNew { context.graph.afterUpdate { node.task = Task { @MainActor in await action() } } }
                return content(context)
            })
    }
    /// Like `task`, and restarted whenever `id` changes.
    public func task<T: Equatable>(
        id value: T, priority: TaskPriority = .userInitiated,
        _ action: @escaping @MainActor @Sendable () async -> Void
    ) -> some View {
        modifier(
            StatefulModifier(tag: "task-id") { content, context in
                let node = context.graph.storage(at: context.path).0
                if node.values["id"] as? T != value {
                    node.values["id"] = value
                    context.graph.afterUpdate {
                        node.task?.cancel()
                        node.task = Task { @MainActor in await action() }
                    }
                }
                return content(context)
            })
    }
    public func onChange<V: Equatable>(of value: V, perform action: @escaping (V) -> Void) -> some View {
        onChange(of: value, initial: false) { _, new in action(new) }
    }
    public func onChange<V: Equatable>(of value: V, initial: Bool = false, _ action: @escaping (V, V) -> Void) -> some View {
        modifier(
            StatefulModifier(tag: "change") { content, context in
                let (node, isNew) = context.graph.storage(at: context.path)
                if isNew {
                    node.values["value"] = value
                    if initial { context.graph.afterUpdate { action(value, value) } }
                } else if let old = node.values["value"] as? V, old != value {
                    node.values["value"] = value
                    context.graph.afterUpdate { action(old, value) }
                }
                return content(context)
            })
    }
    public func onChange<V: Equatable>(of value: V, initial: Bool = false, _ action: @escaping () -> Void) -> some View {
        onChange(of: value, initial: initial) { _, _ in action() }
    }
    /// Runs `action` with every value the publisher sends while the view exists.
    public func onReceive<P: Publisher>(_ publisher: P, perform action: @escaping (P.Output) -> Void) -> some View
    where P.Failure == Never {
        modifier(
            StatefulModifier(tag: "receive") { content, context in
                let node = context.graph.storage(at: context.path).0
                let box = node.slot(0) { ActionBox<P.Output>() }
                box.action = action
                if node.cancellables.isEmpty {
                    node.cancellables.append(
                        publisher.sink { value in
                            if Thread.isMainThread {
                                MainActor.assumeIsolated { box.action?(value) }
                            } else {
                                DispatchQueue.main.async { MainActor.assumeIsolated { box.action?(value) } }
                            }
                        })
                }
                return content(context)
            })
    }
}

/// The latest closure a view gave for an event, so that a long-lived subscription calls
/// the one that sees the current state.
@MainActor
final class ActionBox<Value> {
    var action: ((Value) -> Void)?
}
