import SwiftUI

enum SessionKind: String, CaseIterable, Identifiable {
    case focus = "Focus"
    case shortBreak = "Short Break"
    case longBreak = "Long Break"

    var id: String { rawValue }

    var minutes: Int {
        switch self {
        case .focus: return 25
        case .shortBreak: return 5
        case .longBreak: return 15
        }
    }

    var color: Color {
        switch self {
        case .focus: return .red
        case .shortBreak: return .green
        case .longBreak: return .blue
        }
    }
}

struct AppRoot: View {
    @State private var kind: SessionKind = .focus
    @State private var remaining = 25 * 60
    @State private var isRunning = false
    @State private var completed = 0

    let timer = Timer.publish(every: 1, on: .main, in: .common).autoconnect()

    private var total: Int { kind.minutes * 60 }
    private var progress: Double { 1 - Double(remaining) / Double(total) }

    private var timeText: String {
        String(format: "%02d:%02d", remaining / 60, remaining % 60)
    }

    var body: some View {
        VStack(spacing: 24) {
            Picker("Session", selection: $kind) {
                ForEach(SessionKind.allCases) { kind in
                    Text(kind.rawValue).tag(kind)
                }
            }
            .pickerStyle(.segmented)
            .labelsHidden()
            .frame(width: 320)

            ZStack {
                Circle()
                    .stroke(kind.color.opacity(0.2), lineWidth: 20)
                Circle()
                    .trim(from: 0, to: progress)
                    .stroke(kind.color, style: StrokeStyle(lineWidth: 20, lineCap: .round))
                    .rotationEffect(.degrees(-90))
                    .animation(.linear(duration: 1), value: progress)
                VStack(spacing: 4) {
                    Text(timeText)
                        .font(.system(size: 56, weight: .bold, design: .rounded))
                        .monospacedDigit()
                    Text(kind.rawValue)
                        .font(.headline)
                        .foregroundStyle(.secondary)
                }
            }
            .frame(width: 260, height: 260)

            HStack(spacing: 16) {
                Button(isRunning ? "Pause" : "Start") {
                    isRunning.toggle()
                }
                .buttonStyle(.borderedProminent)
                .keyboardShortcut(.space, modifiers: [])

                Button("Reset") {
                    isRunning = false
                    remaining = total
                }
                .buttonStyle(.bordered)
            }
            .controlSize(.large)

            Text("Completed sessions: \(completed)")
                .font(.footnote)
                .foregroundStyle(.secondary)
        }
        .padding(32)
        .onReceive(timer) { _ in
            guard isRunning else { return }
            if remaining > 0 {
                remaining -= 1
            } else {
                isRunning = false
                completed += 1
                remaining = total
            }
        }
        .onChange(of: kind) { newKind in
            isRunning = false
            remaining = newKind.minutes * 60
        }
    }
}
