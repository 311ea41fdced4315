import SwiftUI

struct AppRoot: View {
    @State private var period: Period = .thisWeek

    private var weekdays: [DaySales] { SalesData.weekdays(for: period) }
    private var products: [ProductShare] { SalesData.products(for: period) }
    private var weekTotal: Double { weekdays.reduce(0) { $0 + $1.revenue } }
    private var otherWeekTotal: Double {
        SalesData.weekdays(for: period == .thisWeek ? .lastWeek : .thisWeek).reduce(0) { $0 + $1.revenue }
    }

    var body: some View {
        ScrollView {
            VStack(alignment: .leading, spacing: 20) {
                HStack {
                    VStack(alignment: .leading) {
                        Text("Bean There")
                            .font(.largeTitle.bold())
                        Text("Sales overview")
                            .foregroundStyle(.secondary)
                    }
                    Spacer()
                    Picker("Period", selection: $period) {
                        ForEach(Period.allCases) { Text($0.rawValue).tag($0) }
                    }
                    .pickerStyle(.segmented)
                    .frame(width: 220)
                }

                LazyVGrid(columns: [GridItem(.adaptive(minimum: 160), spacing: 16)], spacing: 16) {
                    KPICard(title: "Revenue", value: weekTotal.formatted(.currency(code: "USD").precision(.fractionLength(0))),
                            change: (weekTotal - otherWeekTotal) / otherWeekTotal, icon: "dollarsign.circle.fill", tint: .green)
                    KPICard(title: "Orders", value: "\(Int(weekTotal / 6.4))", change: 0.042, icon: "cart.fill", tint: .blue)
                    KPICard(title: "Avg. ticket", value: "$6.40", change: -0.013, icon: "receipt", tint: .orange)
                    KPICard(title: "New customers", value: "38", change: 0.12, icon: "person.2.fill", tint: .purple)
                }

                HStack(alignment: .top, spacing: 16) {
                    DashboardCard(title: "Revenue by weekday") {
                        BarChartView(data: weekdays, barColor: .brown)
                            .frame(height: 200)
                    }
                    DashboardCard(title: "Sales by product") {
                        DonutChartView(slices: products)
                            .frame(height: 200)
                    }
                }

                DashboardCard(title: "Daily revenue, last 30 days") {
                    LineChartView(values: SalesData.lastThirtyDays, lineColor: .teal)
                        .frame(height: 160)
                }
            }
            .padding(24)
        }
        .background(Color(nsColor: .windowBackgroundColor))
    }
}

struct KPICard: View {
    let title: String
    let value: String
    let change: Double
    let icon: String
    let tint: Color

    var body: some View {
        VStack(alignment: .leading, spacing: 8) {
            HStack {
                Image(systemName: icon)
                    .foregroundStyle(tint)
                Text(title)
                    .font(.subheadline)
                    .foregroundStyle(.secondary)
            }
            Text(value)
                .font(.title.bold())
                .monospacedDigit()
            HStack(spacing: 2) {
                Image(systemName: change >= 0 ? "arrow.up.right" : "arrow.down.right")
                Text(change, format: .percent.precision(.fractionLength(1)))
            }
            .font(.caption.bold())
            .foregroundStyle(change >= 0 ? .green : .red)
        }
        .frame(maxWidth: .infinity, alignment: .leading)
        .padding()
        .background(RoundedRectangle(cornerRadius: 12).fill(Color(nsColor: .controlBackgroundColor)))
        .shadow(color: .black.opacity(0.06), radius: 4, y: 2)
    }
}

struct DashboardCard<Content: View>: View {
    let title: String
    @ViewBuilder let content: Content

    var body: some View {
        VStack(alignment: .leading, spacing: 12) {
            Text(title)
                .font(.headline)
            content
        }
        .padding()
        .frame(maxWidth: .infinity, alignment: .leading)
        .background(RoundedRectangle(cornerRadius: 12).fill(Color(nsColor: .controlBackgroundColor)))
        .shadow(color: .black.opacity(0.06), radius: 4, y: 2)
    }
}
