import Foundation

/// Rows in a scrolling column with separators; `Section`s give them headers.
public struct List<SelectionValue: Hashable, Content: View>: View, PrimitiveView {
    public typealias Body = Never
    let content: Content
    var selection: ListSelection? = nil
    public init(selection: Binding<SelectionValue?>?, @ViewBuilder content: () -> Content) {
        self.content = content(); self.selection = selection.map(ListSelection.init)
    }
    public init(selection: Binding<Set<SelectionValue>>?, @ViewBuilder content: () -> Content) {
        self.content = content(); self.selection = selection.map(ListSelection.init)
    }
    public init(selection: Binding<SelectionValue>?, @ViewBuilder content: () -> Content) {
        self.content = content(); self.selection = selection.map(ListSelection.init)
    }
    public init<Data: RandomAccessCollection, RowContent: View>(
        _ data: Data, selection: Binding<SelectionValue?>?, @ViewBuilder rowContent: @escaping (Data.Element) -> RowContent
    ) where Content == ForEach<Data, Data.Element.ID, RowContent>, Data.Element: Identifiable {
        content = ForEach(data, content: rowContent); self.selection = selection.map(ListSelection.init)
    }
    public init<Data: RandomAccessCollection, RowContent: View>(
        _ data: Data, selection: Binding<Set<SelectionValue>>?, @ViewBuilder rowContent: @escaping (Data.Element) -> RowContent
    ) where Content == ForEach<Data, Data.Element.ID, RowContent>, Data.Element: Identifiable {
        content = ForEach(data, content: rowContent); self.selection = selection.map(ListSelection.init)
    }
    public init<Data: RandomAccessCollection, ID: Hashable, RowContent: View>(
        _ data: Data, id: KeyPath<Data.Element, ID>, selection: Binding<SelectionValue?>?,
        @ViewBuilder rowContent: @escaping (Data.Element) -> RowContent
    ) where Content == ForEach<Data, ID, RowContent> {
        content = ForEach(data, id: id, content: rowContent); self.selection = selection.map(ListSelection.init)
    }
    public init<Data: RandomAccessCollection, ID: Hashable, RowContent: View>(
        _ data: Data, id: KeyPath<Data.Element, ID>, selection: Binding<Set<SelectionValue>>?,
        @ViewBuilder rowContent: @escaping (Data.Element) -> RowContent
    ) where Content == ForEach<Data, ID, RowContent> {
        content = ForEach(data, id: id, content: rowContent); self.selection = selection.map(ListSelection.init)
    }

    func resolve(_ context: ResolveContext) -> [Element] {
        resolveRows(content, context: context, grouped: context.environment.listStyle == .grouped, selection: selection)
    }
}

/// A list's selection, whatever its type: which rows carry a tag of that type, and the binding.
@MainActor
struct ListSelection {
    let tag: (Element) -> AnyHashable?
    let isSelected: (AnyHashable) -> Bool
    let select: (AnyHashable) -> Void

    private static func tag<V: Hashable>(_ type: V.Type) -> (Element) -> AnyHashable? {
        { row in
            var found: AnyHashable?
            row.forEach { if let marked = $0 as? TagElement, marked.tag.base is V { found = marked.tag } }
            return found
        }
    }
    init<V: Hashable>(_ binding: Binding<V?>) {
        tag = Self.tag(V.self)
        isSelected = { binding.wrappedValue.map(AnyHashable.init) == $0 }
        select = { binding.wrappedValue = $0.base as? V }
    }
    init<V: Hashable>(_ binding: Binding<V>) {
        tag = Self.tag(V.self)
        isSelected = { AnyHashable(binding.wrappedValue) == $0 }
        select = { if let value = $0.base as? V { binding.wrappedValue = value } }
    }
    init<V: Hashable>(_ binding: Binding<Set<V>>) {
        tag = Self.tag(V.self)
        isSelected = { ($0.base as? V).map(binding.wrappedValue.contains) ?? false }
        select = { if let value = $0.base as? V { binding.wrappedValue = [value] } }
    }

    /// Makes the rows that carry a tag clickable, the selected one lit.
    func apply(_ rows: [Element], context: ResolveContext) -> [Element] {
        rows.map { row in
            guard !(row is ListMarkElement), let value = tag(row) else { return row }
            return SelectableRowElement(
                row, path: context.path.appending(.id(value)), graph: context.graph, selected: isSelected(value),
                tint: context.environment.accentRGBA.withAlpha(0.25)
            ) { select(value) }
        }
    }
}

