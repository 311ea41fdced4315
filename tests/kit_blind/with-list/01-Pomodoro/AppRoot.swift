import SwiftUI

enum SessionKind: String, CaseIterable, Identifiable {
    case focus = "Focus"
    case shortBreak = "Short Break"
    case longBreak = "Long Break"

    var id: String { rawValue }

    var color: Color {
        switch self {
        case .focus: return .red
        case .shortBreak: return .green
        case .longBreak: return .blue
        }
    }

    var symbol: String {
        switch self {
        case .focus: return "brain.head.profile"
        case .shortBreak: return "cup.and.saucer.fill"
        case .longBreak: return "figure.walk"
        }
    }
}

struct AppRoot: View {
    @AppStorage("focusMinutes") private var focusMinutes = 25
    @AppStorage("shortBreakMinutes") private var shortBreakMinutes = 5
    @AppStorage("longBreakMinutes") private var longBreakMinutes = 15
    @AppStorage("roundsBeforeLongBreak") private var roundsBeforeLongBreak = 4
    @AppStorage("completedToday") private var completedToday = 0

    @State private var kind: SessionKind = .focus
    @State private var remaining: Int = 25 * 60
    @State private var isRunning = false
    @State private var round = 1
    @State private var showSettings = false

    private let timer = Timer.publish(every: 1, on: .main, in: .common).autoconnect()

    private var totalSeconds: Int {
        switch kind {
        case .focus: return focusMinutes * 60
        case .shortBreak: return shortBreakMinutes * 60
        case .longBreak: return longBreakMinutes * 60
        }
    }

    private var progress: Double {
        guard totalSeconds > 0 else { return 0 }
        return 1 - Double(remaining) / Double(totalSeconds)
    }

    var body: some View {
        VStack(spacing: 24) {
            Picker("Session", selection: $kind) {
                ForEach(SessionKind.allCases) { kind in
                    Text(kind.rawValue).tag(kind)
                }
            }
            .pickerStyle(.segmented)
            .frame(maxWidth: 360)
            .onChange(of: kind) { _, _ in
                isRunning = false
                remaining = totalSeconds
            }

            ZStack {
                Circle()
                    .stroke(kind.color.opacity(0.15), lineWidth: 18)
                Circle()
                    .trim(from: 0, to: progress)
                    .stroke(kind.color, style: StrokeStyle(lineWidth: 18, lineCap: .round))
                    .rotationEffect(.degrees(-90))
                    .animation(.linear(duration: 1), value: progress)

                VStack(spacing: 8) {
                    Image(systemName: kind.symbol)
                        .font(.title)
                        .foregroundStyle(kind.color)
                    Text(timeString(remaining))
                        .font(.system(size: 64, weight: .bold, design: .rounded))
                        .monospacedDigit()
                    Text("Round \(round) of \(roundsBeforeLongBreak)")
                        .font(.subheadline)
                        .foregroundStyle(.secondary)
                }
            }
            .frame(width: 300, height: 300)

            HStack(spacing: 16) {
                Button {
                    isRunning.toggle()
                } label: {
                    Label(isRunning ? "Pause" : "Start", systemImage: isRunning ? "pause.fill" : "play.fill")
                        .frame(width: 100)
                }
                .buttonStyle(.borderedProminent)
                .tint(kind.color)
                .keyboardShortcut(.space, modifiers: [])

                Button {
                    isRunning = false
                    remaining = totalSeconds
                } label: {
                    Label("Reset", systemImage: "arrow.counterclockwise")
                }

                Button {
                    advance()
                } label: {
                    Label("Skip", systemImage: "forward.end.fill")
                }
            }
            .controlSize(.large)

            Text("\(completedToday) focus sessions completed")
                .font(.footnote)
                .foregroundStyle(.secondary)
        }
        .padding(32)
        .frame(maxWidth: .infinity, maxHeight: .infinity)
        .background(kind.color.opacity(0.05))
        .toolbar {
            ToolbarItem {
                Button {
                    showSettings = true
                } label: {
                    Image(systemName: "gearshape")
                }
            }
        }
        .sheet(isPresented: $showSettings) {
            PomodoroSettings(
                focusMinutes: $focusMinutes,
                shortBreakMinutes: $shortBreakMinutes,
                longBreakMinutes: $longBreakMinutes,
                rounds: $roundsBeforeLongBreak,
                resetCount: { completedToday = 0 }
            )
        }
        .onAppear {
            remaining = totalSeconds
        }
        .onReceive(timer) { _ in
            guard isRunning else { return }
            if remaining > 0 {
                remaining -= 1
            } else {
                advance()
            }
        }
    }

    private func advance() {
        isRunning = false
        switch kind {
        case .focus:
            completedToday += 1
            if round >= roundsBeforeLongBreak {
                kind = .longBreak
            } else {
                kind = .shortBreak
            }
        case .shortBreak:
            round += 1
            kind = .focus
        case .longBreak:
            round = 1
            kind = .focus
        }
        remaining = totalSeconds
    }

    private func timeString(_ seconds: Int) -> String {
        String(format: "%02d:%02d", seconds / 60, seconds % 60)
    }
}

struct PomodoroSettings: View {
    @Binding var focusMinutes: Int
    @Binding var shortBreakMinutes: Int
    @Binding var longBreakMinutes: Int
    @Binding var rounds: Int
    var resetCount: () -> Void
    @Environment(\.dismiss) private var dismiss

    var body: some View {
        VStack(alignment: .leading, spacing: 0) {
            Form {
                Section("Durations") {
                    Stepper("Focus: \(focusMinutes) min", value: $focusMinutes, in: 1...90)
                    Stepper("Short break: \(shortBreakMinutes) min", value: $shortBreakMinutes, in: 1...30)
                    Stepper("Long break: \(longBreakMinutes) min", value: $longBreakMinutes, in: 5...60)
                }
                Section("Cycle") {
                    Stepper("Long break every \(rounds) rounds", value: $rounds, in: 2...8)
                    Button("Reset today's count", role: .destructive, action: resetCount)
                }
            }
            .formStyle(.grouped)

            HStack {
                Spacer()
                Button("Done") { dismiss() }
                    .keyboardShortcut(.defaultAction)
            }
            .padding()
        }
        .frame(width: 380, height: 340)
    }
}
