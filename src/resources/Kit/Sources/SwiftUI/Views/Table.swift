import Foundation

/// Rows of values in columns under a header. A click on a row selects it; a click on the
/// header of a column with a key path sorts by it (the app sorts its rows by `sortOrder`).
public struct Table<Value: Identifiable, Columns: View>: View {
    let rows: [Value]
    let columns: [TableColumnDefinition<Value>]
    let selection: ListSelection?
    let sortOrder: Binding<[KeyPathComparator<Value>]>?

    public var body: some View {
        GeometryReader { proxy in
            let widths = columnWidths(proxy.size.width)
            VStack(spacing: 0) {
                header(widths)
                Divider()
                ScrollView {
                    LazyVStack(spacing: 0) {
                        ForEach(Array(rows.enumerated()), id: \.element.id) { index, row in
                            TableRow(columns: columns, widths: widths, row: row, striped: index % 2 == 1, selection: selection)
                        }
                    }
                }
            }
        }
        .background(Color.controlBackground)
    }

    /// Fixed columns take their width; the others share what is left, within their limits.
    private func columnWidths(_ total: CGFloat) -> [CGFloat] {
        let fixed = columns.compactMap(\.width.fixed).reduce(0, +)
        let flexible = columns.filter { $0.width.fixed == nil }.count
        let share = flexible > 0 ? max(0, total - fixed - CGFloat(columns.count - 1)) / CGFloat(flexible) : 0
        return columns.map { column in
            column.width.fixed ?? min(max(share, column.width.min ?? 0), column.width.max ?? .infinity)
        }
    }

    private func header(_ widths: [CGFloat]) -> some View {
        HStack(spacing: 0) {
            ForEach(0..<columns.count, id: \.self) { index in
                let column = columns[index]
                let sorted = sortOrder?.wrappedValue.first.flatMap { first in column.sortKey.map { $0 == first.keyPath } } ?? false
                Button {
                    sort(by: column)
                } label: {
                    HStack(spacing: 4) {
                        column.title.font(.subheadline.weight(.semibold)).foregroundStyle(.secondary).lineLimit(1)
                        if sorted {
                            Image(systemName: sortOrder?.wrappedValue.first?.order == .reverse ? "chevron.down" : "chevron.up")
                                .font(.system(size: 8, weight: .bold)).foregroundStyle(.secondary)
                        }
                        Spacer(minLength: 0)
                    }
                    .padding(.horizontal, 8).padding(.vertical, 5)
                    .contentShape(Rectangle())
                }
                .buttonStyle(.plain)
                .frame(width: widths[index], alignment: .leading)
                if index < columns.count - 1 { Rectangle().fill(Color.separator).frame(width: 1, height: 14) }
            }
        }
    }

    private func sort(by column: TableColumnDefinition<Value>) {
        guard let sortOrder, let comparator = column.comparator else { return }
        if let first = sortOrder.wrappedValue.first, first.keyPath == comparator.keyPath {
            var flipped = first
            flipped.order = first.order == .forward ? .reverse : .forward
            sortOrder.wrappedValue = [flipped] + sortOrder.wrappedValue.dropFirst()
        } else {
            sortOrder.wrappedValue = [comparator] + sortOrder.wrappedValue.filter { $0.keyPath != comparator.keyPath }
        }
    }
}

private struct TableRow<Value: Identifiable>: View {
    let columns: [TableColumnDefinition<Value>]
    let widths: [CGFloat]
    let row: Value
    let striped: Bool
    let selection: ListSelection?
    var body: some View {
        let selected = selection?.isSelected(AnyHashable(row.id)) ?? false
        HStack(spacing: 0) {
            ForEach(0..<columns.count, id: \.self) { index in
                columns[index].cell(row)
                    .lineLimit(1)
                    .padding(.horizontal, 8).padding(.vertical, 4)
                    .frame(width: widths[index], alignment: .leading)
                if index < columns.count - 1 { Color.clear.frame(width: 1) }
            }
        }
        .frame(minHeight: 24, alignment: .leading)
        .background(
            selected
                ? AnyShapeStyle(TintShapeStyle().opacity(0.3))
                : striped ? AnyShapeStyle(Color.fill.opacity(0.6)) : AnyShapeStyle(Color.clear)
        )
        .contentShape(Rectangle())
        .onTapGesture { selection?.select(AnyHashable(row.id)) }
    }
}

