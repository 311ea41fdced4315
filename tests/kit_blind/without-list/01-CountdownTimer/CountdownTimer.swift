import SwiftUI
import Combine

struct AppRoot: View {
    @State private var minutes: Int = 5
    @State private var seconds: Int = 0
    @State private var totalSeconds: Int = 300
    @State private var remaining: Int = 300
    @State private var isRunning = false
    @State private var finished = false

    private let timer = Timer.publish(every: 1, on: .main, in: .common).autoconnect()

    private var progress: Double {
        guard totalSeconds > 0 else { return 0 }
        return Double(remaining) / Double(totalSeconds)
    }

    private var timeString: String {
        let m = remaining / 60
        let s = remaining % 60
        return String(format: "%02d:%02d", m, s)
    }

    var body: some View {
        VStack(spacing: 28) {
            ZStack {
                Circle()
                    .stroke(Color.secondary.opacity(0.2), lineWidth: 18)
                Circle()
                    .trim(from: 0, to: progress)
                    .stroke(
                        AngularGradient(colors: [.orange, .pink, .orange], center: .center),
                        style: StrokeStyle(lineWidth: 18, lineCap: .round)
                    )
                    .rotationEffect(.degrees(-90))
                    .animation(.linear(duration: 1), value: remaining)

                VStack(spacing: 6) {
                    Text(timeString)
                        .font(.system(size: 56, weight: .semibold, design: .rounded))
                        .monospacedDigit()
                        .contentTransition(.numericText())
                    if finished {
                        Text("Time's up!")
                            .font(.headline)
                            .foregroundStyle(.pink)
                            .transition(.scale.combined(with: .opacity))
                    }
                }
            }
            .frame(width: 260, height: 260)

            if !isRunning && remaining == totalSeconds {
                HStack(spacing: 20) {
                    Stepper(value: $minutes, in: 0...99) {
                        Text("\(minutes) min")
                            .monospacedDigit()
                            .frame(width: 60, alignment: .trailing)
                    }
                    Stepper(value: $seconds, in: 0...59, step: 5) {
                        Text("\(seconds) sec")
                            .monospacedDigit()
                            .frame(width: 60, alignment: .trailing)
                    }
                }
                .onChange(of: minutes) { _, _ in applyDuration() }
                .onChange(of: seconds) { _, _ in applyDuration() }
            }

            HStack(spacing: 16) {
                Button {
                    toggle()
                } label: {
                    Label(isRunning ? "Pause" : "Start",
                          systemImage: isRunning ? "pause.fill" : "play.fill")
                        .frame(width: 90)
                }
                .keyboardShortcut(.space, modifiers: [])
                .buttonStyle(.borderedProminent)
                .disabled(totalSeconds == 0)

                Button {
                    reset()
                } label: {
                    Label("Reset", systemImage: "arrow.counterclockwise")
                        .frame(width: 90)
                }
                .buttonStyle(.bordered)
            }
            .controlSize(.large)
        }
        .padding(40)
        .frame(minWidth: 380, minHeight: 460)
        .onReceive(timer) { _ in
            tick()
        }
    }

    private func applyDuration() {
        totalSeconds = minutes * 60 + seconds
        remaining = totalSeconds
        finished = false
    }

    private func toggle() {
        if remaining == 0 {
            remaining = totalSeconds
        }
        finished = false
        isRunning.toggle()
    }

    private func reset() {
        isRunning = false
        withAnimation {
            finished = false
        }
        remaining = totalSeconds
    }

    private func tick() {
        guard isRunning else { return }
        if remaining > 0 {
            withAnimation {
                remaining -= 1
            }
        }
        if remaining == 0 {
            isRunning = false
            withAnimation(.spring) {
                finished = true
            }
        }
    }
}