/// A row of a list with a selection: a click selects it.
final class SelectableRowElement: InteractiveElement {
    let selected: Bool
    let tint: RGBA
    let choose: () -> Void
    init(_ child: Element, path: ViewPath, graph: ViewGraph, selected: Bool, tint: RGBA, choose: @escaping () -> Void) {
        self.selected = selected; self.tint = tint; self.choose = choose
        super.init(child, path: path, graph: graph)
    }
    override var catchesWholeFrame: Bool { true }
    override var bleed: CGFloat? { 8 }
    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        var s = child.size(proposal)
        if let width = proposal.width, width.isFinite { s.width = max(s.width, width) }
        return s
    }
    override func place(in rect: CGRect) {
        frame = rect
        let s = child.size(ProposedViewSize(rect.size))
        child.place(in: CGRect(x: rect.minX, y: rect.midY - s.height / 2, width: min(s.width, rect.width), height: s.height))
    }
    override func draw(_ renderer: HostBridge) {
        if selected { renderer.fill(Path(roundedRect: frame.insetBy(dx: -8, dy: -4), cornerRadius: 5), .solid(tint)) }
        child.draw(renderer)
    }
    override func tap(at point: CGPoint, count: Int) -> Bool {
        choose()
        return true
    }
}

extension List where SelectionValue == Never {
    public init(@ViewBuilder content: () -> Content) { self.content = content() }
    public init<Data: RandomAccessCollection, RowContent: View>(
        _ data: Data, @ViewBuilder rowContent: @escaping (Data.Element) -> RowContent
    )
    where Content == ForEach<Data, Data.Element.ID, RowContent>, Data.Element: Identifiable {
        content = ForEach(data, content: rowContent)
    }
    public init<Data: RandomAccessCollection, ID: Hashable, RowContent: View>(
        _ data: Data, id: KeyPath<Data.Element, ID>, @ViewBuilder rowContent: @escaping (Data.Element) -> RowContent
    )
    where Content == ForEach<Data, ID, RowContent> {
        content = ForEach(data, id: id, content: rowContent)
    }
    public init<RowContent: View>(_ data: Range<Int>, @ViewBuilder rowContent: @escaping (Int) -> RowContent)
    where Content == ForEach<Range<Int>, Int, RowContent> {
        content = ForEach(data, content: rowContent)
    }
}

/// Rows grouped in rounded panels, as settings screens show them.
public struct Form<Content: View>: View, PrimitiveView {
    public typealias Body = Never
    let content: Content
    public init(@ViewBuilder content: () -> Content) { self.content = content() }
    func resolve(_ context: ResolveContext) -> [Element] { resolveRows(content, context: context, grouped: true) }
}

@MainActor
private func resolveRows<Content: View>(_ content: Content, context: ResolveContext, grouped: Bool, selection: ListSelection? = nil)
    -> [Element]
{
    var inner = context
    inner.stackAxis = nil
    inner.environment.inList = true
    if selection != nil { inner.environment.pickerTags = true }
    let rows: ([Element]) -> [Element] = { selection?.apply($0, context: inner) ?? $0 }
    let list =
        lazyRows(content, context: inner, grouped: grouped, rows: rows)
        ?? ListElement(rows: rows(resolveView(content, inner)), grouped: grouped, environment: context.environment)
    let state = context.graph.storage(at: context.child(.id("scroll")).path).0.slot(0) { ScrollState() }
    return [
        ScrollElement(
            list, axis: .vertical, state: state, graph: context.graph,
            indicator: Color.secondary.rgba(in: context.environment).withAlpha(0.6))
    ]
}

/// Lists longer than this, made from one ForEach, make only the rows in view.
private let eagerRowLimit = 100

@MainActor
private func lazyRows<Content: View>(
    _ content: Content, context: ResolveContext, grouped: Bool, rows wrap: @escaping ([Element]) -> [Element]
)
    -> Element?
{
    guard let rows = content as? any LazyRows, rows.rowCount > eagerRowLimit else { return nil }
    let first = wrap(rows.resolveRow(0, context))
    guard !first.isEmpty, !first.contains(where: { $0 is ListMarkElement }) else { return nil }
    return LazyListElement(
        first: first, count: rows.rowCount, grouped: grouped, environment: context.environment,
        graph: context.graph
    ) { wrap(rows.resolveRow($0, context)) }
}

