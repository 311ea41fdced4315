import Foundation

/// Panes side by side with a thin line between them.
public struct HSplitView<Content: View>: View {
    let content: Content
    public init(@ViewBuilder content: () -> Content) { self.content = content() }
    public var body: some View { HStack(spacing: 0) { SeparatedPanes(content: content, axis: .horizontal) } }
}

/// Panes one above the other with a thin line between them.
public struct VSplitView<Content: View>: View {
    let content: Content
    public init(@ViewBuilder content: () -> Content) { self.content = content() }
    public var body: some View { VStack(spacing: 0) { SeparatedPanes(content: content, axis: .vertical) } }
}

private struct SeparatedPanes<Content: View>: View, PrimitiveView {
    typealias Body = Never
    let content: Content
    let axis: Axis
    func resolve(_ context: ResolveContext) -> [Element] {
        var inner = context
        inner.stackAxis = axis
        let panes = resolveView(content, inner)
        let line = Color.separator.rgba(in: context.environment)
        var result: [Element] = []
        for (index, pane) in panes.enumerated() {
            if index > 0 { result.append(DividerElement(axis: axis == .horizontal ? .vertical : .horizontal, color: line)) }
            result.append(pane)
        }
        return result
    }
}

/// A title with a chevron that shows or hides the content under it.
public struct DisclosureGroup<Label: View, Content: View>: View {
    let label: Label
    let content: Content
    let binding: Binding<Bool>?
    @State private var ownExpanded = false

    public init(@ViewBuilder content: () -> Content, @ViewBuilder label: () -> Label) {
        self.content = content(); self.label = label(); binding = nil
    }
    public init(isExpanded: Binding<Bool>, @ViewBuilder content: () -> Content, @ViewBuilder label: () -> Label) {
        self.content = content(); self.label = label(); binding = isExpanded
    }

    public var body: some View {
        let expanded = binding?.wrappedValue ?? ownExpanded
        VStack(alignment: .leading, spacing: 6) {
            Button {
                if let binding { binding.wrappedValue.toggle() } else { ownExpanded.toggle() }
            } label: {
                HStack(spacing: 6) {
                    Image(systemName: expanded ? "chevron.down" : "chevron.right")
                        .font(.system(size: 10, weight: .semibold)).foregroundStyle(.secondary).frame(width: 12)
                    label
                    Spacer(minLength: 0)
                }
                .contentShape(Rectangle())
            }
            .buttonStyle(.plain)
            if expanded {
                VStack(alignment: .leading, spacing: 6) { content }.padding(.leading, 18)
            }
        }
    }
}

extension DisclosureGroup where Label == Text {
    public init(_ titleKey: LocalizedStringKey, @ViewBuilder content: () -> Content) { self.init(content: content) { Text(titleKey) } }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, @ViewBuilder content: () -> Content) { self.init(content: content) { Text(title) } }
    public init(_ titleKey: LocalizedStringKey, isExpanded: Binding<Bool>, @ViewBuilder content: () -> Content) {
        self.init(isExpanded: isExpanded, content: content) { Text(titleKey) }
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, isExpanded: Binding<Bool>, @ViewBuilder content: () -> Content) {
        self.init(isExpanded: isExpanded, content: content) { Text(title) }
    }
}

/// A tree of items: those with children disclose them.
public struct OutlineGroup<Data: RandomAccessCollection, ID: Hashable, Leaf: View>: View {
    let data: Data
    let id: KeyPath<Data.Element, ID>
    let children: KeyPath<Data.Element, Data?>
    let content: (Data.Element) -> Leaf

    public init(
        _ data: Data, id: KeyPath<Data.Element, ID>, children: KeyPath<Data.Element, Data?>,
        @ViewBuilder content: @escaping (Data.Element) -> Leaf
    ) {
        self.data = data; self.id = id; self.children = children; self.content = content
    }
    public var body: some View {
        ForEach(data, id: id) { item in
            if let inner = item[keyPath: children] {
                DisclosureGroup {
                    OutlineGroup(inner, id: id, children: children, content: content)
                } label: {
                    content(item)
                }
            } else {
                content(item).padding(.leading, 18)
            }
        }
    }
}

extension OutlineGroup where ID == Data.Element.ID, Data.Element: Identifiable {
    public init(_ data: Data, children: KeyPath<Data.Element, Data?>, @ViewBuilder content: @escaping (Data.Element) -> Leaf) {
        self.init(data, id: \.id, children: children, content: content)
    }
}

