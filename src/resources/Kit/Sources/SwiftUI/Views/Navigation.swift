import Foundation

/// What a navigation container shows above its root: views pushed by links, or values whose
/// destinations `.navigationDestination(for:)` registered.
@MainActor
final class NavigationModel {
    enum Entry { case view(AnyView), value(AnyHashable) }
    var entries: [Entry] = []
    var destinations: [ObjectIdentifier: (Any) -> AnyView] = [:]
    var path: Binding<[AnyHashable]>?
    weak var graph: ViewGraph?

    var shown: [Entry] { path.map { $0.wrappedValue.map(Entry.value) } ?? entries }

    func push(_ entry: Entry) {
        if let path, case .value(let value) = entry { path.wrappedValue.append(value) } else { entries.append(entry) }
        graph?.invalidate()
    }
    func pop() {
        if let path, !path.wrappedValue.isEmpty { path.wrappedValue.removeLast() } else if !entries.isEmpty { entries.removeLast() }
        graph?.invalidate()
    }
    func view(for entry: Entry) -> AnyView? {
        switch entry {
        case .view(let view): return view
        case .value(let value): return destinations[ObjectIdentifier(type(of: value.base))].map { $0(value.base) }
        }
    }
}

private enum NavigationKey: EnvironmentKey { static let defaultValue: NavigationModel? = nil }
extension EnvironmentValues {
    var navigation: NavigationModel? {
        get { self[NavigationKey.self] }
        set { self[NavigationKey.self] = newValue }
    }
}

/// A path of values for `NavigationStack(path:)`.
public struct NavigationPath: Equatable {
    var values: [AnyHashable] = []
    public init() {}
    public init<S: Sequence>(_ elements: S) where S.Element: Hashable { values = elements.map(AnyHashable.init) }
    public var count: Int { values.count }
    public var isEmpty: Bool { values.isEmpty }
    public mutating func append<V: Hashable>(_ value: V) { values.append(AnyHashable(value)) }
    public mutating func removeLast(_ k: Int = 1) { values.removeLast(k) }
}

/// A root view with views pushed over it, a bar with the title, a back button and the toolbar.
public struct NavigationStack<Root: View>: View, PrimitiveView {
    public typealias Body = Never
    let root: Root
    let path: Binding<[AnyHashable]>?
    public init(@ViewBuilder root: () -> Root) { self.root = root(); path = nil }
    public init(path: Binding<NavigationPath>, @ViewBuilder root: () -> Root) {
        self.root = root()
        self.path = Binding(get: { path.wrappedValue.values }, set: { path.wrappedValue.values = $0 })
    }
    public init<Data: MutableCollection & RandomAccessCollection & RangeReplaceableCollection>(
        path: Binding<Data>, @ViewBuilder root: () -> Root
    ) where Data.Element: Hashable {
        self.root = root()
        self.path = Binding(
            get: { path.wrappedValue.map(AnyHashable.init) },
            set: { path.wrappedValue = Data($0.compactMap { $0.base as? Data.Element }) })
    }

    func resolve(_ context: ResolveContext) -> [Element] {
        let model = context.graph.storage(at: context.child(.id("navigation")).path).0.slot(0) { NavigationModel() }
        model.graph = context.graph
        model.path = path
        model.destinations = [:]
        var inner = context
        inner.environment.navigation = model
        let rootElements = resolveView(root, inner.child(.index(0)))
        let shown = model.shown
        var content = single(rootElements, context: inner)
        var canGoBack = false
        if let top = shown.last, let view = model.view(for: top) {
            var pushed = inner.child(.index(shown.count))
            pushed.environment.dismiss = DismissAction { model.pop() }
            content = single(view.resolve(pushed), context: pushed)
            canGoBack = true
        }
        return [navigationFrame(content: content, canGoBack: canGoBack, back: { model.pop() }, context: inner)]
    }
}

/// The older name of a navigation stack.
public struct NavigationView<Content: View>: View {
    let content: Content
    public init(@ViewBuilder content: () -> Content) { self.content = content() }
    public var body: some View { NavigationStack { content } }
}