struct TableColumnWidth {
    var fixed: CGFloat?
    var min: CGFloat?
    var max: CGFloat?
}

/// One column as the table keeps it, whatever its content's type.
public struct TableColumnDefinition<Value> {
    let title: Text
    let cell: @MainActor (Value) -> AnyView
    let comparator: KeyPathComparator<Value>?
    var width = TableColumnWidth()
    var sortKey: PartialKeyPath<Value>? { comparator?.keyPath }
}

/// A column of a `Table`: a title and what each row shows in it.
public struct TableColumn<RowValue, Sort, Content: View, Label: View> {
    var definition: TableColumnDefinition<RowValue>

    public func width(_ width: CGFloat? = nil) -> TableColumn {
        var copy = self
        copy.definition.width.fixed = width
        return copy
    }
    public func width(min: CGFloat? = nil, ideal: CGFloat? = nil, max: CGFloat? = nil) -> TableColumn {
        var copy = self
        copy.definition.width.min = min; copy.definition.width.max = max
        return copy
    }
    public func alignment(_ alignment: TableColumnAlignment) -> TableColumn { self }
    public func customizationID(_ id: String) -> TableColumn { self }
    public func defaultVisibility(_ visibility: Visibility) -> TableColumn { self }
    public func disabledCustomizationBehavior(_ behavior: Any) -> TableColumn { self }
}

public struct TableColumnAlignment: Sendable {
    public static let automatic = TableColumnAlignment(), leading = TableColumnAlignment(), center = TableColumnAlignment()
    public static let trailing = TableColumnAlignment(), numeric = TableColumnAlignment()
}

extension TableColumn where Sort == Never, Label == Text {
    public init(_ titleKey: LocalizedStringKey, @ViewBuilder content: @escaping (RowValue) -> Content) {
        definition = TableColumnDefinition(title: Text(titleKey), cell: { AnyView(content($0)) }, comparator: nil)
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, @ViewBuilder content: @escaping (RowValue) -> Content) {
        definition = TableColumnDefinition(title: Text(title), cell: { AnyView(content($0)) }, comparator: nil)
    }
}

extension TableColumn where Sort == KeyPathComparator<RowValue>, Label == Text, Content == Text {
    public init(_ titleKey: LocalizedStringKey, value: KeyPath<RowValue, String>) {
        definition = TableColumnDefinition(
            title: Text(titleKey), cell: { AnyView(Text($0[keyPath: value])) }, comparator: KeyPathComparator(value))
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, value: KeyPath<RowValue, String>) {
        definition = TableColumnDefinition(
            title: Text(title), cell: { AnyView(Text($0[keyPath: value])) }, comparator: KeyPathComparator(value))
    }
}

extension TableColumn where Sort == KeyPathComparator<RowValue>, Label == Text {
    public init<V: Comparable>(
        _ titleKey: LocalizedStringKey, value: KeyPath<RowValue, V>, @ViewBuilder content: @escaping (RowValue) -> Content
    ) {
        definition = TableColumnDefinition(title: Text(titleKey), cell: { AnyView(content($0)) }, comparator: KeyPathComparator(value))
    }
    @_disfavoredOverload
    public init<S: StringProtocol, V: Comparable>(
        _ title: S, value: KeyPath<RowValue, V>, @ViewBuilder content: @escaping (RowValue) -> Content
    ) {
        definition = TableColumnDefinition(title: Text(title), cell: { AnyView(content($0)) }, comparator: KeyPathComparator(value))
    }
    public init<V: Comparable>(
        _ titleKey: LocalizedStringKey, value: KeyPath<RowValue, V>, comparator: some SortComparator,
        @ViewBuilder content: @escaping (RowValue) -> Content
    ) {
        definition = TableColumnDefinition(title: Text(titleKey), cell: { AnyView(content($0)) }, comparator: KeyPathComparator(value))
    }
}