extension List where SelectionValue == Never {
    public init<Data: RandomAccessCollection, RowContent: View>(
        _ data: Data, children: KeyPath<Data.Element, Data?>, @ViewBuilder rowContent: @escaping (Data.Element) -> RowContent
    ) where Data.Element: Identifiable, Content == OutlineGroup<Data, Data.Element.ID, RowContent> {
        self.init { OutlineGroup(data, children: children, content: rowContent) }
    }
    public init<Data: RandomAccessCollection, ID: Hashable, RowContent: View>(
        _ data: Data, id: KeyPath<Data.Element, ID>, children: KeyPath<Data.Element, Data?>,
        @ViewBuilder rowContent: @escaping (Data.Element) -> RowContent
    ) where Content == OutlineGroup<Data, ID, RowContent> {
        self.init { OutlineGroup(data, id: id, children: children, content: rowContent) }
    }
}

extension List {
    public init<Data: RandomAccessCollection, RowContent: View>(
        _ data: Data, children: KeyPath<Data.Element, Data?>, selection: Binding<SelectionValue?>?,
        @ViewBuilder rowContent: @escaping (Data.Element) -> RowContent
    ) where Data.Element: Identifiable, Content == OutlineGroup<Data, Data.Element.ID, RowContent> {
        self.init(selection: selection) { OutlineGroup(data, children: children, content: rowContent) }
    }
}

/// `.inspector`: a panel at the trailing edge while `isPresented` holds.
private enum InspectorWidthKey: EnvironmentKey { static let defaultValue: CGFloat? = nil }
extension View {
    public func inspector<V: View>(isPresented: Binding<Bool>, @ViewBuilder content: () -> V) -> some View {
        let panel = content()
        return HStack(spacing: 0) {
            self.frame(maxWidth: .infinity, maxHeight: .infinity)
            if isPresented.wrappedValue {
                Divider()
                panel.frame(width: 260).frame(maxHeight: .infinity, alignment: .top).background(Color.windowBackground)
            }
        }
    }
    public func inspectorColumnWidth(_ width: CGFloat) -> some View { self }
    public func inspectorColumnWidth(min: CGFloat? = nil, ideal: CGFloat, max: CGFloat? = nil) -> some View { self }
}

/// `.searchable`: a search field above the view, bound to the text the view filters by.
public struct SearchFieldPlacement: Sendable {
    public static let automatic = SearchFieldPlacement(), toolbar = SearchFieldPlacement(), sidebar = SearchFieldPlacement()
    public static let navigationBarDrawer = SearchFieldPlacement()
    public static func navigationBarDrawer(displayMode: NavigationBarDrawerDisplayMode) -> SearchFieldPlacement { SearchFieldPlacement() }
    public enum NavigationBarDrawerDisplayMode: Sendable { case automatic, always }
}

private struct SearchField: View {
    let text: Binding<String>
    let prompt: String
    var body: some View {
        HStack(spacing: 6) {
            Image(systemName: "magnifyingglass").foregroundStyle(.secondary)
            TextField(prompt, text: text).textFieldStyle(.plain)
            if !text.wrappedValue.isEmpty {
                Button {
                    text.wrappedValue = ""
                } label: {
                    Image(systemName: "xmark.circle.fill").foregroundStyle(.secondary)
                }
                .buttonStyle(.plain)
            }
        }
        .padding(.horizontal, 8).padding(.vertical, 2)
        .background(RoundedRectangle(cornerRadius: 6).fill(Color.fill))
        .padding(.horizontal, 10).padding(.vertical, 6)
    }
}

extension View {
    public func searchable(text: Binding<String>, placement: SearchFieldPlacement = .automatic, prompt: Text? = nil) -> some View {
        VStack(spacing: 0) {
            SearchField(text: text, prompt: prompt?.plainText ?? "Search")
            self.frame(maxHeight: .infinity)
        }
    }
    public func searchable(text: Binding<String>, placement: SearchFieldPlacement = .automatic, prompt: LocalizedStringKey) -> some View {
        searchable(text: text, placement: placement, prompt: Text(prompt))
    }
    @_disfavoredOverload
    public func searchable<S: StringProtocol>(text: Binding<String>, placement: SearchFieldPlacement = .automatic, prompt: S) -> some View {
        searchable(text: text, placement: placement, prompt: Text(prompt))
    }
    public func searchable(
        text: Binding<String>, isPresented: Binding<Bool>, placement: SearchFieldPlacement = .automatic, prompt: Text? = nil
    )
        -> some View
    {
        searchable(text: text, placement: placement, prompt: prompt)
    }
    public func searchSuggestions<S: View>(@ViewBuilder _ suggestions: () -> S) -> some View { self }
    public func searchScopes<V: Hashable, S: View>(_ scope: Binding<V>, @ViewBuilder scopes: () -> S) -> some View { self }
}

