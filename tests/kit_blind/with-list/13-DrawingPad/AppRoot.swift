import SwiftUI

struct Stroke: Identifiable {
    let id = UUID()
    var points: [CGPoint]
    var color: Color
    var width: CGFloat
    var isEraser: Bool
}

struct AppRoot: View {
    @State private var strokes: [Stroke] = []
    @State private var redoStack: [Stroke] = []
    @State private var currentStroke: Stroke?
    @State private var selectedColor: Color = .black
    @State private var brushSize: Double = 6
    @State private var eraser = false
    @State private var showGrid = false
    @State private var confirmClear = false

    private let palette: [Color] = [.black, .gray, .red, .orange, .yellow, .green, .mint, .blue, .indigo, .purple, .pink, .brown]

    var body: some View {
        VStack(spacing: 0) {
            toolbar
            Divider()
            canvas
        }
        .confirmationDialog("Clear the whole drawing?", isPresented: $confirmClear) {
            Button("Clear", role: .destructive) {
                strokes.removeAll()
                redoStack.removeAll()
            }
        }
    }

    private var toolbar: some View {
        HStack(spacing: 14) {
            HStack(spacing: 6) {
                ForEach(palette, id: \.self) { color in
                    Circle()
                        .fill(color)
                        .frame(width: 22, height: 22)
                        .overlay(
                            Circle()
                                .stroke(Color.accentColor, lineWidth: !eraser && selectedColor == color ? 3 : 0)
                                .padding(-3)
                        )
                        .onTapGesture {
                            selectedColor = color
                            eraser = false
                        }
                }
            }

            Divider().frame(height: 24)

            Image(systemName: "scribble")
            Slider(value: $brushSize, in: 1...40)
                .frame(width: 120)
            Text("\(Int(brushSize)) px")
                .monospacedDigit()
                .frame(width: 44, alignment: .leading)

            Toggle(isOn: $eraser) {
                Label("Eraser", systemImage: "eraser")
            }
            .toggleStyle(.button)

            Toggle(isOn: $showGrid) {
                Image(systemName: "grid")
            }
            .toggleStyle(.button)
            .help("Show grid")

            Spacer()

            Button {
                if let last = strokes.popLast() { redoStack.append(last) }
            } label: {
                Image(systemName: "arrow.uturn.backward")
            }
            .keyboardShortcut("z", modifiers: .command)
            .disabled(strokes.isEmpty)

            Button {
                if let last = redoStack.popLast() { strokes.append(last) }
            } label: {
                Image(systemName: "arrow.uturn.forward")
            }
            .keyboardShortcut("z", modifiers: [.command, .shift])
            .disabled(redoStack.isEmpty)

            Button(role: .destructive) {
                confirmClear = true
            } label: {
                Image(systemName: "trash")
            }
            .disabled(strokes.isEmpty)
        }
        .padding(10)
        .background(.bar)
    }

    private var canvas: some View {
        Canvas { context, size in
            context.fill(Path(CGRect(origin: .zero, size: size)), with: .color(.white))

            if showGrid {
                var grid = Path()
                stride(from: 0, through: size.width, by: 20).forEach { x in
                    grid.move(to: CGPoint(x: x, y: 0))
                    grid.addLine(to: CGPoint(x: x, y: size.height))
                }
                stride(from: 0, through: size.height, by: 20).forEach { y in
                    grid.move(to: CGPoint(x: 0, y: y))
                    grid.addLine(to: CGPoint(x: size.width, y: y))
                }
                context.stroke(grid, with: .color(.gray.opacity(0.2)), lineWidth: 0.5)
            }

            var all = strokes
            if let currentStroke { all.append(currentStroke) }

            for stroke in all {
                let color: Color = stroke.isEraser ? .white : stroke.color
                if stroke.points.count == 1, let p = stroke.points.first {
                    let r = stroke.width / 2
                    context.fill(Path(ellipseIn: CGRect(x: p.x - r, y: p.y - r, width: stroke.width, height: stroke.width)),
                                 with: .color(color))
                    continue
                }
                var path = Path()
                path.addLines(stroke.points)
                context.stroke(path, with: .color(color),
                               style: StrokeStyle(lineWidth: stroke.width, lineCap: .round, lineJoin: .round))
            }
        }
        .gesture(
            DragGesture(minimumDistance: 0)
                .onChanged { value in
                    if currentStroke == nil {
                        currentStroke = Stroke(points: [value.location], color: selectedColor,
                                               width: eraser ? brushSize * 2 : brushSize, isEraser: eraser)
                    } else {
                        currentStroke?.points.append(value.location)
                    }
                }
                .onEnded { _ in
                    if let currentStroke {
                        strokes.append(currentStroke)
                        redoStack.removeAll()
                    }
                    currentStroke = nil
                }
        )
        .overlay(alignment: .bottomTrailing) {
            Text("\(strokes.count) strokes")
                .font(.caption)
                .foregroundStyle(.secondary)
                .padding(8)
        }
    }
}
