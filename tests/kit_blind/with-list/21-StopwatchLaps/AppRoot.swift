import SwiftUI

struct AppRoot: View {
    @StateObject private var stopwatch = Stopwatch()

    private var fastest: TimeInterval? { stopwatch.laps.count > 1 ? stopwatch.laps.min() : nil }
    private var slowest: TimeInterval? { stopwatch.laps.count > 1 ? stopwatch.laps.max() : nil }

    var body: some View {
        VStack(spacing: 0) {
            VStack(spacing: 12) {
                Text(Stopwatch.format(stopwatch.elapsed))
                    .font(.system(size: 80, weight: .light, design: .rounded))
                    .monospacedDigit()
                    .frame(maxWidth: .infinity)
                    .lineLimit(1)
                    .minimumScaleFactor(0.5)

                if !stopwatch.laps.isEmpty || stopwatch.isRunning {
                    Text("Lap \(stopwatch.laps.count + 1): \(Stopwatch.format(stopwatch.currentLap))")
                        .font(.title3.monospacedDigit())
                        .foregroundStyle(.secondary)
                }

                HStack(spacing: 40) {
                    Button {
                        if stopwatch.isRunning {
                            stopwatch.lap()
                        } else {
                            stopwatch.reset()
                        }
                    } label: {
                        Text(stopwatch.isRunning ? "Lap" : "Reset")
                            .frame(width: 70, height: 70)
                            .background(Circle().fill(Color.gray.opacity(0.25)))
                    }
                    .buttonStyle(.plain)
                    .disabled(!stopwatch.isRunning && stopwatch.elapsed == 0)
                    .keyboardShortcut("l", modifiers: [])

                    Button {
                        stopwatch.isRunning ? stopwatch.stop() : stopwatch.start()
                    } label: {
                        Text(stopwatch.isRunning ? "Stop" : "Start")
                            .foregroundStyle(stopwatch.isRunning ? .red : .green)
                            .frame(width: 70, height: 70)
                            .background(Circle().fill((stopwatch.isRunning ? Color.red : Color.green).opacity(0.2)))
                    }
                    .buttonStyle(.plain)
                    .keyboardShortcut(.space, modifiers: [])
                }
                .font(.headline)
                .padding(.top, 8)
            }
            .padding(.vertical, 32)

            Divider()

            if stopwatch.laps.isEmpty {
                Text("Press Lap (L) while running to record laps")
                    .foregroundStyle(.secondary)
                    .frame(maxWidth: .infinity, maxHeight: .infinity)
            } else {
                List {
                    HStack {
                        Text("Lap").frame(width: 60, alignment: .leading)
                        Spacer()
                        Text("Lap time").frame(width: 120, alignment: .trailing)
                        Text("Total").frame(width: 120, alignment: .trailing)
                    }
                    .font(.caption.bold())
                    .foregroundStyle(.secondary)

                    ForEach(Array(stopwatch.laps.enumerated()), id: \.offset) { index, lap in
                        let number = stopwatch.laps.count - index
                        let total = stopwatch.laps[index...].reduce(0, +)
                        HStack {
                            Text("Lap \(number)")
                                .frame(width: 60, alignment: .leading)
                            if lap == fastest {
                                Label("Fastest", systemImage: "hare.fill")
                                    .font(.caption)
                                    .foregroundStyle(.green)
                            } else if lap == slowest {
                                Label("Slowest", systemImage: "tortoise.fill")
                                    .font(.caption)
                                    .foregroundStyle(.red)
                            }
                            Spacer()
                            Text(Stopwatch.format(lap))
                                .frame(width: 120, alignment: .trailing)
                            Text(Stopwatch.format(total))
                                .foregroundStyle(.secondary)
                                .frame(width: 120, alignment: .trailing)
                        }
                        .font(.body.monospacedDigit())
                        .foregroundStyle(lap == fastest ? .green : lap == slowest ? .red : .primary)
                    }
                }
                .listStyle(.plain)
            }
        }
        .frame(minWidth: 420)
    }
}