/// Scrolls the scroll views inside a `ScrollViewReader` to the view with a given id.
@MainActor
public struct ScrollViewProxy {
    let request: ScrollRequest
    public func scrollTo<ID: Hashable>(_ id: ID, anchor: UnitPoint? = nil) {
        request.target = (AnyHashable(id), anchor)
        request.graph?.invalidate()
    }
}

@MainActor
final class ScrollRequest {
    var target: (id: AnyHashable, anchor: UnitPoint?)?
    weak var graph: ViewGraph?
}

public struct ScrollViewReader<Content: View>: View, PrimitiveView {
    public typealias Body = Never
    let content: (ScrollViewProxy) -> Content
    public init(@ViewBuilder content: @escaping (ScrollViewProxy) -> Content) { self.content = content }
    func resolve(_ context: ResolveContext) -> [Element] {
        let graph = context.graph
        let request = graph.storage(at: context.child(.id("reader")).path).0.slot(0) { ScrollRequest() }
        request.graph = graph
        var inner = context
        inner.environment.marksIdentity = true
        let elements = resolveView(content(ScrollViewProxy(request: request)), inner)
        if let target = request.target {
            request.target = nil
            // Once this tree is placed, the scroll view that holds the target moves to it.
            graph.afterUpdate {
                for element in elements { if scrollToMarked(target.id, anchor: target.anchor, in: element) { graph.invalidate(); break } }
            }
        }
        return elements
    }
}

/// Finds the view marked with `id` and scrolls the innermost scroll view around it.
@MainActor
private func scrollToMarked(_ id: AnyHashable, anchor: UnitPoint?, in root: Element) -> Bool {
    var scrolls: [ScrollElement] = []
    var found = false
    func visit(_ element: Element) {
        if found { return }
        if let scroll = element as? ScrollElement { scrolls.append(scroll) }
        if let mark = element as? IdentityElement, mark.identity == id, let scroll = scrolls.last {
            scroll.reveal(mark.frame, anchor: anchor)
            found = true
            return
        }
        for child in element.children { visit(child) }
        if element is ScrollElement { scrolls.removeLast() }
    }
    visit(root)
    return found
}

/// Marks where a view with an explicit id is, for a `ScrollViewReader` to find.
final class IdentityElement: WrapperElement {
    let identity: AnyHashable
    init(_ child: Element, identity: AnyHashable) { self.identity = identity; super.init(child) }
    override var bleed: CGFloat? { 0 }
    override func place(in rect: CGRect) { frame = rect; child.place(in: rect) }
}

private enum MarksIdentityKey: EnvironmentKey { static let defaultValue = false }
extension EnvironmentValues {
    /// Inside a ScrollViewReader, views with ids leave marks where they are placed.
    var marksIdentity: Bool {
        get { self[MarksIdentityKey.self] }
        set { self[MarksIdentityKey.self] = newValue }
    }
}

/// Related controls side by side, joined into one bordered group.
public struct ControlGroup<Content: View>: View {
    let content: Content
    public init(@ViewBuilder content: () -> Content) { self.content = content() }
    public init<L: View>(@ViewBuilder content: () -> Content, @ViewBuilder label: () -> L) { self.content = content() }
    public var body: some View {
        HStack(spacing: 0) {
            SeparatedPanes(content: content.buttonStyle(.borderless).padding(.horizontal, 8).padding(.vertical, 3), axis: .horizontal)
        }
        .background(RoundedRectangle(cornerRadius: 6).fill(Color.controlBackground))
        .overlay(RoundedRectangle(cornerRadius: 6).strokeBorder(Color.controlBorder, lineWidth: 1))
        .fixedSize()
    }
}
extension ControlGroup {
    public init<S: StringProtocol>(_ title: S, @ViewBuilder content: () -> Content) { self.content = content() }
}
