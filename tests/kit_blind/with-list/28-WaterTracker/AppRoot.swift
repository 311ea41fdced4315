import SwiftUI

struct AppRoot: View {
    @State private var store = WaterStore()
    @State private var customAmount = 300
    @State private var showingGoalEditor = false

    var body: some View {
        HStack(alignment: .top, spacing: 32) {
            VStack(spacing: 16) {
                ZStack {
                    BottleShape()
                        .fill(Color.blue.opacity(0.08))
                    WaterFill(level: min(store.progress, 1))
                        .fill(LinearGradient(colors: [.cyan, .blue], startPoint: .top, endPoint: .bottom))
                        .clipShape(BottleShape())
                    BottleShape()
                        .stroke(Color.blue.opacity(0.6), lineWidth: 3)
                    VStack {
                        Text("\(Int(store.progress * 100))%")
                            .font(.system(size: 34, weight: .bold, design: .rounded))
                        Text("\(store.todayTotal) / \(store.goal) ml")
                            .font(.callout)
                    }
                    .foregroundStyle(store.progress > 0.5 ? .white : .primary)
                    .offset(y: 30)
                }
                .frame(width: 170, height: 320)
                .animation(.easeInOut, value: store.todayTotal)

                if store.progress >= 1 {
                    Label("Goal reached!", systemImage: "checkmark.seal.fill")
                        .foregroundStyle(.green)
                        .font(.headline)
                }
            }

            VStack(alignment: .leading, spacing: 20) {
                HStack {
                    Text("Today")
                        .font(.largeTitle.bold())
                    Spacer()
                    Button {
                        showingGoalEditor = true
                    } label: {
                        Label("Goal: \(store.goal) ml", systemImage: "target")
                    }
                    .popover(isPresented: $showingGoalEditor) {
                        VStack(alignment: .leading) {
                            Text("Daily goal").font(.headline)
                            Stepper("\(store.goal) ml", value: $store.goal, in: 500...5000, step: 250)
                        }
                        .padding()
                        .frame(width: 220)
                    }
                }

                HStack(spacing: 12) {
                    QuickAddButton(title: "Glass", amount: 250, icon: "cup.and.saucer.fill") { store.add(250) }
                    QuickAddButton(title: "Bottle", amount: 500, icon: "waterbottle.fill") { store.add(500) }
                    QuickAddButton(title: "Large", amount: 750, icon: "drop.fill") { store.add(750) }
                }

                HStack {
                    Stepper("Custom: \(customAmount) ml", value: $customAmount, in: 50...2000, step: 50)
                    Button("Add") { store.add(customAmount) }
                        .buttonStyle(.borderedProminent)
                }

                GroupBox("Last 7 days") {
                    WeekChart(days: store.lastSevenDays(), goal: store.goal)
                        .frame(height: 120)
                        .padding(.top, 8)
                }

                GroupBox("Log") {
                    if store.todayEntries.isEmpty {
                        Text("Nothing logged yet today")
                            .foregroundStyle(.secondary)
                            .frame(maxWidth: .infinity, alignment: .leading)
                    } else {
                        ScrollView {
                            VStack(spacing: 6) {
                                ForEach(store.todayEntries) { entry in
                                    HStack {
                                        Image(systemName: "drop.fill").foregroundStyle(.blue)
                                        Text("\(entry.amount) ml")
                                        Spacer()
                                        Text(entry.time, style: .time)
                                            .foregroundStyle(.secondary)
                                        Button {
                                            store.remove(entry)
                                        } label: {
                                            Image(systemName: "minus.circle")
                                        }
                                        .buttonStyle(.borderless)
                                    }
                                }
                            }
                        }
                        .frame(maxHeight: 140)
                    }
                }
            }
            .frame(maxWidth: 420)
        }
        .padding(32)
        .frame(maxWidth: .infinity, maxHeight: .infinity, alignment: .top)
    }
}

struct QuickAddButton: View {
    let title: String
    let amount: Int
    let icon: String
    let action: () -> Void

