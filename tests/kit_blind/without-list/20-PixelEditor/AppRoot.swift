import SwiftUI

struct AppRoot: View {
    @AppStorage("pixel.grid") private var savedGrid: Data = Data()

    @State private var grid = PixelGrid()
    @State private var history: [PixelGrid] = []
    @State private var tool: Tool = .pencil
    @State private var currentColor: Color = .black
    @State private var showGrid = true

    private let palette: [Color] = [
        .black, .white, .gray, .red, .orange, .yellow,
        .green, .mint, .teal, .blue, .indigo, .purple,
        .pink, .brown, Color(red: 0.98, green: 0.85, blue: 0.7), Color(red: 0.2, green: 0.3, blue: 0.15)
    ]

    var body: some View {
        HStack(spacing: 0) {
            sidebar
                .frame(width: 180)
                .padding()
                .background(.background.secondary)

            Divider()

            GeometryReader { geo in
                let side = min(geo.size.width, geo.size.height) - 40
                let cell = side / CGFloat(PixelGrid.size)

                ZStack {
                    CheckerboardBackground(cell: cell / 2)
                    Canvas { context, _ in
                        for y in 0..<PixelGrid.size {
                            for x in 0..<PixelGrid.size {
                                let rect = CGRect(x: CGFloat(x) * cell, y: CGFloat(y) * cell, width: cell, height: cell)
                                context.fill(Path(rect), with: .color(grid[x, y].color))
                                if showGrid {
                                    context.stroke(Path(rect), with: .color(.gray.opacity(0.3)), lineWidth: 0.5)
                                }
                            }
                        }
                    }
                }
                .frame(width: side, height: side)
                .border(Color.secondary.opacity(0.6))
                .gesture(
                    DragGesture(minimumDistance: 0)
                        .onChanged { value in
                            if value.translation == .zero {
                                history.append(grid)
                                if history.count > 50 { history.removeFirst() }
                            }
                            apply(at: value.location, cell: cell)
                        }
                        .onEnded { _ in save() }
                )
                .frame(maxWidth: .infinity, maxHeight: .infinity)
            }
        }
        .frame(minWidth: 680, minHeight: 520)
        .onAppear(perform: load)
    }

    private var sidebar: some View {
        VStack(alignment: .leading, spacing: 16) {
            Text("Tools").font(.headline)
            Picker("Tool", selection: $tool) {
                ForEach(Tool.allCases) { t in
                    Image(systemName: t.icon)
                        .help(t.rawValue.capitalized)
                        .tag(t)
                }
            }
            .pickerStyle(.segmented)
            .labelsHidden()

            Text("Palette").font(.headline)
            LazyVGrid(columns: Array(repeating: GridItem(.fixed(30), spacing: 6), count: 4), spacing: 6) {
                ForEach(palette.indices, id: \.self) { index in
                    let swatch = palette[index]
                    RoundedRectangle(cornerRadius: 4)
                        .fill(swatch)
                        .frame(width: 30, height: 30)
                        .overlay(
                            RoundedRectangle(cornerRadius: 4)
                                .stroke(Color.primary.opacity(0.3), lineWidth: 1)
                        )
                        .onTapGesture {
                            currentColor = swatch
                            if tool == .eraser || tool == .picker { tool = .pencil }
                        }
                }
            }

            ColorPicker("Custom", selection: $currentColor, supportsOpacity: false)

            Toggle("Show grid", isOn: $showGrid)

            Spacer()

            HStack {
                Button {
                    if let last = history.popLast() {
                        grid = last
                        save()
                    }
                } label: {
                    Label("Undo", systemImage: "arrow.uturn.backward")
                }
                .keyboardShortcut("z")
                .disabled(history.isEmpty)

                Button(role: .destructive) {
                    history.append(grid)
                    grid = PixelGrid()
                    save()
                } label: {
                    Label("Clear", systemImage: "trash")
                }
            }
            .labelStyle(.iconOnly)
        }
    }

    private func apply(at location: CGPoint, cell: CGFloat) {
        let x = Int(location.x / cell)
        let y = Int(location.y / cell)
        guard (0..<PixelGrid.size).contains(x), (0..<PixelGrid.size).contains(y) else { return }

        switch tool {
        case .pencil:
            grid[x, y] = RGBA(currentColor)
        case .eraser:
            grid[x, y] = .clear
        case .fill:
            grid.floodFill(x: x, y: y, with: RGBA(currentColor))
        case .picker:
            let picked = grid[x, y]
            if picked.a > 0 {
                currentColor = picked.color
                tool = .pencil
            }
        }
    }

    private func save() {
        savedGrid = (try? JSONEncoder().encode(grid)) ?? Data()
    }

    private func load() {
        if let decoded = try? JSONDecoder().decode(PixelGrid.self, from: savedGrid) {
            grid = decoded
        }
    }
}

struct CheckerboardBackground: View {
    let cell: CGFloat

    var body: some View {
        Canvas { context, size in
            let cols = Int(ceil(size.width / cell))
            let rows = Int(ceil(size.height / cell))
            for row in 0..<rows {
                for col in 0..<cols where (row + col).isMultiple(of: 2) {
                    let rect = CGRect(x: CGFloat(col) * cell, y: CGFloat(row) * cell, width: cell, height: cell)
                    context.fill(Path(rect), with: .color(.gray.opacity(0.15)))
                }
            }
        }
    }
}
