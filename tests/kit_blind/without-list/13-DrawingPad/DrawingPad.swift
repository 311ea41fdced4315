import SwiftUI

struct Stroke: Identifiable {
    let id = UUID()
    var points: [CGPoint]
    var color: Color
    var width: CGFloat
    var isEraser: Bool = false
}

struct AppRoot: View {
    @State private var strokes: [Stroke] = []
    @State private var redoStack: [Stroke] = []
    @State private var currentStroke: Stroke?
    @State private var color: Color = .black
    @State private var brushSize: CGFloat = 6
    @State private var isErasing = false
    @State private var background: Color = .white

    private let swatches: [Color] = [.black, .red, .orange, .yellow, .green, .blue, .purple, .brown]

    var body: some View {
        VStack(spacing: 0) {
            toolbar
                .padding(10)
                .background(.bar)

            Divider()

            canvas
        }
        .frame(minWidth: 700, minHeight: 520)
    }

    private var toolbar: some View {
        HStack(spacing: 14) {
            HStack(spacing: 6) {
                ForEach(swatches, id: \.self) { swatch in
                    Circle()
                        .fill(swatch)
                        .frame(width: 22, height: 22)
                        .overlay(
                            Circle().stroke(Color.primary, lineWidth: color == swatch && !isErasing ? 2 : 0)
                                .padding(-3)
                        )
                        .onTapGesture {
                            color = swatch
                            isErasing = false
                        }
                }
                ColorPicker("Custom colour", selection: $color, supportsOpacity: true)
                    .labelsHidden()
            }

            Divider().frame(height: 24)

            HStack {
                Image(systemName: "scribble")
                Slider(value: $brushSize, in: 1...40)
                    .frame(width: 120)
                Text("\(Int(brushSize)) pt")
                    .monospacedDigit()
                    .frame(width: 40, alignment: .leading)
            }

            Toggle(isOn: $isErasing) {
                Label("Eraser", systemImage: "eraser")
            }
            .toggleStyle(.button)

            Spacer()

            ControlGroup {
                Button {
                    undo()
                } label: {
                    Label("Undo", systemImage: "arrow.uturn.backward")
                }
                .keyboardShortcut("z", modifiers: .command)
                .disabled(strokes.isEmpty)

                Button {
                    redo()
                } label: {
                    Label("Redo", systemImage: "arrow.uturn.forward")
                }
                .keyboardShortcut("z", modifiers: [.command, .shift])
                .disabled(redoStack.isEmpty)
            }
            .frame(width: 90)

            Button(role: .destructive) {
                withAnimation(.easeOut(duration: 0.2)) {
                    strokes.removeAll()
                    redoStack.removeAll()
                }
            } label: {
                Label("Clear", systemImage: "trash")
            }
        }
    }

    private var canvas: some View {
        Canvas { context, size in
            context.fill(Path(CGRect(origin: .zero, size: size)), with: .color(background))
            for stroke in strokes {
                draw(stroke, in: &context)
            }
            if let currentStroke {
                draw(currentStroke, in: &context)
            }
        }
        .gesture(
            DragGesture(minimumDistance: 0, coordinateSpace: .local)
                .onChanged { value in
                    if currentStroke == nil {
                        currentStroke = Stroke(points: [value.location],
                                               color: isErasing ? background : color,
                                               width: isErasing ? brushSize * 2 : brushSize,
                                               isEraser: isErasing)
                    } else {
                        currentStroke?.points.append(value.location)
                    }
                }
                .onEnded { _ in
                    if let stroke = currentStroke {
                        strokes.append(stroke)
                        redoStack.removeAll()
                    }
                    currentStroke = nil
                }
        )
    }

    private func draw(_ stroke: Stroke, in context: inout GraphicsContext) {
        guard let first = stroke.points.first else { return }
        var path = Path()
        if stroke.points.count == 1 {
            path.addEllipse(in: CGRect(x: first.x - stroke.width / 2,
                                       y: first.y - stroke.width / 2,
                                       width: stroke.width,
                                       height: stroke.width))
            context.fill(path, with: .color(stroke.color))
            return
        }
        path.move(to: first)
        for i in 1..<stroke.points.count {
            let mid = CGPoint(x: (stroke.points[i - 1].x + stroke.points[i].x) / 2,
                              y: (stroke.points[i - 1].y + stroke.points[i].y) / 2)
            path.addQuadCurve(to: mid, control: stroke.points[i - 1])
        }
        if let last = stroke.points.last {
            path.addLine(to: last)
        }
        context.stroke(path,
                       with: .color(stroke.color),
                       style: StrokeStyle(lineWidth: stroke.width, lineCap: .round, lineJoin: .round))
    }

    private func undo() {
        guard let last = strokes.popLast() else { return }
        redoStack.append(last)
    }

    private func redo() {
        guard let stroke = redoStack.popLast() else { return }
        strokes.append(stroke)
    }
}
