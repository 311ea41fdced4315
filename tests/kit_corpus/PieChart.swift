import SwiftUI

struct Slice: Identifiable {
    let id = UUID()
    let label: String
    let value: Double
    let color: Color
}

struct PieSliceShape: Shape {
    var startAngle: Angle
    var endAngle: Angle
    func path(in rect: CGRect) -> Path {
        var path = Path()
        let center = CGPoint(x: rect.midX, y: rect.midY)
        path.move(to: center)
        path.addArc(center: center, radius: min(rect.width, rect.height) / 2, startAngle: startAngle, endAngle: endAngle, clockwise: false)
        path.closeSubpath()
        return path
    }
}

struct AppRoot: View {
    let slices = [
        Slice(label: "Rent", value: 1200, color: .blue),
        Slice(label: "Food", value: 450, color: .green),
        Slice(label: "Transport", value: 200, color: .orange),
        Slice(label: "Fun", value: 300, color: .pink),
    ]
    var total: Double { slices.reduce(0) { $0 + $1.value } }

    var body: some View {
        HStack(spacing: 40) {
            ZStack {
                ForEach(Array(slices.enumerated()), id: \.element.id) { index, slice in
                    PieSliceShape(startAngle: angle(upTo: index), endAngle: angle(upTo: index + 1))
                        .fill(slice.color)
                }
                Circle().fill(Color(.white)).frame(width: 100, height: 100)
                Text("$\(Int(total))").font(.title2.bold())
            }
            .frame(width: 250, height: 250)
            VStack(alignment: .leading, spacing: 10) {
                ForEach(slices) { slice in
                    HStack {
                        RoundedRectangle(cornerRadius: 3).fill(slice.color).frame(width: 16, height: 16)
                        Text(slice.label)
                        Spacer()
                        Text("\(Int(slice.value / total * 100))%").foregroundStyle(.secondary)
                    }
                }
            }
            .frame(width: 180)
        }
        .padding()
    }

    func angle(upTo index: Int) -> Angle {
        .degrees(slices.prefix(index).reduce(0) { $0 + $1.value } / total * 360 - 90)
    }
}
