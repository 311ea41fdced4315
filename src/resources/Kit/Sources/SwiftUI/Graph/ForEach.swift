import Foundation

/// Views made from the elements of a collection, each identified by its id.
public struct ForEach<Data: RandomAccessCollection, ID: Hashable, Content: View>: View, PrimitiveView {
    public typealias Body = Never
    public var data: Data
    let identify: (Data.Element) -> ID
    public var content: (Data.Element) -> Content
    var deleteAction: ((IndexSet) -> Void)?
    var moveAction: ((IndexSet, Int) -> Void)?

    public init(_ data: Data, id: KeyPath<Data.Element, ID>, @ViewBuilder content: @escaping (Data.Element) -> Content) {
        self.data = data; identify = { $0[keyPath: id] }; self.content = content
    }
    func resolve(_ context: ResolveContext) -> [Element] {
        var result: [Element] = []
        for index in 0..<data.count { result += resolveRow(index, context) }
        return result
    }

    var rowCount: Int { data.count }

    /// The elements of the row at `offset`, under the row's id.
    func resolveRow(_ offset: Int, _ context: ResolveContext) -> [Element] {
        let element = data[data.index(data.startIndex, offsetBy: offset)]
        let identity = identify(element)
        var rowContext = context.child(.id(AnyHashable(identity)))
        rowContext.environment.pickerTags = false
        var elements = rowContext.sliding(resolveView(content(element), rowContext), row: rowContext.path)
        if context.environment.pickerTags {
            elements = elements.map { TagElement($0, tag: AnyHashable(identity)) }
            // A picker over an enum's cases whose ids are not the cases themselves matches by the case.
            if let value = element as? any Hashable { elements = elements.map { TagElement($0, tag: AnyHashable(value)) } }
        }
        if context.environment.marksIdentity { elements = elements.map { IdentityElement($0, identity: AnyHashable(identity)) } }
        guard let deleteAction else { return elements }
        let rowPath = rowContext.child(.id("row")).path
        return elements.map {
            RowActionElement($0, path: rowPath, graph: context.graph, delete: { deleteAction(IndexSet(integer: offset)) })
        }
    }

    /// Rows that the user can delete: a delete button shows when the pointer is on the row.
    public func onDelete(perform action: ((IndexSet) -> Void)?) -> ForEach {
        var copy = self
        copy.deleteAction = action
        return copy
    }
    public func onMove(perform action: ((IndexSet, Int) -> Void)?) -> ForEach {
        var copy = self
        copy.moveAction = action
        return copy
    }
}

extension ForEach where ID == Data.Element.ID, Data.Element: Identifiable {
    public init(_ data: Data, @ViewBuilder content: @escaping (Data.Element) -> Content) {
        self.init(data, id: \.id, content: content)
    }
}

extension ForEach where Data == Range<Int>, ID == Int {
    public init(_ data: Range<Int>, @ViewBuilder content: @escaping (Int) -> Content) {
        self.init(data, id: \.self, content: content)
    }
}

/// A row of a ForEach with `onDelete`: hovering shows a delete button at its trailing edge.
final class RowActionElement: InteractiveElement {
    let delete: () -> Void
    init(_ child: Element, path: ViewPath, graph: ViewGraph, delete: @escaping () -> Void) {
        self.delete = delete
        super.init(child, path: path, graph: graph)
    }
    var deleteButtonFrame: CGRect {
        CGRect(x: frame.maxX - 26, y: frame.midY - 11, width: 22, height: 22)
    }
    override func draw(_ renderer: HostBridge) {
        child.draw(renderer)
        if hovered {
            renderer.fill(Path(ellipseIn: deleteButtonFrame), .solid(Color.red.rgba(in: EnvironmentValues())))
            renderer.drawSymbol(
                "minus", in: deleteButtonFrame.insetBy(dx: 5, dy: 5), paint: .solid(RGBA(red: 1, green: 1, blue: 1, alpha: 1)))
        }
    }
    override var acceptsHover: Bool { true }
    override func hits(_ point: CGPoint) -> [InteractiveElement]? {
        if hovered && deleteButtonFrame.contains(point) { return [self] }
        guard frame.contains(point) else { return nil }
        return (child.hits(point) ?? []) + [self]
    }
    override func tap(at point: CGPoint, count: Int) -> Bool {
        guard deleteButtonFrame.contains(point) else { return false }
        delete()
        return true
    }
}
