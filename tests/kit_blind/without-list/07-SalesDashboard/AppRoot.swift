import SwiftUI

struct AppRoot: View {
    @State private var revenue = SampleData.revenue()
    @State private var visitors = SampleData.visitors()
    @State private var range: DashboardRange = .half

    private var visibleRevenue: [MonthlyRevenue] {
        Array(revenue.suffix(range.months))
    }

    private var totalRevenue: Double {
        visibleRevenue.reduce(0) { $0 + $1.amount }
    }

    var body: some View {
        ScrollView {
            VStack(alignment: .leading, spacing: 20) {
                HStack {
                    Text("Dashboard")
                        .font(.largeTitle.bold())
                    Spacer()
                    Picker("Range", selection: $range) {
                        ForEach(DashboardRange.allCases) { Text($0.rawValue).tag($0) }
                    }
                    .pickerStyle(.segmented)
                    .frame(width: 280)
                    Button {
                        withAnimation(.easeInOut(duration: 0.6)) {
                            revenue = SampleData.revenue()
                            visitors = SampleData.visitors()
                        }
                    } label: {
                        Image(systemName: "arrow.clockwise")
                    }
                    .help("Refresh data")
                }

                HStack(spacing: 16) {
                    StatCard(title: "Revenue", value: totalRevenue.formatted(.currency(code: "USD").precision(.fractionLength(0))), icon: "dollarsign.circle.fill", tint: .green)
                    StatCard(title: "Avg / Month", value: (totalRevenue / Double(max(visibleRevenue.count, 1))).formatted(.currency(code: "USD").precision(.fractionLength(0))), icon: "chart.bar.fill", tint: .blue)
                    StatCard(title: "Visitors (30d)", value: visitors.reduce(0) { $0 + $1.count }.formatted(), icon: "person.2.fill", tint: .orange)
                    StatCard(title: "Peak Day", value: "\(visitors.map(\.count).max() ?? 0)", icon: "flame.fill", tint: .red)
                }

                GroupBox("Monthly Revenue") {
                    BarChart(data: visibleRevenue)
                        .frame(height: 220)
                        .padding(.top, 8)
                }

                GroupBox("Daily Visitors") {
                    LineChart(values: visitors.map { Double($0.count) })
                        .frame(height: 180)
                        .padding(.top, 8)
                }
            }
            .padding(24)
        }
        .frame(minWidth: 760, minHeight: 640)
    }
}

struct StatCard: View {
    let title: String
    let value: String
    let icon: String
    let tint: Color

    var body: some View {
        VStack(alignment: .leading, spacing: 8) {
            Label(title, systemImage: icon)
                .font(.subheadline)
                .foregroundStyle(tint)
            Text(value)
                .font(.title2.weight(.semibold))
                .monospacedDigit()
                .lineLimit(1)
                .minimumScaleFactor(0.6)
        }
        .frame(maxWidth: .infinity, alignment: .leading)
        .padding()
        .background(tint.opacity(0.1), in: RoundedRectangle(cornerRadius: 12, style: .continuous))
    }
}

struct BarChart: View {
    let data: [MonthlyRevenue]
    @State private var hovered: UUID?

    private var maxValue: Double { data.map(\.amount).max() ?? 1 }

    var body: some View {
        GeometryReader { geo in
            HStack(alignment: .bottom, spacing: 10) {
                ForEach(data) { item in
                    VStack(spacing: 6) {
                        if hovered == item.id {
                            Text(item.amount, format: .currency(code: "USD").precision(.fractionLength(0)))
                                .font(.caption2.bold())
                                .transition(.opacity)
                        }
                        RoundedRectangle(cornerRadius: 6)
                            .fill(
                                LinearGradient(colors: [.blue, .cyan], startPoint: .bottom, endPoint: .top)
                            )
                            .opacity(hovered == nil || hovered == item.id ? 1 : 0.5)
                            .frame(height: max(4, (geo.size.height - 40) * item.amount / maxValue))
                        Text(item.month)
                            .font(.caption)
                            .foregroundStyle(.secondary)
                    }
                    .frame(maxWidth: .infinity)
                    .onHover { inside in
                        withAnimation(.easeOut(duration: 0.15)) {
                            hovered = inside ? item.id : nil
                        }
                    }
                }
            }
            .frame(maxHeight: .infinity, alignment: .bottom)
        }
    }
}

struct LineChart: View {
    let values: [Double]

    private var minValue: Double { values.min() ?? 0 }
    private var maxValue: Double { values.max() ?? 1 }

    private func point(at index: Int, in size: CGSize) -> CGPoint {
        let stepX = size.width / CGFloat(max(values.count - 1, 1))
        let range = max(maxValue - minValue, 1)
        let y = size.height - CGFloat((values[index] - minValue) / range) * size.height
        return CGPoint(x: CGFloat(index) * stepX, y: y)
    }

    var body: some View {
        GeometryReader { geo in
            ZStack {
                ForEach(0..<5) { i in
                    Path { path in
                        let y = geo.size.height * CGFloat(i) / 4
                        path.move(to: CGPoint(x: 0, y: y))
                        path.addLine(to: CGPoint(x: geo.size.width, y: y))
                    }
                    .stroke(Color.secondary.opacity(0.2), style: StrokeStyle(lineWidth: 1, dash: [4]))
                }

                Path { path in
                    guard !values.isEmpty else { return }
                    path.move(to: CGPoint(x: 0, y: geo.size.height))
                    for i in values.indices {
                        path.addLine(to: point(at: i, in: geo.size))
                    }
                    path.addLine(to: CGPoint(x: geo.size.width, y: geo.size.height))
                    path.closeSubpath()
                }
                .fill(LinearGradient(colors: [.orange.opacity(0.35), .orange.opacity(0.02)], startPoint: .top, endPoint: .bottom))

                Path { path in
                    guard !values.isEmpty else { return }
                    path.move(to: point(at: 0, in: geo.size))
                    for i in values.indices.dropFirst() {
                        path.addLine(to: point(at: i, in: geo.size))
                    }
                }
                .stroke(Color.orange, style: StrokeStyle(lineWidth: 2.5, lineCap: .round, lineJoin: .round))

                ForEach(values.indices, id: \.self) { i in
                    Circle()
                        .fill(Color.orange)
                        .frame(width: 5, height: 5)
                        .position(point(at: i, in: geo.size))
                }
            }
        }
    }
}
