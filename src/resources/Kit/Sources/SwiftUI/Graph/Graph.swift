import Foundation

/// One step of a view's structural identity: where it sits among its siblings.
enum PathComponent: Hashable {
    case index(Int)
    case branch(Int)
    case id(AnyHashable)
    case type(ObjectIdentifier)
}

/// A view's identity: the path from the root to its place in the graph. Nodes keep the hash of
/// their path so that lookups stay cheap however deep the tree is.
struct ViewPath: Hashable {
    private final class Node {
        let parent: Node?
        let component: PathComponent
        let hash: Int
        let depth: Int
        init(parent: Node?, component: PathComponent) {
            self.parent = parent
            self.component = component
            var hasher = Hasher()
            hasher.combine(parent?.hash ?? 0)
            hasher.combine(component)
            hash = hasher.finalize()
            depth = (parent?.depth ?? 0) + 1
        }
    }
    private let node: Node?

    static let root = ViewPath(node: nil)
    private init(node: Node?) { self.node = node }

    func appending(_ component: PathComponent) -> ViewPath { ViewPath(node: Node(parent: node, component: component)) }

    func hash(into hasher: inout Hasher) { hasher.combine(node?.hash ?? 0) }
    static func == (a: ViewPath, b: ViewPath) -> Bool {
        var x = a.node, y = b.node
        while let l = x, let r = y {
            if l === r { return true }
            if l.hash != r.hash || l.depth != r.depth || l.component != r.component { return false }
            x = l.parent; y = r.parent
        }
        return x == nil && y == nil
    }
}

/// What resolving a view needs to know about where it is.
@MainActor
struct ResolveContext {
    unowned let graph: ViewGraph
    var path: ViewPath
    var environment: EnvironmentValues
    /// The axis of the nearest enclosing stack, which decides how a Spacer stretches.
    var stackAxis: Axis?
    /// The content a custom view modifier's body places.
    var modifierContent: (@MainActor (ResolveContext) -> [Element])?

    func child(_ component: PathComponent) -> ResolveContext {
        var copy = self
        copy.path = path.appending(component)
        return copy
    }
}

/// What lives at one place in the graph while the view there exists: its state, the
/// subscriptions and tasks started for it, and what to run when it goes away.
@MainActor
final class NodeStorage {
    var slots: [Int: AnyObject] = [:]
    var lastPass = 0
    var cancellables: [AnyCancellable] = []
    var onDisappear: (() -> Void)?
    var task: Task<Void, Never>?
    var values: [String: Any] = [:]

    func slot<T: AnyObject>(_ index: Int, make: () -> T) -> T {
        if let existing = slots[index] as? T { return existing }
        let made = make()
        slots[index] = made
        return made
    }

    func end() {
        cancellables.forEach { $0.cancel() }
        cancellables = []
        task?.cancel()
        onDisappear?()
    }
}

/// A property of a view that the graph binds to the view's storage before reading its body.
@MainActor
protocol StorageBound {
    func bind(to storage: NodeStorage, index: Int, context: ResolveContext)
}

/// Properties of a view that take part in its updates (state, bindings, environment, ...).
public protocol DynamicProperty {
    mutating func update()
}
extension DynamicProperty {
    public mutating func update() {}
}

/// The live instance of one hosted root view: it resolves the view tree into elements, lays
/// them out, draws them through the host and routes events back.
@MainActor
final class ViewGraph {
    let rootResolver: @MainActor (ResolveContext) -> [Element]
    var host: HostBridge?
    var size = CGSize.zero
    var colorScheme = ColorScheme.light
    var accent = RGBA(red: 0.0, green: 0.48, blue: 1.0, alpha: 1)

    private(set) var rootElement: Element?
    private var storage: [ViewPath: NodeStorage] = [:]
    private(set) var pass = 0
    /// Texts of the previous tree by place, which the new tree may take over, and this tree's.
    private var previousTexts: [ViewPath: TextElement] = [:]
    private var texts: [ViewPath: TextElement] = [:]
    /// What must be painted again since the host last asked: nil when nothing.
    private var damage: Damage?
    private var dirty = true
    private var laidOutSize = CGSize(width: -1, height: -1)
    private var pendingActions: [() -> Void] = []
    private var resolving = false
    private var propertyLayouts: [ObjectIdentifier: [(Int, String)]] = [:]
    var interaction = InteractionState()
    var textFields: [Int64: TextFieldHandlers] = [:]
    var keyHandlers: [(HostKey) -> Bool] = []
    /// Pop-ups, sheets and alerts over the whole window, in the order they were resolved.
    var overlays: [Element] = []
    /// The visible rectangles of the scroll views being placed, innermost last.
    var viewports: [CGRect] = []
    /// What animates, and whether the host must come back for another frame.
    let motion = Motion()

    init<Root: View>(_ root: Root) {
        rootResolver = { resolveView(root, $0) }
    }

    /// The previous tree's text at `path`, unless this update took it over already.
    func reusableText(at path: ViewPath) -> TextElement? {
        guard let previous = previousTexts[path], previous.reusedPass != pass else { return nil }
        return previous
    }
    func keepText(_ element: TextElement, at path: ViewPath) { texts[path] = element }

    /// Measurements may have changed (fonts, palette): the next tree takes nothing over.
    func forgetPreviousTree() {
        previousTexts = [:]
        texts = [:]
        damage = .whole
    }

