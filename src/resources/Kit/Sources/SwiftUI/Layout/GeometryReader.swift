import Foundation

/// Hands its content the size it is given: `GeometryReader { proxy in ... }`.
public struct GeometryReader<Content: View>: View, PrimitiveView {
    public typealias Body = Never
    let content: (GeometryProxy) -> Content
    public init(@ViewBuilder content: @escaping (GeometryProxy) -> Content) { self.content = content }
    func resolve(_ context: ResolveContext) -> [Element] {
        let content = self.content
        var inner = context
        inner.stackAxis = nil
        return [GeometryElement(context: inner) { proxy, ctx in resolveView(content(proxy), ctx) }]
    }
}

public struct GeometryProxy {
    public let size: CGSize
    let origin: CGPoint
    public var safeAreaInsets: EdgeInsets { EdgeInsets() }
    public func frame(in coordinateSpace: CoordinateSpace) -> CGRect {
        switch coordinateSpace {
        case .local: return CGRect(origin: .zero, size: size)
        default: return CGRect(origin: origin, size: size)
        }
    }
}

public enum CoordinateSpace: Hashable {
    case global, local, named(AnyHashable)
}

extension CoordinateSpace {
    public static func named<H: Hashable>(_ name: H) -> CoordinateSpace { .named(AnyHashable(name)) }
}

final class GeometryElement: Element {
    let context: ResolveContext
    let make: @MainActor (GeometryProxy, ResolveContext) -> [Element]
    private var content: [Element] = []
    init(context: ResolveContext, make: @escaping @MainActor (GeometryProxy, ResolveContext) -> [Element]) {
        self.context = context; self.make = make
    }
    override var children: [Element] { content }
    override func measure(_ proposal: ProposedViewSize) -> CGSize { proposal.replacingUnspecifiedDimensions() }
    override func place(in rect: CGRect) {
        frame = rect
        content = make(GeometryProxy(size: rect.size, origin: rect.origin), context)
        // Content sits at the top leading corner, as in SwiftUI.
        for element in content {
            let s = element.size(ProposedViewSize(rect.size))
            element.place(in: CGRect(origin: rect.origin, size: s))
        }
    }
}
