import SwiftUI

struct AppRoot: View {
    @StateObject private var stopwatch = Stopwatch()

    private var fastest: TimeInterval? {
        stopwatch.laps.count > 1 ? stopwatch.laps.min() : nil
    }

    private var slowest: TimeInterval? {
        stopwatch.laps.count > 1 ? stopwatch.laps.max() : nil
    }

    var body: some View {
        VStack(spacing: 0) {
            Text(stopwatch.elapsed.stopwatchString)
                .font(.system(size: 64, weight: .light, design: .rounded))
                .monospacedDigit()
                .padding(.top, 40)
                .padding(.bottom, 30)

            HStack {
                CircleButton(title: stopwatch.isRunning ? "Lap" : "Reset",
                             color: .gray,
                             disabled: !stopwatch.isRunning && stopwatch.elapsed == 0) {
                    if stopwatch.isRunning {
                        stopwatch.lap()
                    } else {
                        withAnimation { stopwatch.reset() }
                    }
                }
                .keyboardShortcut("l", modifiers: [])

                Spacer()

                CircleButton(title: stopwatch.isRunning ? "Stop" : "Start",
                             color: stopwatch.isRunning ? .red : .green,
                             disabled: false) {
                    stopwatch.isRunning ? stopwatch.stop() : stopwatch.start()
                }
                .keyboardShortcut(.space, modifiers: [])
            }
            .padding(.horizontal, 40)
            .padding(.bottom, 20)

            Divider()

            List {
                if stopwatch.isRunning || stopwatch.elapsed > 0 {
                    LapRow(number: stopwatch.laps.count + 1,
                           time: stopwatch.currentLap,
                           color: .primary)
                }
                ForEach(Array(stopwatch.laps.enumerated()), id: \.offset) { index, lap in
                    LapRow(number: stopwatch.laps.count - index,
                           time: lap,
                           color: color(for: lap))
                        .transition(.move(edge: .top).combined(with: .opacity))
                }
            }
            .listStyle(.plain)
            .animation(.default, value: stopwatch.laps.count)
        }
        .frame(minWidth: 380, minHeight: 520)
    }

    private func color(for lap: TimeInterval) -> Color {
        if lap == fastest { return .green }
        if lap == slowest { return .red }
        return .primary
    }
}

struct LapRow: View {
    let number: Int
    let time: TimeInterval
    let color: Color

    var body: some View {
        HStack {
            Text("Lap \(number)")
            Spacer()
            Text(time.stopwatchString)
                .monospacedDigit()
        }
        .font(.title3)
        .foregroundStyle(color)
        .padding(.vertical, 6)
    }
}

struct CircleButton: View {
    let title: String
    let color: Color
    let disabled: Bool
    let action: () -> Void

    var body: some View {
        Button(action: action) {
            Text(title)
                .font(.headline)
                .foregroundStyle(color == .gray ? Color.primary : color)
                .frame(width: 80, height: 80)
                .background(
                    Circle()
                        .fill(color.opacity(0.25))
                )
                .overlay(
                    Circle()
                        .stroke(color.opacity(0.5), lineWidth: 2)
                        .padding(3)
                )
                .contentShape(Circle())
        }
        .buttonStyle(.plain)
        .disabled(disabled)
        .opacity(disabled ? 0.5 : 1)
    }
}
