import SwiftUI

struct BarChartView: View {
    let data: [DaySales]
    var barColor: Color = .accentColor

    var body: some View {
        GeometryReader { geo in
            let maxValue = max(data.map(\.revenue).max() ?? 1, 1)
            let labelHeight: CGFloat = 18
            let chartHeight = geo.size.height - labelHeight
            let slot = geo.size.width / CGFloat(max(data.count, 1))

            ZStack(alignment: .bottomLeading) {
                ForEach(0..<4) { i in
                    let y = chartHeight * CGFloat(i) / 4
                    Path { p in
                        p.move(to: CGPoint(x: 0, y: y))
                        p.addLine(to: CGPoint(x: geo.size.width, y: y))
                    }
                    .stroke(Color.secondary.opacity(0.2), style: StrokeStyle(lineWidth: 1, dash: [4, 4]))
                }

                HStack(alignment: .bottom, spacing: 0) {
                    ForEach(data) { day in
                        VStack(spacing: 4) {
                            Spacer(minLength: 0)
                            Text("\(Int(day.revenue))")
                                .font(.caption2)
                                .foregroundStyle(.secondary)
                            RoundedRectangle(cornerRadius: 4)
                                .fill(barColor.gradient)
                                .frame(width: slot * 0.6, height: max(2, (chartHeight - 20) * CGFloat(day.revenue / maxValue)))
                            Text(day.label)
                                .font(.caption)
                                .frame(height: labelHeight)
                        }
                        .frame(width: slot)
                    }
                }
            }
        }
    }
}

struct LineChartView: View {
    let values: [Double]
    var lineColor: Color = .blue

    var body: some View {
        Canvas { context, size in
            guard values.count > 1,
                  let minV = values.min(),
                  let maxV = values.max() else { return }
            let range = max(maxV - minV, 1)
            let stepX = size.width / CGFloat(values.count - 1)

            func point(_ i: Int) -> CGPoint {
                let x = CGFloat(i) * stepX
                let y = size.height - CGFloat((values[i] - minV) / range) * (size.height - 10) - 5
                return CGPoint(x: x, y: y)
            }

            var line = Path()
            line.move(to: point(0))
            for i in 1..<values.count {
                line.addLine(to: point(i))
            }

            var area = line
            area.addLine(to: CGPoint(x: size.width, y: size.height))
            area.addLine(to: CGPoint(x: 0, y: size.height))
            area.closeSubpath()

            context.fill(area, with: .linearGradient(
                Gradient(colors: [lineColor.opacity(0.35), lineColor.opacity(0.02)]),
                startPoint: .zero,
                endPoint: CGPoint(x: 0, y: size.height)))
            context.stroke(line, with: .color(lineColor), style: StrokeStyle(lineWidth: 2, lineCap: .round, lineJoin: .round))

            let last = point(values.count - 1)
            context.fill(Path(ellipseIn: CGRect(x: last.x - 4, y: last.y - 4, width: 8, height: 8)), with: .color(lineColor))
        }
    }
}

struct DonutSlice: Shape {
    var startAngle: Angle
    var endAngle: Angle
    var thickness: CGFloat

    func path(in rect: CGRect) -> Path {
        let radius = min(rect.width, rect.height) / 2
        let center = CGPoint(x: rect.midX, y: rect.midY)
        var p = Path()
        p.addArc(center: center, radius: radius, startAngle: startAngle, endAngle: endAngle, clockwise: false)
        p.addArc(center: center, radius: radius - thickness, startAngle: endAngle, endAngle: startAngle, clockwise: true)
        p.closeSubpath()
        return p
    }
}

struct DonutChartView: View {
    let slices: [ProductShare]

    var body: some View {
        let total = slices.reduce(0) { $0 + $1.amount }
        HStack(spacing: 20) {
            ZStack {
                ForEach(Array(slices.enumerated()), id: \.element.id) { index, slice in
                    let start = slices.prefix(index).reduce(0) { $0 + $1.amount } / total
                    let end = start + slice.amount / total
                    DonutSlice(startAngle: .degrees(start * 360 - 90),
                               endAngle: .degrees(end * 360 - 90),
                               thickness: 28)
                        .fill(slice.color)
                }
                VStack {
                    Text(total, format: .currency(code: "USD").precision(.fractionLength(0)))
                        .font(.headline)
                    Text("total")
                        .font(.caption)
                        .foregroundStyle(.secondary)
                }
            }
            .aspectRatio(1, contentMode: .fit)

            VStack(alignment: .leading, spacing: 6) {
                ForEach(slices) { slice in
                    HStack(spacing: 6) {
                        RoundedRectangle(cornerRadius: 2)
                            .fill(slice.color)
                            .frame(width: 10, height: 10)
                        Text(slice.name)
                            .font(.caption)
                        Spacer()
                        Text("\(Int((slice.amount / total * 100).rounded()))%")
                            .font(.caption.monospacedDigit())
                            .foregroundStyle(.secondary)
                    }
                }
            }
            .frame(maxWidth: 180)
        }
    }
}