    /// What changed on screen since the last call, and forgets it.
    func takeDamage() -> Damage? {
        defer { damage = nil }
        return damage
    }

    /// State changed: the next update resolves the tree again.
    func invalidate() {
        motion.record(Transaction.current)
        if dirty { return }
        dirty = true
        host?.requestRedraw()
    }

    var needsUpdate: Bool { dirty || laidOutSize != size }

    func rootEnvironment() -> EnvironmentValues {
        var environment = EnvironmentValues()
        environment.colorScheme = colorScheme
        environment.accentRGBA = accent
        environment.transaction = motion.transaction
        return environment
    }

    /// Brings the elements up to date with state and size. Actions queued while resolving
    /// (onAppear and the like) run afterwards; if they change state, the tree is resolved again
    /// at once, a few times at most, so the first frame shows their effect.
    func update() {
        var rounds = 0
        if motion.frameDue {
            // A frame in which only animated values move patches the tree and places it again.
            if !dirty && laidOutSize == size, let root = rootElement, motion.patchFrame() {
                let window = CGRect(origin: .zero, size: size)
                root.place(in: Alignment.center.place(root.size(ProposedViewSize(size)), in: window))
                for overlay in overlays { overlay.place(in: window) }
                root.forEach { $0.forgetDrawnBounds() }
                damage = .whole
                return
            }
            dirty = true
        }
        while needsUpdate && rounds < 4 {
            rounds += 1
            dirty = false
            pass += 1
            Element.layoutPass = pass
            swap(&previousTexts, &texts)
            texts.removeAll(keepingCapacity: true)
            let previousRoot = rootElement, previousOverlays = overlays
            let resized = laidOutSize != size
            resolving = true
            textFields = [:]
            keyHandlers = []
            interaction.hoverHandlers = [:]
            overlays = []
            motion.beginPass(pass)
            let context = ResolveContext(graph: self, path: .root, environment: rootEnvironment(), stackAxis: nil)
            let root = withObservationTracking {
                let elements = rootResolver(context)
                // The root view takes the size it chooses for the window and sits in its middle.
                let root = elements.count == 1 ? elements[0] : ZStackElement(children: elements, alignment: .center)
                let window = CGRect(origin: .zero, size: size)
                root.place(in: Alignment.center.place(root.size(ProposedViewSize(size)), in: window))
                for overlay in overlays { overlay.place(in: window) }
                return root
            } onChange: { [weak self] in
                let transaction = Transaction.current
                DispatchQueue.main.async {
                    MainActor.assumeIsolated { self?.invalidate(after: transaction) }
                }
            }
            resolving = false
            motion.endPass(graph: self)
            rootElement = root
            laidOutSize = size
            if resized || previousRoot == nil || !previousOverlays.isEmpty || !overlays.isEmpty || !motion.departures.isEmpty {
                damage = .whole
            } else if damage != .whole {
                damage = Damage.between(previousRoot!, root, pass: pass, adding: damage)
            }
            collectGarbage()
            let actions = pendingActions
            pendingActions = []
            actions.forEach { $0() }
        }
    }

    /// Runs `action` once this update's tree is in place.
    func afterUpdate(_ action: @escaping () -> Void) {
        pendingActions.append(action)
    }

    /// The storage at `path`, made when the view there appears for the first time.
    func storage(at path: ViewPath) -> (NodeStorage, isNew: Bool) {
        if let existing = storage[path] {
            existing.lastPass = pass
            return (existing, false)
        }
        let made = NodeStorage()
        made.lastPass = pass
        storage[path] = made
        return (made, true)
    }

    private func collectGarbage() {
        let gone = storage.filter { $0.value.lastPass != pass }
        for (path, node) in gone {
            storage[path] = nil
            node.end()
        }
    }

    /// Ends every view's subscriptions and tasks: the host let go of this root view.
    func tearDown() {
        for node in storage.values { node.end() }
        storage = [:]
        previousTexts = [:]
        texts = [:]
        rootElement = nil
        overlays = []
        textFields = [:]
        host = nil
    }

    func bindDynamicProperties<V>(of view: V, context: ResolveContext) {
        let key = ObjectIdentifier(V.self)
        let layout: [(Int, String)]
        if let known = propertyLayouts[key] {
            layout = known
        } else {
            var found: [(Int, String)] = []
            for (index, child) in Mirror(reflecting: view).children.enumerated() where isDynamic(child.value) {
                found.append((index, child.label ?? ""))
            }
            propertyLayouts[key] = found
            layout = found
        }
        guard !layout.isEmpty else { return }
        let node = storage(at: context.path).0
        let children = Array(Mirror(reflecting: view).children)
        for (index, _) in layout {
            bind(children[index].value, node: node, index: index * 64, context: context)
        }
    }

    private func isDynamic(_ value: Any) -> Bool {
        value is StorageBound || value is DynamicProperty
    }

    private func bind(_ value: Any, node: NodeStorage, index: Int, context: ResolveContext) {
        if let bound = value as? StorageBound {
            bound.bind(to: node, index: index, context: context)
        } else if value is DynamicProperty {
            // A property of the app's own that groups state: bind what it holds.
            for (offset, child) in Mirror(reflecting: value).children.enumerated() {
                bind(child.value, node: node, index: index + offset + 1, context: context)
            }
        }
    }
}

extension ViewGraph {
    /// The scroll offset changed: place the elements again.
    func relayout() { invalidate() }
}
