import Foundation

/// A column (or row) description of a lazy grid.
public struct GridItem: Sendable {
    public enum Size: Sendable {
        case fixed(CGFloat)
        case flexible(minimum: CGFloat = 10, maximum: CGFloat = .infinity)
        case adaptive(minimum: CGFloat, maximum: CGFloat = .infinity)
    }
    public var size: Size
    public var spacing: CGFloat?
    public var alignment: Alignment?
    public init(_ size: Size = .flexible(), spacing: CGFloat? = nil, alignment: Alignment? = nil) {
        self.size = size; self.spacing = spacing; self.alignment = alignment
    }
}

/// Cells in rows of the given columns, filled left to right.
public struct LazyVGrid<Content: View>: View, PrimitiveView {
    public typealias Body = Never
    let columns: [GridItem], alignment: HorizontalAlignment, spacing: CGFloat?, content: Content
    public init(
        columns: [GridItem], alignment: HorizontalAlignment = .center, spacing: CGFloat? = nil,
        pinnedViews: PinnedScrollableViews = .init(), @ViewBuilder content: () -> Content
    ) {
        self.columns = columns; self.alignment = alignment; self.spacing = spacing; self.content = content()
    }
    func resolve(_ context: ResolveContext) -> [Element] {
        var inner = context
        inner.stackAxis = nil
        return [GridElement(columns: columns, rowSpacing: spacing, cells: resolveView(content, inner), transposed: false)]
    }
}

/// Cells in columns of the given rows, filled top to bottom.
public struct LazyHGrid<Content: View>: View, PrimitiveView {
    public typealias Body = Never
    let rows: [GridItem], spacing: CGFloat?, content: Content
    public init(
        rows: [GridItem], alignment: VerticalAlignment = .center, spacing: CGFloat? = nil,
        pinnedViews: PinnedScrollableViews = .init(), @ViewBuilder content: () -> Content
    ) {
        self.rows = rows; self.spacing = spacing; self.content = content()
    }
    func resolve(_ context: ResolveContext) -> [Element] {
        var inner = context
        inner.stackAxis = nil
        return [GridElement(columns: rows, rowSpacing: spacing, cells: resolveView(content, inner), transposed: true)]
    }
}

final class GridElement: Element {
    let columns: [GridItem]
    let rowSpacing: CGFloat
    let cells: [Element]
    let transposed: Bool
    init(columns: [GridItem], rowSpacing: CGFloat?, cells: [Element], transposed: Bool) {
        self.columns = columns; self.rowSpacing = rowSpacing ?? 8; self.cells = cells; self.transposed = transposed
    }
    override var children: [Element] { cells }

    private func main(_ s: CGSize) -> CGFloat { transposed ? s.height : s.width }
    private func cross(_ s: CGSize) -> CGFloat { transposed ? s.width : s.height }
    private func proposal(main: CGFloat, cross: CGFloat?) -> ProposedViewSize {
        transposed ? ProposedViewSize(width: cross, height: main) : ProposedViewSize(width: main, height: cross)
    }

    /// Widths of the columns across `width`: fixed first, then adaptive and flexible shares.
    func tracks(across width: CGFloat) -> [(CGFloat, CGFloat)] {
        var tracks: [(size: CGFloat, spacing: CGFloat)] = []
        var flexible: [(index: Int, minimum: CGFloat, maximum: CGFloat)] = []
        var used: CGFloat = 0
        for item in columns {
            let spacing = item.spacing ?? 8
            switch item.size {
            case .fixed(let size):
                tracks.append((size, spacing)); used += size
            case let .flexible(minimum, maximum):
                flexible.append((tracks.count, minimum, maximum)); tracks.append((0, spacing))
            case let .adaptive(minimum, maximum):
                // As many columns of at least `minimum` as the width leaves room for.
                let room = max(0, width - used - CGFloat(tracks.count) * spacing)
                let count = max(1, Int((room + spacing) / (minimum + spacing)))
                for _ in 0..<count {
                    flexible.append((tracks.count, minimum, maximum)); tracks.append((0, spacing))
                }
            }
        }
        let gaps = tracks.dropLast().reduce(0) { $0 + $1.spacing }
        var remaining = max(0, width - used - gaps)
        var left = flexible.count
        for entry in flexible.sorted(by: { $0.maximum < $1.maximum }) {
            let share = min(entry.maximum, max(entry.minimum, remaining / CGFloat(left)))
            tracks[entry.index].size = share
            remaining -= share
            left -= 1
        }
        return tracks.map { ($0.size, $0.spacing) }
    }