@resultBuilder
public enum TableColumnBuilder<RowValue, Sort> {
    public static func buildExpression<S, C: View, L: View>(_ column: TableColumn<RowValue, S, C, L>) -> [TableColumnDefinition<RowValue>] {
        [column.definition]
    }
    public static func buildBlock(_ columns: [TableColumnDefinition<RowValue>]...) -> [TableColumnDefinition<RowValue>] {
        columns.flatMap { $0 }
    }
    public static func buildOptional(_ columns: [TableColumnDefinition<RowValue>]?) -> [TableColumnDefinition<RowValue>] { columns ?? [] }
    public static func buildEither(first: [TableColumnDefinition<RowValue>]) -> [TableColumnDefinition<RowValue>] { first }
    public static func buildEither(second: [TableColumnDefinition<RowValue>]) -> [TableColumnDefinition<RowValue>] { second }
    public static func buildArray(_ columns: [[TableColumnDefinition<RowValue>]]) -> [TableColumnDefinition<RowValue>] {
        columns.flatMap { $0 }
    }
}

extension Table where Columns == EmptyView {
    public init<Data: RandomAccessCollection>(_ data: Data, @TableColumnBuilder<Value, Never> columns: () -> [TableColumnDefinition<Value>])
    where Data.Element == Value {
        rows = Array(data); self.columns = columns(); selection = nil; sortOrder = nil
    }
    public init<Data: RandomAccessCollection>(
        _ data: Data, selection: Binding<Value.ID?>, @TableColumnBuilder<Value, Never> columns: () -> [TableColumnDefinition<Value>]
    ) where Data.Element == Value {
        rows = Array(data); self.columns = columns(); self.selection = ListSelection(selection); sortOrder = nil
    }
    public init<Data: RandomAccessCollection>(
        _ data: Data, selection: Binding<Set<Value.ID>>, @TableColumnBuilder<Value, Never> columns: () -> [TableColumnDefinition<Value>]
    ) where Data.Element == Value {
        rows = Array(data); self.columns = columns(); self.selection = ListSelection(selection); sortOrder = nil
    }
    public init<Data: RandomAccessCollection>(
        _ data: Data, sortOrder: Binding<[KeyPathComparator<Value>]>,
        @TableColumnBuilder<Value, KeyPathComparator<Value>> columns: () -> [TableColumnDefinition<Value>]
    ) where Data.Element == Value {
        rows = Array(data); self.columns = columns(); selection = nil; self.sortOrder = sortOrder
    }
    public init<Data: RandomAccessCollection>(
        _ data: Data, selection: Binding<Value.ID?>, sortOrder: Binding<[KeyPathComparator<Value>]>,
        @TableColumnBuilder<Value, KeyPathComparator<Value>> columns: () -> [TableColumnDefinition<Value>]
    ) where Data.Element == Value {
        rows = Array(data); self.columns = columns(); self.selection = ListSelection(selection); self.sortOrder = sortOrder
    }
    public init<Data: RandomAccessCollection>(
        _ data: Data, selection: Binding<Set<Value.ID>>, sortOrder: Binding<[KeyPathComparator<Value>]>,
        @TableColumnBuilder<Value, KeyPathComparator<Value>> columns: () -> [TableColumnDefinition<Value>]
    ) where Data.Element == Value {
        rows = Array(data); self.columns = columns(); self.selection = ListSelection(selection); self.sortOrder = sortOrder
    }
}
