import Foundation

/// A piece of user interface, described by its `body`.
@MainActor @preconcurrency
public protocol View {
    associatedtype Body: View
    @ViewBuilder @MainActor @preconcurrency var body: Self.Body { get }
}

extension Never: View {
    public typealias Body = Never
    public var body: Never { fatalError() }
}

/// Views the kit turns into elements itself rather than through a body.
@MainActor
protocol PrimitiveView {
    func resolve(_ context: ResolveContext) -> [Element]
}

extension View where Body == Never {
    public var body: Never { fatalError("\(Self.self) is drawn by the kit and has no body") }
}

/// Turns a view into the elements it stands for: composite views through their body, with
/// their dynamic properties bound to storage that lives at their place in the graph.
@MainActor
func resolveView<V: View>(_ view: V, _ context: ResolveContext) -> [Element] {
    if let primitive = view as? any PrimitiveView {
        return primitive.resolve(context)
    }
    var inner = context
    inner.path = context.path.appending(.type(ObjectIdentifier(V.self)))
    let view = presented(view, inner)
    context.graph.bindDynamicProperties(of: view, context: inner)
    return resolveView(view.body, inner)
}

public struct EmptyView: View, PrimitiveView {
    public typealias Body = Never
    public init() {}
    func resolve(_ context: ResolveContext) -> [Element] { [] }
}

public struct TupleView<each Content: View>: View, PrimitiveView {
    public typealias Body = Never
    public var value: (repeat each Content)
    public init(_ value: (repeat each Content)) { self.value = value }
    func resolve(_ context: ResolveContext) -> [Element] {
        var result: [Element] = []
        var index = 0
        for child in repeat each value {
            result += resolveView(child, context.child(.index(index)))
            index += 1
        }
        return result
    }
}

public struct _ConditionalContent<TrueContent: View, FalseContent: View>: View, PrimitiveView {
    public typealias Body = Never
    enum Storage { case trueContent(TrueContent), falseContent(FalseContent) }
    let storage: Storage
    func resolve(_ context: ResolveContext) -> [Element] {
        switch storage {
        case .trueContent(let view): return resolveView(view, context.child(.branch(0)))
        case .falseContent(let view): return resolveView(view, context.child(.branch(1)))
        }
    }
}

extension Optional: View where Wrapped: View {
    public typealias Body = Never
}

extension Optional: PrimitiveView where Wrapped: View {
    func resolve(_ context: ResolveContext) -> [Element] {
        guard let view = self else { return [] }
        return resolveView(view, context.child(.branch(0)))
    }
}

@resultBuilder
public enum ViewBuilder {
    public static func buildBlock() -> EmptyView { EmptyView() }
    public static func buildBlock<Content: View>(_ content: Content) -> Content { content }
    public static func buildBlock<each Content: View>(_ content: repeat each Content) -> TupleView<repeat each Content> {
        TupleView((repeat each content))
    }
    public static func buildExpression<Content: View>(_ content: Content) -> Content { content }
    public static func buildIf<Content: View>(_ content: Content?) -> Content? { content }
    public static func buildOptional<Content: View>(_ content: Content?) -> Content? { content }
    public static func buildEither<T: View, F: View>(first: T) -> _ConditionalContent<T, F> {
        _ConditionalContent(storage: .trueContent(first))
    }
    public static func buildEither<T: View, F: View>(second: F) -> _ConditionalContent<T, F> {
        _ConditionalContent(storage: .falseContent(second))
    }
    public static func buildLimitedAvailability<Content: View>(_ content: Content) -> AnyView { AnyView(content) }
}

/// Several views side by side in whatever contains the group.
public struct Group<Content: View>: View, PrimitiveView {
    public typealias Body = Never
    let content: Content
    public init(@ViewBuilder content: () -> Content) { self.content = content() }
    func resolve(_ context: ResolveContext) -> [Element] { resolveView(content, context) }
}

/// A view whose type is erased; a change of the wrapped type starts its state afresh.
public struct AnyView: View, PrimitiveView {
    public typealias Body = Never
    let resolver: @MainActor (ResolveContext) -> [Element]
    let typeIdentifier: ObjectIdentifier
    public init<V: View>(_ view: V) {
        if let any = view as? AnyView { self = any; return }
        resolver = { resolveView(view, $0) }
        typeIdentifier = ObjectIdentifier(V.self)
    }
    public init<V: View>(erasing view: V) { self.init(view) }
    func resolve(_ context: ResolveContext) -> [Element] { resolver(context.child(.type(typeIdentifier))) }
}

extension View {
    /// Gives the view an explicit identity: a new id makes it a new view with fresh state.
    public func id<ID: Hashable>(_ id: ID) -> some View {
        IdentifiedView(content: self, identity: AnyHashable(id))
    }
}

struct IdentifiedView<Content: View>: View, PrimitiveView {
    typealias Body = Never
    let content: Content
    let identity: AnyHashable
    func resolve(_ context: ResolveContext) -> [Element] {
        let elements = resolveView(content, context.child(.id(identity)))
        guard context.environment.marksIdentity else { return elements }
        return elements.map { IdentityElement($0, identity: identity) }
    }
}