    private func rows(across width: CGFloat) -> (tracks: [(CGFloat, CGFloat)], heights: [CGFloat]) {
        let tracks = self.tracks(across: width)
        let perRow = max(1, tracks.count)
        var heights: [CGFloat] = []
        for start in stride(from: 0, to: cells.count, by: perRow) {
            var height: CGFloat = 0
            for (offset, cell) in cells[start..<min(cells.count, start + perRow)].enumerated() {
                height = max(height, cross(cell.size(proposal(main: tracks[offset].0, cross: nil))))
            }
            heights.append(height)
        }
        return (tracks, heights)
    }

    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        let offered = (transposed ? proposal.height : proposal.width) ?? 320
        let (tracks, heights) = rows(across: offered.isFinite ? offered : 320)
        let usedMain = tracks.reduce(0) { $0 + $1.0 } + tracks.dropLast().reduce(0) { $0 + $1.1 }
        let mainLength = offered.isFinite ? max(offered, usedMain) : usedMain
        let crossLength = heights.reduce(0, +) + CGFloat(max(0, heights.count - 1)) * rowSpacing
        return transposed ? CGSize(width: crossLength, height: mainLength) : CGSize(width: mainLength, height: crossLength)
    }

    override func place(in rect: CGRect) {
        frame = rect
        let (tracks, heights) = rows(across: main(rect.size))
        let usedMain = tracks.reduce(0) { $0 + $1.0 } + tracks.dropLast().reduce(0) { $0 + $1.1 }
        let startMain = (main(rect.size) - usedMain) / 2
        var crossPosition: CGFloat = 0
        let perRow = max(1, tracks.count)
        for (row, height) in heights.enumerated() {
            var mainPosition = startMain
            for column in 0..<perRow {
                let index = row * perRow + column
                guard index < cells.count else { break }
                let cell = cells[index]
                let cellArea =
                    transposed
                    ? CGRect(x: rect.minX + crossPosition, y: rect.minY + mainPosition, width: height, height: tracks[column].0)
                    : CGRect(x: rect.minX + mainPosition, y: rect.minY + crossPosition, width: tracks[column].0, height: height)
                let s = cell.size(ProposedViewSize(cellArea.size))
                cell.place(
                    in: Alignment.center.place(
                        CGSize(width: min(s.width, cellArea.width), height: min(s.height, cellArea.height)), in: cellArea))
                mainPosition += tracks[column].0 + tracks[column].1
            }
            crossPosition += height + rowSpacing
        }
    }
}

/// A two-dimensional layout whose columns line up across `GridRow`s.
public struct Grid<Content: View>: View, PrimitiveView {
    public typealias Body = Never
    let horizontalSpacing: CGFloat?, verticalSpacing: CGFloat?, content: Content
    public init(
        alignment: Alignment = .center, horizontalSpacing: CGFloat? = nil, verticalSpacing: CGFloat? = nil,
        @ViewBuilder content: () -> Content
    ) {
        self.horizontalSpacing = horizontalSpacing; self.verticalSpacing = verticalSpacing; self.content = content()
    }
    func resolve(_ context: ResolveContext) -> [Element] {
        var inner = context
        inner.stackAxis = .vertical
        let rows = resolveView(content, inner).map { row -> [Element] in
            (row as? GridRowElement)?.cells ?? [row]
        }
        let columnCount = rows.map(\.count).max() ?? 0
        let columns = Array(repeating: GridItem(.flexible(), spacing: horizontalSpacing), count: max(1, columnCount))
        let cells = rows.flatMap { $0 + Array(repeating: EmptyElement(), count: max(0, columnCount - $0.count)) }
        return [GridElement(columns: columns, rowSpacing: verticalSpacing, cells: cells, transposed: false)]
    }
}

public struct GridRow<Content: View>: View, PrimitiveView {
    public typealias Body = Never
    let content: Content
    public init(alignment: VerticalAlignment? = nil, @ViewBuilder content: () -> Content) { self.content = content() }
    func resolve(_ context: ResolveContext) -> [Element] {
        var inner = context
        inner.stackAxis = .horizontal
        return [GridRowElement(cells: resolveView(content, inner))]
    }
}

final class GridRowElement: Element {
    let cells: [Element]
    init(cells: [Element]) { self.cells = cells }
    override var children: [Element] { cells }
}

extension View {
    public func gridCellColumns(_ count: Int) -> some View { self }
    public func gridColumnAlignment(_ alignment: HorizontalAlignment) -> some View { self }
    public func gridCellAnchor(_ anchor: UnitPoint) -> some View { self }
}