/// A header (and footer) above a group of rows; outside a list its rows stack vertically.
public struct Section<Parent: View, Content: View, Footer: View>: View, PrimitiveView {
    public typealias Body = Never
    let header: Parent, content: Content, footer: Footer
    public init(@ViewBuilder content: () -> Content, @ViewBuilder header: () -> Parent, @ViewBuilder footer: () -> Footer) {
        self.header = header(); self.content = content(); self.footer = footer()
    }
    func resolve(_ context: ResolveContext) -> [Element] {
        var headerContext = context.child(.id("header"))
        headerContext.environment.font = context.environment.font ?? .subheadline.weight(.semibold)
        headerContext.environment.foregroundStyle = AnyShapeStyle(Color.secondary)
        var footerContext = context.child(.id("footer"))
        footerContext.environment.font = context.environment.font ?? .footnote
        footerContext.environment.foregroundStyle = AnyShapeStyle(Color.secondary)
        let head = resolveView(header, headerContext)
        let foot = resolveView(footer, footerContext)
        let rows = resolveView(content, context.child(.id("rows")))
        guard context.environment.inList else { return head + rows + foot }
        return [ListMarkElement(single(head, context: headerContext), kind: .header)]
            + rows + (foot.isEmpty ? [] : [ListMarkElement(single(foot, context: footerContext), kind: .footer)])
    }
}

extension Section where Parent == EmptyView, Footer == EmptyView {
    public init(@ViewBuilder content: () -> Content) { self.init(content: content, header: { EmptyView() }, footer: { EmptyView() }) }
}
extension Section where Footer == EmptyView {
    public init(@ViewBuilder content: () -> Content, @ViewBuilder header: () -> Parent) {
        self.init(content: content, header: header, footer: { EmptyView() })
    }
    public init(header: Parent, @ViewBuilder content: () -> Content) {
        self.init(content: content, header: { header }, footer: { EmptyView() })
    }
}
extension Section where Parent == EmptyView {
    public init(@ViewBuilder content: () -> Content, @ViewBuilder footer: () -> Footer) {
        self.init(content: content, header: { EmptyView() }, footer: footer)
    }
}
extension Section {
    public init(header: Parent, footer: Footer, @ViewBuilder content: () -> Content) {
        self.init(content: content, header: { header }, footer: { footer })
    }
}
extension Section where Parent == Text, Footer == EmptyView {
    public init(_ titleKey: LocalizedStringKey, @ViewBuilder content: () -> Content) {
        self.init(content: content, header: { Text(titleKey) }, footer: { EmptyView() })
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, @ViewBuilder content: () -> Content) {
        self.init(content: content, header: { Text(title) }, footer: { EmptyView() })
    }
}

/// A section's header or footer among a list's rows.
final class ListMarkElement: WrapperElement {
    enum Kind { case header, footer }
    let kind: Kind
    init(_ child: Element, kind: Kind) { self.kind = kind; super.init(child) }
    override func place(in rect: CGRect) { frame = rect; child.place(in: rect) }
}

/// The rows of a list: each takes the full width, at least 28 points high, leading aligned;
/// separators between rows, panels around each section when grouped.
final class ListElement: Element {
    let rows: [Element]
    let grouped: Bool
    let separator: RGBA, panel: RGBA, border: RGBA
    static let rowInsets = EdgeInsets(top: 6, leading: 12, bottom: 6, trailing: 12)
    static let minimumRowHeight: CGFloat = 28

    init(rows: [Element], grouped: Bool, environment: EnvironmentValues) {
        self.rows = rows; self.grouped = grouped
        separator = Color.separator.rgba(in: environment)
        panel = Color.controlBackground.rgba(in: environment)
        border = Color.separator.rgba(in: environment)
    }
    override var children: [Element] { rows }

    private var outer: CGFloat { grouped ? 16 : 0 }