/// A sidebar beside a detail area; links in the sidebar show their destination as the detail.
public struct NavigationSplitView<Sidebar: View, Content: View, Detail: View>: View, PrimitiveView {
    public typealias Body = Never
    let sidebar: Sidebar, content: Content, detail: Detail
    public init(@ViewBuilder sidebar: () -> Sidebar, @ViewBuilder content: () -> Content, @ViewBuilder detail: () -> Detail) {
        self.sidebar = sidebar(); self.content = content(); self.detail = detail()
    }
    func resolve(_ context: ResolveContext) -> [Element] {
        let model = context.graph.storage(at: context.child(.id("navigation")).path).0.slot(0) { NavigationModel() }
        model.graph = context.graph
        model.destinations = [:]
        var inner = context
        inner.environment.navigation = model
        inner.stackAxis = nil
        let side = single(resolveView(sidebar, inner.child(.index(0))), context: inner)
        let middle = resolveView(content, inner.child(.index(1)))
        var detailContext = inner.child(.index(2))
        detailContext.environment.navigation = nil
        var shownDetail = single(resolveView(detail, detailContext), context: detailContext)
        if let top = model.entries.last, let view = model.view(for: top) {
            shownDetail = single(view.resolve(inner.child(.index(3))), context: inner)
        }
        let sideFrame = FlexibleFrameElement(
            side, minWidth: 200, idealWidth: 220, maxWidth: 260, minHeight: nil, idealHeight: nil,
            maxHeight: .infinity, alignment: .topLeading)
        let sidebarPanel = LayeredElement(
            sideFrame, layer: ShapeFillElement(Color.fill.rgba(in: context.environment)), alignment: .center, above: false)
        let detailFrame = FlexibleFrameElement(
            shownDetail, minWidth: nil, idealWidth: nil, maxWidth: .infinity, minHeight: nil,
            idealHeight: nil, maxHeight: .infinity, alignment: .center)
        var columns: [Element] = [sidebarPanel, DividerElement(axis: .vertical, color: Color.separator.rgba(in: context.environment))]
        if !middle.isEmpty {
            columns += [
                FlexibleFrameElement(
                    single(middle, context: inner), minWidth: 200, idealWidth: 260, maxWidth: 320, minHeight: nil,
                    idealHeight: nil, maxHeight: .infinity, alignment: .topLeading),
                DividerElement(axis: .vertical, color: Color.separator.rgba(in: context.environment))
            ]
        }
        columns.append(navigationFrame(content: detailFrame, canGoBack: false, back: {}, context: inner))
        return [StackElement(axis: .horizontal, crossFraction: 0.5, spacing: 0, children: columns)]
    }
}

extension NavigationSplitView where Content == EmptyView {
    public init(@ViewBuilder sidebar: () -> Sidebar, @ViewBuilder detail: () -> Detail) {
        self.init(sidebar: sidebar, content: { EmptyView() }, detail: detail)
    }
    public init(
        columnVisibility: Binding<NavigationSplitViewVisibility>, @ViewBuilder sidebar: () -> Sidebar, @ViewBuilder detail: () -> Detail
    ) {
        self.init(sidebar: sidebar, content: { EmptyView() }, detail: detail)
    }
}

public struct NavigationSplitViewVisibility: Equatable, Sendable {
    public static let automatic = NavigationSplitViewVisibility(), all = NavigationSplitViewVisibility()
    public static let doubleColumn = NavigationSplitViewVisibility(), detailOnly = NavigationSplitViewVisibility()
}

/// A plain filled rectangle the size of what it lies behind.
final class ShapeFillElement: Element {
    let color: RGBA
    init(_ color: RGBA) { self.color = color }
    override func measure(_ proposal: ProposedViewSize) -> CGSize { proposal.replacingUnspecifiedDimensions() }
    override func draw(_ renderer: HostBridge) { renderer.fill(Path(frame), .solid(color)) }
}

/// The content under a bar that shows the title and toolbar items found in it.
@MainActor
private func navigationFrame(content: Element, canGoBack: Bool, back: @escaping () -> Void, context: ResolveContext) -> Element {
    var title: String?
    var items: [Element] = []
    content.forEach { element in
        if title == nil, let marked = element as? TitleElement { title = marked.title }
        if let toolbar = element as? ToolbarElement { items += toolbar.items }
    }
    if title == nil && items.isEmpty && !canGoBack { return content }
    let barContext = context.child(.id("navigation bar"))
    let bar = NavigationBar(title: title ?? "", canGoBack: canGoBack, back: back, items: items)
    let barElement = FixedFrameElement(
        single(resolveView(bar, barContext), context: barContext), width: nil, height: 44, alignment: .center)
    let filled = FlexibleFrameElement(
        content, minWidth: nil, idealWidth: nil, maxWidth: .infinity, minHeight: nil, idealHeight: nil,
        maxHeight: .infinity, alignment: .top)
    return StackElement(
        axis: .vertical, crossFraction: 0.5, spacing: 0,
        children: [barElement, DividerElement(axis: .horizontal, color: Color.separator.rgba(in: context.environment)), filled])
}

private struct NavigationBar: View {
    let title: String
    let canGoBack: Bool
    let back: () -> Void
    let items: [Element]
    var body: some View {
        HStack(spacing: 10) {
            if canGoBack {
                Button(action: back) { Label("Back", systemImage: "chevron.left") }.buttonStyle(.borderless)
            }
            Text(title).font(.headline).lineLimit(1)
            Spacer(minLength: 8)
            Elements(elements: items)
        }
        .padding(.horizontal, 12)
        .frame(maxWidth: .infinity, maxHeight: .infinity)
        .background(Color.windowBackground)
    }
}

