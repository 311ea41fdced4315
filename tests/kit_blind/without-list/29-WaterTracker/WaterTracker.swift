import SwiftUI

struct Wave: Shape {
    var progress: Double
    var phase: Double
    var amplitude: Double = 6

    var animatableData: AnimatablePair<Double, Double> {
        get { AnimatablePair(progress, phase) }
        set {
            progress = newValue.first
            phase = newValue.second
        }
    }

    func path(in rect: CGRect) -> Path {
        var path = Path()
        let waterHeight = rect.height * (1 - min(max(progress, 0), 1))
        path.move(to: CGPoint(x: 0, y: waterHeight))
        for x in stride(from: 0, through: rect.width, by: 2) {
            let relative = x / rect.width
            let y = waterHeight + sin(relative * 2 * .pi * 1.5 + phase) * amplitude
            path.addLine(to: CGPoint(x: x, y: y))
        }
        path.addLine(to: CGPoint(x: rect.width, y: rect.height))
        path.addLine(to: CGPoint(x: 0, y: rect.height))
        path.closeSubpath()
        return path
    }
}

struct GlassShape: Shape {
    func path(in rect: CGRect) -> Path {
        var path = Path()
        let inset = rect.width * 0.12
        path.move(to: CGPoint(x: 0, y: 0))
        path.addLine(to: CGPoint(x: rect.width, y: 0))
        path.addLine(to: CGPoint(x: rect.width - inset, y: rect.height))
        path.addLine(to: CGPoint(x: inset, y: rect.height))
        path.closeSubpath()
        return path
    }
}

struct AppRoot: View {
    @AppStorage("water.goal") private var goal = 2000
    @AppStorage("water.log") private var logData = Data()

    @State private var log: [String: Int] = [:]
    @State private var phase = 0.0
    @State private var customAmount = 150

    private static let keyFormatter: DateFormatter = {
        let f = DateFormatter()
        f.dateFormat = "yyyy-MM-dd"
        return f
    }()

    private var todayKey: String { Self.keyFormatter.string(from: .now) }
    private var today: Int { log[todayKey] ?? 0 }
    private var progress: Double { Double(today) / Double(max(goal, 1)) }

    private var lastSevenDays: [(date: Date, amount: Int)] {
        (0..<7).reversed().compactMap { offset in
            guard let date = Calendar.current.date(byAdding: .day, value: -offset, to: .now) else { return nil }
            return (date, log[Self.keyFormatter.string(from: date)] ?? 0)
        }
    }

    var body: some View {
        HStack(spacing: 40) {
            VStack(spacing: 16) {
                ZStack {
                    Wave(progress: progress, phase: phase)
                        .fill(LinearGradient(colors: [.cyan, .blue], startPoint: .top, endPoint: .bottom))
                        .clipShape(GlassShape())
                    Wave(progress: progress, phase: phase + .pi / 2, amplitude: 4)
                        .fill(Color.cyan.opacity(0.35))
                        .clipShape(GlassShape())
                    GlassShape()
                        .stroke(Color.secondary.opacity(0.6), lineWidth: 3)
                    VStack {
                        Text("\(Int(min(progress, 9.99) * 100))%")
                            .font(.system(size: 34, weight: .bold, design: .rounded))
                        Text("\(today) / \(goal) ml")
                            .font(.callout)
                    }
                    .foregroundStyle(progress > 0.5 ? .white : .primary)
                    .contentTransition(.numericText())
                }
                .frame(width: 170, height: 240)
                .animation(.spring(response: 0.8, dampingFraction: 0.7), value: progress)

                if progress >= 1 {
                    Label("Goal reached!", systemImage: "party.popper.fill")
                        .foregroundStyle(.green)
                        .font(.headline)
                        .transition(.scale.combined(with: .opacity))
                }
            }
            .animation(.bouncy, value: progress >= 1)

            VStack(alignment: .leading, spacing: 18) {
                Text("Hydration")
                    .font(.largeTitle.bold())

                HStack {
                    AddButton(title: "Glass", subtitle: "250 ml", icon: "cup.and.saucer.fill") { add(250) }
                    AddButton(title: "Bottle", subtitle: "500 ml", icon: "waterbottle.fill") { add(500) }
                }

                HStack {
                    Stepper("Custom: \(customAmount) ml", value: $customAmount, in: 50...1000, step: 50)
                    Button("Add") { add(customAmount) }
                }

                Button("Undo last 250 ml", role: .destructive) { add(-250) }
                    .disabled(today == 0)
                    .buttonStyle(.link)

                Divider()

                Stepper("Daily goal: \(goal) ml", value: $goal, in: 500...5000, step: 250)

                Text("Last 7 days")
                    .font(.headline)
                HStack(alignment: .bottom, spacing: 10) {
                    ForEach(lastSevenDays, id: \.date) { day in
                        VStack(spacing: 4) {
                            RoundedRectangle(cornerRadius: 4)
                                .fill(day.amount >= goal ? Color.blue : Color.blue.opacity(0.4))
                                .frame(width: 22, height: max(4, 80 * min(Double(day.amount) / Double(goal), 1.2)))
                            Text(day.date, format: .dateTime.weekday(.narrow))
                                .font(.caption2)
                                .foregroundStyle(.secondary)
                        }
                        .help("\(day.amount) ml")
                    }
                }
                .frame(height: 110, alignment: .bottom)
            }
            .frame(width: 300)
        }
        .padding(32)
        .frame(minWidth: 640, minHeight: 480)
        .onAppear {
            log = (try? JSONDecoder().decode([String: Int].self, from: logData)) ?? [:]
            withAnimation(.linear(duration: 2.5).repeatForever(autoreverses: false)) {
                phase = .pi * 2
            }
        }
    }

    private func add(_ amount: Int) {
        log[todayKey] = max(0, today + amount)
        logData = (try? JSONEncoder().encode(log)) ?? Data()
    }
}

struct AddButton: View {
    let title: String
    let subtitle: String
    let icon: String
    let action: () -> Void

    var body: some View {
        Button(action: action) {
            VStack(spacing: 6) {
                Image(systemName: icon)
                    .font(.title)
                Text(title).font(.headline)
                Text(subtitle).font(.caption).foregroundStyle(.secondary)
            }
            .frame(width: 110, height: 90)
        }
        .buttonStyle(.bordered)
        .tint(.blue)
    }
}