    private func height(of row: Element, width: CGFloat) -> CGFloat {
        let insets = ListElement.rowInsets
        if row is ListMarkElement {
            return row.size(ProposedViewSize(width: max(0, width - 2 * insets.leading), height: nil)).height + 12
        }
        let inner = row.size(ProposedViewSize(width: max(0, width - insets.horizontal), height: nil))
        return max(ListElement.minimumRowHeight, inner.height + insets.vertical)
    }

    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        let width = proposal.width ?? 320
        let inner = width - 2 * outer
        let total = rows.reduce(2 * outer) { $0 + height(of: $1, width: inner) } + sectionGaps
        return CGSize(width: width, height: total)
    }

    private var sectionGaps: CGFloat {
        guard grouped else { return 0 }
        return CGFloat(rows.enumerated().filter { $0.offset > 0 && ($0.element as? ListMarkElement)?.kind == .header }.count) * 12
    }

    /// Runs of plain rows, by index range, that a grouped list draws in one panel.
    private(set) var panels: [CGRect] = []
    private var separators: [CGRect] = []

    override func place(in rect: CGRect) {
        frame = rect
        panels = []; separators = []
        let inner = rect.insetBy(dx: outer, dy: 0)
        var y = rect.minY + outer
        var panelStart: CGFloat?
        let insets = ListElement.rowInsets
        func closePanel() {
            if let start = panelStart { panels.append(CGRect(x: inner.minX, y: start, width: inner.width, height: y - start)) }
            panelStart = nil
        }
        for (index, row) in rows.enumerated() {
            let h = height(of: row, width: inner.width)
            if let mark = row as? ListMarkElement {
                closePanel()
                if grouped, mark.kind == .header, index > 0 { y += 12 }
                let s = mark.size(ProposedViewSize(width: inner.width - 2 * insets.leading, height: nil))
                let top = mark.kind == .header ? y + h - 4 - s.height : y + 4
                mark.place(in: CGRect(x: inner.minX + insets.leading, y: top, width: s.width, height: s.height))
            } else {
                if panelStart == nil {
                    panelStart = y
                } else {
                    separators.append(CGRect(x: inner.minX + insets.leading, y: y, width: inner.width - insets.leading, height: 1))
                }
                let area = CGRect(
                    x: inner.minX + insets.leading, y: y + insets.top,
                    width: max(0, inner.width - insets.horizontal), height: h - insets.vertical)
                let s = row.size(ProposedViewSize(width: area.width, height: nil))
                let placed = CGRect(x: area.minX, y: area.midY - s.height / 2, width: min(area.width, max(s.width, 0)), height: s.height)
                row.place(in: placed)
            }
            y += h
        }
        closePanel()
    }

    override func draw(_ renderer: HostBridge) {
        if grouped {
            for panel in panels {
                renderer.fill(Path(roundedRect: panel, cornerRadius: 8), .solid(self.panel))
                renderer.stroke(
                    Path(roundedRect: panel.insetBy(dx: 0.5, dy: 0.5), cornerRadius: 8), .solid(border), StrokeStyle(lineWidth: 1))
            }
        }
        for line in separators { renderer.fill(Path(line), .solid(separator)) }
        for row in rows { row.draw(renderer) }
    }

    override func hits(_ point: CGPoint) -> [InteractiveElement]? {
        for row in rows.reversed() { if let hit = row.hits(point) { return hit } }
        return frame.contains(point) ? [] : nil
    }
}

/// The rows of a long list made from one ForEach: only the rows in view are made, each as
/// high as the first, so scrolling costs the same for a hundred rows or for ten thousand.
final class LazyListElement: Element {
    let items: Int, perItem: Int
    let grouped: Bool
    unowned let graph: ViewGraph
    let make: (Int) -> [Element]
    let separator: RGBA, panel: RGBA, border: RGBA
    private var made: [Int: [Element]] = [:]
    private var separators: [CGRect] = []
    private var panelRect = CGRect.null

    init(
        first: [Element], count: Int, grouped: Bool, environment: EnvironmentValues, graph: ViewGraph,
        make: @escaping (Int) -> [Element]
    ) {
        items = count; perItem = first.count; self.grouped = grouped; self.graph = graph; self.make = make
        separator = Color.separator.rgba(in: environment)
        panel = Color.controlBackground.rgba(in: environment)
        border = Color.separator.rgba(in: environment)
        made[0] = first
    }
    override var children: [Element] { made.keys.sorted().flatMap { made[$0] ?? [] } }

    private var outer: CGFloat { grouped ? 16 : 0 }
    private var rowCount: Int { items * perItem }