/// Elements resolved elsewhere, placed as views.
struct Elements: View, PrimitiveView {
    typealias Body = Never
    let elements: [Element]
    func resolve(_ context: ResolveContext) -> [Element] { elements }
}

final class TitleElement: WrapperElement {
    let title: String
    init(_ child: Element, title: String) { self.title = title; super.init(child) }
    override func place(in rect: CGRect) { frame = rect; child.place(in: rect) }
}

final class ToolbarElement: WrapperElement {
    let items: [Element]
    init(_ child: Element, items: [Element]) { self.items = items; super.init(child) }
    override func place(in rect: CGRect) { frame = rect; child.place(in: rect) }
}

/// Shows its destination when clicked, inside the enclosing navigation container.
public struct NavigationLink<Label: View, Destination: View>: View {
    let label: Label
    let entry: @MainActor () -> NavigationModel.Entry
    @Environment(\.inList) private var inList
    @Environment(\.navigation) private var navigation

    public init(@ViewBuilder destination: () -> Destination, @ViewBuilder label: () -> Label) {
        let view = AnyView(destination())
        self.label = label(); entry = { .view(view) }
    }
    public init(destination: Destination, @ViewBuilder label: () -> Label) {
        self.init(destination: { destination }, label: label)
    }
    public init(isActive: Binding<Bool>, @ViewBuilder destination: () -> Destination, @ViewBuilder label: () -> Label) {
        self.init(destination: destination, label: label)
    }

    public var body: some View {
        Button {
            navigation?.push(entry())
        } label: {
            if inList {
                HStack {
                    label
                    Spacer(minLength: 8)
                    Image(systemName: "chevron.right").font(.system(size: 11, weight: .semibold)).foregroundStyle(.secondary)
                }
                .contentShape(Rectangle())
            } else {
                label
            }
        }
        .modifier(
            EnvironmentModifier { [inList] in
                $0.buttonStyle = inList ? AnyButtonStyle(PlainButtonStyle()) : AnyButtonStyle(LinkStyleForNavigation())
            })
    }
}

/// Links outside lists read as links, in the accent colour.
struct LinkStyleForNavigation: ButtonStyle {
    func makeBody(configuration: Configuration) -> some View {
        configuration.label.foregroundStyle(Color.accentColor).opacity(configuration.isPressed ? 0.6 : 1)
    }
}

extension NavigationLink where Label == Text {
    public init(_ titleKey: LocalizedStringKey, @ViewBuilder destination: () -> Destination) {
        self.init(destination: destination) { Text(titleKey) }
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, @ViewBuilder destination: () -> Destination) {
        self.init(destination: destination) { Text(title) }
    }
    public init(_ titleKey: LocalizedStringKey, destination: Destination) { self.init(destination: { destination }) { Text(titleKey) } }
}

extension NavigationLink where Destination == Never {
    public init<P: Hashable>(value: P?, @ViewBuilder label: () -> Label) {
        self.label = label()
        entry = { value.map { .value(AnyHashable($0)) } ?? .view(AnyView(EmptyView())) }
    }
    public init<P: Hashable>(_ titleKey: LocalizedStringKey, value: P?) where Label == Text {
        self.init(value: value) { Text(titleKey) }
    }
    @_disfavoredOverload
    public init<S: StringProtocol, P: Hashable>(_ title: S, value: P?) where Label == Text {
        self.init(value: value) { Text(title) }
    }
}

/// A toolbar entry; its placement is accepted and the item goes to the bar's trailing end.
public struct ToolbarItem<ID, Content: View>: View {
    let content: Content
    public init(placement: ToolbarItemPlacement = .automatic, @ViewBuilder content: () -> Content) where ID == () {
        self.content = content()
    }
    public init(id: String, placement: ToolbarItemPlacement = .automatic, @ViewBuilder content: () -> Content) where ID == String {
        self.content = content()
    }
    public var body: some View { content }
}

public struct ToolbarItemGroup<Content: View>: View {
    let content: Content
    public init(placement: ToolbarItemPlacement = .automatic, @ViewBuilder content: () -> Content) { self.content = content() }
    public var body: some View { HStack(spacing: 8) { content } }
}

