import SwiftUI

struct AppRoot: View {
    @State private var elapsed: TimeInterval = 0
    @State private var isRunning = false
    @State private var laps: [TimeInterval] = []
    @State private var timer: Timer?

    var body: some View {
        VStack(spacing: 30) {
            Text(format(elapsed))
                .font(.system(size: 60, weight: .thin, design: .monospaced))
            HStack(spacing: 40) {
                Button(isRunning ? "Lap" : "Reset") {
                    if isRunning { laps.insert(elapsed, at: 0) } else { elapsed = 0; laps.removeAll() }
                }
                .frame(width: 80, height: 80)
                .background(Circle().fill(Color.gray.opacity(0.3)))
                Button(isRunning ? "Stop" : "Start") {
                    isRunning ? stop() : start()
                }
                .foregroundColor(isRunning ? .red : .green)
                .frame(width: 80, height: 80)
                .background(Circle().fill((isRunning ? Color.red : Color.green).opacity(0.2)))
            }
            .buttonStyle(.plain)
            List {
                ForEach(Array(laps.enumerated()), id: \.offset) { index, lap in
                    HStack {
                        Text("Lap \(laps.count - index)")
                        Spacer()
                        Text(format(lap)).monospacedDigit()
                    }
                }
            }
        }
        .padding()
    }

    func start() {
        isRunning = true
        timer = Timer.scheduledTimer(withTimeInterval: 0.01, repeats: true) { _ in
            elapsed += 0.01
        }
    }
    func stop() {
        isRunning = false
        timer?.invalidate()
    }
    func format(_ t: TimeInterval) -> String {
        String(format: "%02d:%02d.%02d", Int(t) / 60, Int(t) % 60, Int((t * 100).truncatingRemainder(dividingBy: 100)))
    }
}