    private func item(_ index: Int) -> [Element] {
        if let known = made[index] { return known }
        let elements = make(index)
        made[index] = elements
        return elements
    }
    private func row(_ index: Int) -> Element? {
        let elements = item(index / perItem)
        return index % perItem < elements.count ? elements[index % perItem] : nil
    }
    private func rowHeight(width: CGFloat) -> CGFloat {
        let insets = ListElement.rowInsets
        let first = item(0)[0].size(ProposedViewSize(width: max(0, width - insets.horizontal), height: nil))
        return max(ListElement.minimumRowHeight, first.height + insets.vertical)
    }

    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        let width = proposal.width ?? 320
        return CGSize(width: width, height: 2 * outer + CGFloat(rowCount) * rowHeight(width: width - 2 * outer))
    }

    override func place(in rect: CGRect) {
        frame = rect
        separators = []
        let inner = rect.insetBy(dx: outer, dy: 0)
        let step = rowHeight(width: inner.width)
        let top = rect.minY + outer
        panelRect = CGRect(x: inner.minX, y: top, width: inner.width, height: CGFloat(rowCount) * step)
        let visible = (graph.viewports.last ?? rect).intersection(panelRect)
        guard !visible.isNull, !visible.isEmpty else { made = [:]; return }
        let first = max(0, Int(((visible.minY - top) / step).rounded(.down)))
        let last = min(rowCount - 1, Int(((visible.maxY - top) / step).rounded(.down)))
        let insets = ListElement.rowInsets
        for index in first...max(first, last) {
            guard let element = row(index) else { continue }
            let y = top + CGFloat(index) * step
            if index > 0 {
                separators.append(CGRect(x: inner.minX + insets.leading, y: y, width: inner.width - insets.leading, height: 1))
            }
            let area = CGRect(
                x: inner.minX + insets.leading, y: y + insets.top,
                width: max(0, inner.width - insets.horizontal), height: step - insets.vertical)
            let s = element.size(ProposedViewSize(width: area.width, height: nil))
            element.place(in: CGRect(x: area.minX, y: area.midY - s.height / 2, width: min(area.width, max(s.width, 0)), height: s.height))
        }
        let shown = (first / perItem)...(max(first, last) / perItem)
        made = made.filter { shown.contains($0.key) }
    }

    override func draw(_ renderer: HostBridge) {
        if grouped, !panelRect.isNull {
            renderer.fill(Path(roundedRect: panelRect, cornerRadius: 8), .solid(panel))
            renderer.stroke(
                Path(roundedRect: panelRect.insetBy(dx: 0.5, dy: 0.5), cornerRadius: 8), .solid(border), StrokeStyle(lineWidth: 1))
        }
        for line in separators { renderer.fill(Path(line), .solid(separator)) }
        for row in children { row.draw(renderer) }
    }

    override func hits(_ point: CGPoint) -> [InteractiveElement]? {
        for row in children.reversed() { if let hit = row.hits(point) { return hit } }
        return frame.contains(point) ? [] : nil
    }
}

public struct ListStyleKind: Equatable, Sendable {
    let kind: Int
    public static let automatic = ListStyleKind(kind: 0)
    public static let plain = ListStyleKind(kind: 0)
    public static let inset = ListStyleKind(kind: 0)
    public static let sidebar = ListStyleKind(kind: 0)
    public static let grouped = ListStyleKind(kind: 1)
    public static let insetGrouped = ListStyleKind(kind: 1)
    public static let bordered = ListStyleKind(kind: 1)
    public static func inset(alternatesRowBackgrounds: Bool) -> ListStyleKind { .inset }
    public static func bordered(alternatesRowBackgrounds: Bool) -> ListStyleKind { .bordered }
}
public struct FormStyleKind: Equatable, Sendable {
    public static let automatic = FormStyleKind()
    public static let grouped = FormStyleKind()
    public static let columns = FormStyleKind()
}

private enum ListStyleKey: EnvironmentKey { static let defaultValue = ListStyleKind.automatic }
private enum InListKey: EnvironmentKey { static let defaultValue = false }
extension EnvironmentValues {
    var listStyle: ListStyleKind {
        get { self[ListStyleKey.self] }
        set { self[ListStyleKey.self] = newValue }
    }
    var inList: Bool {
        get { self[InListKey.self] }
        set { self[InListKey.self] = newValue }
    }
}