public struct ToolbarItemPlacement: Sendable {
    let kind: Int
    public static let automatic = ToolbarItemPlacement(kind: 0)
    public static let primaryAction = ToolbarItemPlacement(kind: 0)
    public static let confirmationAction = ToolbarItemPlacement(kind: 0)
    public static let cancellationAction = ToolbarItemPlacement(kind: 0)
    public static let destructiveAction = ToolbarItemPlacement(kind: 0)
    public static let navigation = ToolbarItemPlacement(kind: 0)
    public static let principal = ToolbarItemPlacement(kind: 0)
    public static let status = ToolbarItemPlacement(kind: 0)
    public static let topBarLeading = ToolbarItemPlacement(kind: 0)
    public static let topBarTrailing = ToolbarItemPlacement(kind: 0)
    public static let navigationBarLeading = ToolbarItemPlacement(kind: 0)
    public static let navigationBarTrailing = ToolbarItemPlacement(kind: 0)
    public static let bottomBar = ToolbarItemPlacement(kind: 0)
    public static let keyboard = ToolbarItemPlacement(kind: 0)
}

public enum NavigationBarItem {
    public enum TitleDisplayMode: Sendable { case automatic, inline, large }
}

struct NavigationDestinationModifier: ViewModifier, PrimitiveModifier {
    let type: ObjectIdentifier
    let make: (Any) -> AnyView
    func resolve(content: ContentResolver, context: ResolveContext) -> [Element] {
        context.environment.navigation?.destinations[type] = make
        return content(context)
    }
}

struct ToolbarModifier: ViewModifier, PrimitiveModifier {
    let items: AnyView
    func resolve(content: ContentResolver, context: ResolveContext) -> [Element] {
        var itemContext = context.child(.id("toolbar"))
        itemContext.stackAxis = .horizontal
        itemContext.environment.inList = false
        let items = items.resolve(itemContext)
        let elements = content(context)
        if context.environment.navigation != nil {
            return [ToolbarElement(single(elements, context: context), items: items)]
        }
        // Outside a navigation container the items get a bar of their own above the content.
        let bar = PaddingElement(
            StackElement(
                axis: .horizontal, crossFraction: 0.5, spacing: 8,
                children: [SpacerElement(minLength: 8, axis: .horizontal)] + items),
            insets: EdgeInsets(top: 8, leading: 12, bottom: 8, trailing: 12))
        return [StackElement(axis: .vertical, crossFraction: 0.5, spacing: 0, children: [bar, single(elements, context: context)])]
    }
}

extension View {
    public func navigationTitle(_ title: Text) -> some View {
        modifier(ElementModifier { element, _ in TitleElement(element, title: title.plainText) })
    }
    public func navigationTitle(_ titleKey: LocalizedStringKey) -> some View { navigationTitle(Text(titleKey)) }
    @_disfavoredOverload
    public func navigationTitle<S: StringProtocol>(_ title: S) -> some View { navigationTitle(Text(title)) }
    public func navigationSubtitle<S: StringProtocol>(_ subtitle: S) -> some View { self }
    public func navigationBarTitle<S: StringProtocol>(_ title: S) -> some View { navigationTitle(title) }
    public func navigationBarTitleDisplayMode(_ mode: NavigationBarItem.TitleDisplayMode) -> some View { self }
    public func navigationBarBackButtonHidden(_ hidden: Bool = true) -> some View { self }
    public func navigationSplitViewColumnWidth(_ width: CGFloat) -> some View { self }
    public func navigationSplitViewStyle(_ style: NavigationSplitViewStyleKind) -> some View { self }
    public func navigationSplitViewColumnWidth(min: CGFloat? = nil, ideal: CGFloat, max: CGFloat? = nil) -> some View { self }
    public func navigationDestination<D: Hashable, C: View>(for data: D.Type, @ViewBuilder destination: @escaping (D) -> C) -> some View {
        modifier(NavigationDestinationModifier(type: ObjectIdentifier(D.self)) { value in AnyView(destination(value as! D)) })
    }
    public func toolbar<Content: View>(@ViewBuilder content: () -> Content) -> some View {
        modifier(ToolbarModifier(items: AnyView(content())))
    }
    public func toolbar(_ visibility: Visibility, for bars: ToolbarPlacement...) -> some View { self }
    public func toolbarBackground<S: ShapeStyle>(_ style: S, for bars: ToolbarPlacement...) -> some View { self }
    public func toolbarRole(_ role: ToolbarRole) -> some View { self }
}

public struct ToolbarPlacement: Sendable {
    public static let automatic = ToolbarPlacement(), navigationBar = ToolbarPlacement(), windowToolbar = ToolbarPlacement()
    public static let bottomBar = ToolbarPlacement(), tabBar = ToolbarPlacement()
}
public struct ToolbarRole: Sendable {
    public static let automatic = ToolbarRole(), editor = ToolbarRole(), browser = ToolbarRole(), navigationStack = ToolbarRole()
}

public struct NavigationSplitViewStyleKind: Sendable {
    public static let automatic = NavigationSplitViewStyleKind(), balanced = NavigationSplitViewStyleKind()
    public static let prominentDetail = NavigationSplitViewStyleKind()
}