    var body: some View {
        Button(action: action) {
            VStack(spacing: 6) {
                Image(systemName: icon)
                    .font(.title2)
                Text(title).font(.headline)
                Text("+\(amount) ml").font(.caption).foregroundStyle(.secondary)
            }
            .frame(maxWidth: .infinity)
            .padding(.vertical, 10)
        }
        .buttonStyle(.bordered)
        .tint(.blue)
    }
}

struct WeekChart: View {
    let days: [(date: Date, total: Int)]
    let goal: Int

    var body: some View {
        GeometryReader { geo in
            let maxValue = Double(max(goal, days.map(\.total).max() ?? 0, 1))
            let barArea = geo.size.height - 18
            ZStack(alignment: .topLeading) {
                HStack(alignment: .bottom, spacing: 10) {
                    ForEach(days, id: \.date) { day in
                        VStack(spacing: 4) {
                            Spacer(minLength: 0)
                            RoundedRectangle(cornerRadius: 4)
                                .fill(day.total >= goal ? Color.green : Color.blue.opacity(0.7))
                                .frame(height: max(2, barArea * CGFloat(Double(day.total) / maxValue)))
                            Text(day.date.formatted(.dateTime.weekday(.abbreviated)))
                                .font(.caption2)
                                .foregroundStyle(.secondary)
                                .frame(height: 14)
                        }
                        .frame(maxWidth: .infinity)
                    }
                }
                let goalY = barArea - barArea * CGFloat(Double(goal) / maxValue)
                Path { p in
                    p.move(to: CGPoint(x: 0, y: goalY))
                    p.addLine(to: CGPoint(x: geo.size.width, y: goalY))
                }
                .stroke(Color.green, style: StrokeStyle(lineWidth: 1, dash: [4, 3]))
            }
        }
    }
}

struct BottleShape: Shape {
    func path(in rect: CGRect) -> Path {
        var p = Path()
        let w = rect.width
        let h = rect.height
        let neckWidth = w * 0.36
        let neckHeight = h * 0.12
        let shoulder = h * 0.22
        let neckLeft = rect.midX - neckWidth / 2
        let neckRight = rect.midX + neckWidth / 2

        p.move(to: CGPoint(x: neckLeft, y: rect.minY))
        p.addLine(to: CGPoint(x: neckRight, y: rect.minY))
        p.addLine(to: CGPoint(x: neckRight, y: rect.minY + neckHeight))
        p.addQuadCurve(to: CGPoint(x: rect.maxX, y: rect.minY + shoulder),
                       control: CGPoint(x: rect.maxX, y: rect.minY + neckHeight))
        p.addLine(to: CGPoint(x: rect.maxX, y: rect.maxY - 20))
        p.addQuadCurve(to: CGPoint(x: rect.maxX - 20, y: rect.maxY), control: CGPoint(x: rect.maxX, y: rect.maxY))
        p.addLine(to: CGPoint(x: rect.minX + 20, y: rect.maxY))
        p.addQuadCurve(to: CGPoint(x: rect.minX, y: rect.maxY - 20), control: CGPoint(x: rect.minX, y: rect.maxY))
        p.addLine(to: CGPoint(x: rect.minX, y: rect.minY + shoulder))
        p.addQuadCurve(to: CGPoint(x: neckLeft, y: rect.minY + neckHeight),
                       control: CGPoint(x: rect.minX, y: rect.minY + neckHeight))
        p.closeSubpath()
        return p
    }
}

struct WaterFill: Shape {
    var level: Double

    func path(in rect: CGRect) -> Path {
        var p = Path()
        let y = rect.maxY - rect.height * CGFloat(level)
        let waveHeight: CGFloat = level > 0 && level < 1 ? 6 : 0
        p.move(to: CGPoint(x: rect.minX, y: y))
        p.addCurve(to: CGPoint(x: rect.maxX, y: y),
                   control1: CGPoint(x: rect.width * 0.35, y: y - waveHeight),
                   control2: CGPoint(x: rect.width * 0.65, y: y + waveHeight))
        p.addLine(to: CGPoint(x: rect.maxX, y: rect.maxY))
        p.addLine(to: CGPoint(x: rect.minX, y: rect.maxY))
        p.closeSubpath()
        return p
    }
}
