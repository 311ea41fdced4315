import SwiftUI

struct AppRoot: View {
    @State private var canvas = PixelCanvas()
    @State private var tool: Tool = .pencil
    @State private var currentColor = PaletteColor.defaults[0]
    @State private var showGrid = true
    @State private var isDrawing = false
    @State private var confirmClear = false

    var body: some View {
        HStack(spacing: 0) {
            sidebar
                .frame(width: 180)
                .padding()
                .background(Color(nsColor: .controlBackgroundColor))

            Divider()

            GeometryReader { geo in
                let side = max(min(geo.size.width, geo.size.height) - 40, 64)
                let cell = side / CGFloat(canvas.size)

                Canvas { context, size in
                    // checkerboard for transparency
                    for y in 0..<canvas.size {
                        for x in 0..<canvas.size {
                            let rect = CGRect(x: CGFloat(x) * cell, y: CGFloat(y) * cell, width: cell, height: cell)
                            if let p = canvas.pixel(x: x, y: y) {
                                context.fill(Path(rect), with: .color(p.color))
                            } else {
                                let light = (x + y) % 2 == 0
                                context.fill(Path(rect), with: .color(light ? Color(white: 0.95) : Color(white: 0.85)))
                            }
                        }
                    }
                    if showGrid {
                        var grid = Path()
                        for i in 0...canvas.size {
                            let pos = CGFloat(i) * cell
                            grid.move(to: CGPoint(x: pos, y: 0))
                            grid.addLine(to: CGPoint(x: pos, y: side))
                            grid.move(to: CGPoint(x: 0, y: pos))
                            grid.addLine(to: CGPoint(x: side, y: pos))
                        }
                        context.stroke(grid, with: .color(.black.opacity(0.15)), lineWidth: 0.5)
                    }
                }
                .frame(width: side, height: side)
                .border(Color.secondary)
                .gesture(
                    DragGesture(minimumDistance: 0)
                        .onChanged { value in
                            if !isDrawing {
                                isDrawing = true
                                canvas.beginStroke()
                            }
                            apply(at: value.location, cell: cell)
                        }
                        .onEnded { _ in
                            isDrawing = false
                            canvas.save()
                        }
                )
                .position(x: geo.size.width / 2, y: geo.size.height / 2)
            }
        }
        .alert("Clear the canvas?", isPresented: $confirmClear) {
            Button("Clear", role: .destructive) { canvas.clear() }
            Button("Cancel", role: .cancel) {}
        }
    }

    private var sidebar: some View {
        VStack(alignment: .leading, spacing: 16) {
            Text("Tools").font(.headline)
            Picker("Tool", selection: $tool) {
                ForEach(Tool.allCases) { t in
                    Image(systemName: t.icon).tag(t)
                }
            }
            .pickerStyle(.segmented)
            .labelsHidden()

            Text("Palette").font(.headline)
            LazyVGrid(columns: Array(repeating: GridItem(.fixed(30), spacing: 6), count: 4), spacing: 6) {
                ForEach(PaletteColor.defaults, id: \.self) { p in
                    RoundedRectangle(cornerRadius: 4)
                        .fill(p.color)
                        .frame(width: 30, height: 30)
                        .overlay(
                            RoundedRectangle(cornerRadius: 4)
                                .strokeBorder(p == currentColor ? Color.accentColor : Color.secondary.opacity(0.4),
                                              lineWidth: p == currentColor ? 3 : 1)
                        )
                        .onTapGesture {
                            currentColor = p
                            if tool == .eraser || tool == .picker { tool = .pencil }
                        }
                }
            }

            HStack {
                Text("Current")
                RoundedRectangle(cornerRadius: 4)
                    .fill(currentColor.color)
                    .frame(width: 40, height: 20)
                    .overlay(RoundedRectangle(cornerRadius: 4).stroke(Color.secondary))
            }

            Divider()

            Picker("Size", selection: Binding(get: { canvas.size }, set: { canvas.resize(to: $0) })) {
                Text("8 × 8").tag(8)
                Text("16 × 16").tag(16)
                Text("32 × 32").tag(32)
            }

            Toggle("Show grid", isOn: $showGrid)

            Spacer()

            HStack {
                Button {
                    canvas.undo()
                } label: {
                    Label("Undo", systemImage: "arrow.uturn.backward")
                }
                .keyboardShortcut("z", modifiers: .command)
                .disabled(!canvas.canUndo)

                Button(role: .destructive) {
                    confirmClear = true
                } label: {
                    Image(systemName: "trash")
                }
            }
        }
    }

    private func apply(at location: CGPoint, cell: CGFloat) {
        guard cell > 0 else { return }
        let x = Int(location.x / cell)
        let y = Int(location.y / cell)
        switch tool {
        case .pencil:
            canvas.set(x: x, y: y, to: currentColor)
        case .eraser:
            canvas.set(x: x, y: y, to: nil)
        case .fill:
            canvas.floodFill(x: x, y: y, with: currentColor)
        case .picker:
            if let p = canvas.pixel(x: x, y: y) {
                currentColor = p
            }
        }
    }
}
