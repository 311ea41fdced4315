import Foundation

/// Pages chosen with a row of tabs above them. Each page names its tab with `.tabItem` or is
/// a `Tab`; pages are told apart by `.tag`, or by their order when they have none.
public struct TabView<SelectionValue: Hashable, Content: View>: View, PrimitiveView {
    public typealias Body = Never
    let selection: Binding<SelectionValue>?
    let content: Content

    public init(selection: Binding<SelectionValue>?, @ViewBuilder content: () -> Content) {
        self.selection = selection; self.content = content()
    }

    func resolve(_ context: ResolveContext) -> [Element] {
        var pageContext = context.child(.id("pages"))
        pageContext.stackAxis = nil
        let pages = resolveView(content, pageContext)
        guard !pages.isEmpty else { return [] }
        let tags: [AnyHashable?] = pages.map { page in
            var tag: AnyHashable?
            page.forEach { if let marked = $0 as? TagElement, marked.tag.base is SelectionValue, tag == nil { tag = marked.tag } }
            return tag
        }
        let own = context.graph.storage(at: context.child(.id("tab")).path).0.slot(0) { TabState() }
        let graph = context.graph
        var selected = own.index
        if let selection, let index = tags.firstIndex(where: { $0 == AnyHashable(selection.wrappedValue) }) { selected = index }
        selected = min(max(selected, 0), pages.count - 1)
        let choose: (Int) -> Void = { index in
            own.index = index
            if let selection, let tag = tags[index]?.base as? SelectionValue { selection.wrappedValue = tag }
            graph.invalidate()
        }
        let labels: [Element] = pages.enumerated().map { index, page in
            var label: Element?
            page.forEach { if let item = $0 as? TabItemElement, label == nil { label = item.label } }
            if let label { return label }
            let fallback = context.child(.id("untitled \(index)"))
            return single(resolveView(Text("Tab \(index + 1)"), fallback), context: fallback)
        }
        let bar = TabBar(labels: labels, selected: selected, choose: choose)
        let page = pages[selected]
        let barContext = context.child(.id("bar"))
        let layout = VStack(spacing: 0) {
            bar.padding(.vertical, 6)
            Divider()
            Elements(elements: [page]).frame(maxWidth: .infinity, maxHeight: .infinity)
        }
        return resolveView(layout, barContext)
    }
}

extension TabView where SelectionValue == Int {
    public init(@ViewBuilder content: () -> Content) { self.init(selection: nil, content: content) }
}

@MainActor
final class TabState {
    var index = 0
}

private struct TabBar: View {
    let labels: [Element]
    let selected: Int
    let choose: (Int) -> Void
    var body: some View {
        HStack(spacing: 2) {
            ForEach(0..<labels.count, id: \.self) { index in
                Button {
                    choose(index)
                } label: {
                    Elements(elements: [labels[index]])
                        .labelStyle(.titleAndIcon)
                        .foregroundStyle(index == selected ? Color.white : Color.primary)
                        .padding(.horizontal, 12).padding(.vertical, 4)
                        .background(
                            RoundedRectangle(cornerRadius: 6)
                                .fill(index == selected ? AnyShapeStyle(TintShapeStyle()) : AnyShapeStyle(Color.clear))
                        )
                        .contentShape(Rectangle())
                }
                .buttonStyle(.plain)
            }
        }
        .padding(2)
        .background(RoundedRectangle(cornerRadius: 8).fill(Color.fill))
    }
}

/// Carries the label of a page's tab.
final class TabItemElement: WrapperElement {
    let label: Element
    init(_ child: Element, label: Element) { self.label = label; super.init(child) }
    override var bleed: CGFloat? { 0 }
    override func place(in rect: CGRect) { frame = rect; child.place(in: rect) }
}

struct TabItemModifier<Label: View>: ViewModifier, PrimitiveModifier {
    let label: Label
    func resolve(content: ContentResolver, context: ResolveContext) -> [Element] {
        let page = single(content(context), context: context)
        var labelContext = context.child(.id("tab item"))
        labelContext.stackAxis = .horizontal
        labelContext.environment.foregroundStyle = nil
        let label = single(resolveView(label, labelContext), context: labelContext)
        return [TabItemElement(page, label: label)]
    }
}

extension View {
    public func tabItem<V: View>(@ViewBuilder _ label: () -> V) -> some View { modifier(TabItemModifier(label: label())) }
    public func tabViewStyle(_ style: TabViewStyleKind) -> some View { self }
}

public struct TabViewStyleKind: Sendable {
    public static let automatic = TabViewStyleKind(), page = TabViewStyleKind(), sidebarAdaptable = TabViewStyleKind()
    public static let tabBarOnly = TabViewStyleKind(), grouped = TabViewStyleKind()
    public static func page(indexDisplayMode: PageIndexDisplayMode) -> TabViewStyleKind { TabViewStyleKind() }
    public enum PageIndexDisplayMode: Sendable { case automatic, always, never }
}

/// A page of a TabView with its tab's title and symbol, and the value that selects it.
public struct Tab<Value: Hashable, Content: View>: View {
    let title: Text
    let systemImage: String?
    let value: Value?
    let content: Content

    public var body: some View {
        content
            .tabItem {
                if let systemImage {
                    Label {
                        title
                    } icon: {
                        Image(systemName: systemImage)
                    }
                } else {
                    title
                }
            }
            .modifier(ElementModifier { element, _ in value.map { TagElement(element, tag: AnyHashable($0)) } ?? element })
    }
}

extension Tab {
    public init(_ titleKey: LocalizedStringKey, systemImage: String, value: Value, @ViewBuilder content: () -> Content) {
        title = Text(titleKey); self.systemImage = systemImage; self.value = value; self.content = content()
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, systemImage: String, value: Value, @ViewBuilder content: () -> Content) {
        self.title = Text(title); self.systemImage = systemImage; self.value = value; self.content = content()
    }
    public init(_ titleKey: LocalizedStringKey, image: String, value: Value, @ViewBuilder content: () -> Content) {
        title = Text(titleKey); systemImage = "photo"; self.value = value; self.content = content()
    }
    public init(value: Value, @ViewBuilder content: () -> Content) {
        title = Text(""); systemImage = nil; self.value = value; self.content = content()
    }
}

extension Tab where Value == Never {
    public init(_ titleKey: LocalizedStringKey, systemImage: String, @ViewBuilder content: () -> Content) {
        title = Text(titleKey); self.systemImage = systemImage; value = nil; self.content = content()
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, systemImage: String, @ViewBuilder content: () -> Content) {
        self.title = Text(title); self.systemImage = systemImage; value = nil; self.content = content()
    }
    public init(_ titleKey: LocalizedStringKey, @ViewBuilder content: () -> Content) {
        title = Text(titleKey); systemImage = nil; value = nil; self.content = content()
    }
}

/// Tabs grouped under a heading in a sidebar; shown here as the tabs themselves.
public struct TabSection<Content: View>: View {
    let content: Content
    public init(_ titleKey: LocalizedStringKey, @ViewBuilder content: () -> Content) { self.content = content() }
    public var body: some View { content }
}
