import SwiftUI

struct Stroke: Identifiable {
    let id = UUID()
    var points: [CGPoint]
    var color: Color
    var width: CGFloat
}

struct AppRoot: View {
    @State private var strokes: [Stroke] = []
    @State private var current: Stroke?
    @State private var selectedColor: Color = .black
    @State private var lineWidth: CGFloat = 4

    private let palette: [Color] = [.black, .red, .orange, .green, .blue, .purple]

    var body: some View {
        VStack(spacing: 0) {
            HStack(spacing: 12) {
                ForEach(palette, id: \.self) { color in
                    Circle()
                        .fill(color)
                        .frame(width: 26, height: 26)
                        .overlay(
                            Circle().stroke(Color.primary, lineWidth: selectedColor == color ? 3 : 0)
                                .padding(-4)
                        )
                        .onTapGesture { selectedColor = color }
                }
                Divider().frame(height: 24)
                Slider(value: $lineWidth, in: 1...20)
                    .frame(width: 120)
                Spacer()
                Button("Undo") {
                    _ = strokes.popLast()
                }
                .disabled(strokes.isEmpty)
                Button("Clear", role: .destructive) {
                    strokes.removeAll()
                }
            }
            .padding()

            Divider()

            Canvas { context, size in
                for stroke in strokes + (current.map { [$0] } ?? []) {
                    var path = Path()
                    path.addLines(stroke.points)
                    context.stroke(path, with: .color(stroke.color),
                                   style: StrokeStyle(lineWidth: stroke.width, lineCap: .round, lineJoin: .round))
                }
            }
            .background(Color.white)
            .gesture(
                DragGesture(minimumDistance: 0)
                    .onChanged { value in
                        if current == nil {
                            current = Stroke(points: [value.location], color: selectedColor, width: lineWidth)
                        } else {
                            current?.points.append(value.location)
                        }
                    }
                    .onEnded { _ in
                        if let current { strokes.append(current) }
                        current = nil
                    }
            )
        }
    }
}