extension View {
    public func listStyle(_ style: ListStyleKind) -> some View { modifier(EnvironmentModifier { $0.listStyle = style }) }
    public func formStyle(_ style: FormStyleKind) -> some View { self }
    public func listRowBackground<V: View>(_ view: V?) -> some View { self }
    public func listRowSeparator(_ visibility: Visibility, edges: VerticalEdgeSet = .all) -> some View { self }
    public func listRowInsets(_ insets: EdgeInsets?) -> some View { self }
    public func scrollContentBackground(_ visibility: Visibility) -> some View { self }
    public func swipeActions<T: View>(edge: HorizontalEdge = .trailing, allowsFullSwipe: Bool = true, @ViewBuilder content: () -> T)
        -> some View
    { self }
}

public enum Visibility: Hashable, CaseIterable, Sendable { case automatic, visible, hidden }
public struct VerticalEdgeSet: OptionSet, Sendable {
    public let rawValue: Int
    public init(rawValue: Int) { self.rawValue = rawValue }
    public static let top = VerticalEdgeSet(rawValue: 1)
    public static let bottom = VerticalEdgeSet(rawValue: 2)
    public static let all: VerticalEdgeSet = [.top, .bottom]
}

/// A label and its value on one row: `LabeledContent("Version", value: "1.0")`.
public struct LabeledContent<Label: View, Content: View>: View {
    let label: Label, content: Content
    public init(@ViewBuilder content: () -> Content, @ViewBuilder label: () -> Label) { self.label = label(); self.content = content() }
    public var body: some View {
        HStack {
            label; Spacer(); content.foregroundStyle(.secondary)
        }
    }
}
extension LabeledContent where Label == Text, Content == Text {
    public init<S: StringProtocol>(_ title: S, value: S) { self.init(content: { Text(value) }, label: { Text(title) }) }
    @_disfavoredOverload
    public init<S: StringProtocol, V: StringProtocol>(_ title: S, value: V) { self.init(content: { Text(value) }, label: { Text(title) }) }
    public init<F: FormatStyle>(_ titleKey: LocalizedStringKey, value: F.FormatInput, format: F) where F.FormatOutput == String {
        self.init(content: { Text(format.format(value)) }, label: { Text(titleKey) })
    }
    @_disfavoredOverload
    public init<S: StringProtocol, F: FormatStyle>(_ title: S, value: F.FormatInput, format: F) where F.FormatOutput == String {
        self.init(content: { Text(format.format(value)) }, label: { Text(title) })
    }
}
extension LabeledContent where Label == Text {
    public init<S: StringProtocol>(_ title: S, @ViewBuilder content: () -> Content) { self.init(content: content, label: { Text(title) }) }
}

/// A titled panel around its content.
public struct GroupBox<Label: View, Content: View>: View {
    let label: Label, content: Content
    public init(@ViewBuilder content: () -> Content, @ViewBuilder label: () -> Label) { self.label = label(); self.content = content() }
    public var body: some View {
        VStack(alignment: .leading, spacing: 8) {
            label.font(.headline)
            content
        }
        .padding(10)
        .frame(maxWidth: .infinity, alignment: .leading)
        .background(RoundedRectangle(cornerRadius: 8).fill(Color.fill))
    }
}
extension GroupBox where Label == EmptyView {
    public init(@ViewBuilder content: () -> Content) { self.init(content: content, label: { EmptyView() }) }
}
extension GroupBox where Label == Text {
    public init<S: StringProtocol>(_ title: S, @ViewBuilder content: () -> Content) { self.init(content: content, label: { Text(title) }) }
}

extension RangeReplaceableCollection where Self: MutableCollection {
    /// Removes the elements at `offsets`, as a list's delete action hands them over.
    public mutating func remove(atOffsets offsets: IndexSet) {
        for offset in offsets.sorted(by: >) { remove(at: index(startIndex, offsetBy: offset)) }
    }
    /// Moves the elements at `source` to before the element at `destination`.
    public mutating func move(fromOffsets source: IndexSet, toOffset destination: Int) {
        let moving = source.map { self[index(startIndex, offsetBy: $0)] }
        let before = source.filter { $0 < destination }.count
        remove(atOffsets: source)
        insert(contentsOf: moving, at: index(startIndex, offsetBy: destination - before))
    }
}
