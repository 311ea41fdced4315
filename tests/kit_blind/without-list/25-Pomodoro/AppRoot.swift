import SwiftUI

struct AppRoot: View {
    @State private var model = PomodoroModel()
    @State private var pulse = false
    @State private var showSettings = false

    private var accent: Color {
        switch model.kind {
        case .focus: return .red
        case .shortBreak: return .green
        case .longBreak: return .blue
        }
    }

    var body: some View {
        VStack(spacing: 26) {
            Picker("Session", selection: Binding(get: { model.kind }, set: { model.switchTo($0) })) {
                ForEach(SessionKind.allCases, id: \.self) { kind in
                    Text(kind.rawValue).tag(kind)
                }
            }
            .pickerStyle(.segmented)
            .labelsHidden()
            .frame(width: 320)

            ZStack {
                Circle()
                    .fill(accent.opacity(0.25))
                    .blur(radius: 30)
                    .scaleEffect(pulse ? 1.12 : 0.92)
                    .opacity(model.isRunning ? 1 : 0.4)

                Circle()
                    .fill(
                        RadialGradient(colors: [accent.opacity(0.35), accent.opacity(0.05)],
                                       center: .center, startRadius: 10, endRadius: 140)
                    )
                    .scaleEffect(pulse ? 1.04 : 1)

                Circle()
                    .stroke(accent.opacity(0.15), lineWidth: 10)

                Circle()
                    .trim(from: 0, to: model.progress)
                    .stroke(accent, style: StrokeStyle(lineWidth: 10, lineCap: .round))
                    .rotationEffect(.degrees(-90))
                    .animation(.linear(duration: 0.25), value: model.progress)

                VStack(spacing: 6) {
                    Text(model.timeText)
                        .font(.system(size: 60, weight: .semibold, design: .rounded))
                        .monospacedDigit()
                    Text(model.kind.rawValue.uppercased())
                        .font(.caption.weight(.bold))
                        .tracking(2)
                        .foregroundStyle(accent)
                }
            }
            .frame(width: 260, height: 260)
            .onChange(of: model.isRunning, initial: true) { _, running in
                if running {
                    withAnimation(.easeInOut(duration: 1.6).repeatForever(autoreverses: true)) {
                        pulse = true
                    }
                } else {
                    withAnimation(.easeOut(duration: 0.4)) {
                        pulse = false
                    }
                }
            }

            HStack(spacing: 14) {
                Button {
                    model.reset()
                } label: {
                    Image(systemName: "arrow.counterclockwise")
                        .frame(width: 30, height: 20)
                }
                .help("Reset")

                Button {
                    model.isRunning ? model.pause() : model.start()
                } label: {
                    Text(model.isRunning ? "Pause" : "Start")
                        .font(.title3.bold())
                        .frame(width: 120, height: 24)
                }
                .buttonStyle(.borderedProminent)
                .tint(accent)
                .keyboardShortcut(.space, modifiers: [])

                Button {
                    model.skip()
                } label: {
                    Image(systemName: "forward.end.fill")
                        .frame(width: 30, height: 20)
                }
                .help("Skip to next session")
            }
            .controlSize(.large)

            VStack(spacing: 6) {
                HStack(spacing: 4) {
                    ForEach(0..<model.sessionsBeforeLongBreak, id: \.self) { i in
                        Circle()
                            .fill(i < model.completedInCycle ? accent : Color.secondary.opacity(0.3))
                            .frame(width: 10, height: 10)
                    }
                }
                Text("🍅 × \(model.completedToday) today")
                    .font(.headline)
                    .foregroundStyle(.secondary)
            }
        }
        .padding(30)
        .frame(minWidth: 420, minHeight: 540)
        .animation(.easeInOut(duration: 0.5), value: model.kind)
        .toolbar {
            Button {
                showSettings.toggle()
            } label: {
                Label("Durations", systemImage: "slider.horizontal.3")
            }
            .popover(isPresented: $showSettings, arrowEdge: .bottom) {
                Form {
                    Stepper("Focus: \(model.focusMinutes) min", value: $model.focusMinutes, in: 1...90)
                    Stepper("Short break: \(model.shortBreakMinutes) min", value: $model.shortBreakMinutes, in: 1...30)
                    Stepper("Long break: \(model.longBreakMinutes) min", value: $model.longBreakMinutes, in: 1...60)
                    Stepper("Long break every \(model.sessionsBeforeLongBreak)", value: $model.sessionsBeforeLongBreak, in: 2...8)
                }
                .padding()
                .frame(width: 280)
                .onDisappear {
                    if !model.isRunning { model.reset() }
                }
            }
        }
    }
}
