import SwiftUI

struct AppRoot: View {
    @StateObject private var engine = MetronomeEngine()
    @State private var swingRight = false

    private let signatures = [2, 3, 4, 5, 6, 7]

    var body: some View {
        VStack(spacing: 28) {
            VStack(spacing: 2) {
                Text("\(Int(engine.bpm))")
                    .font(.system(size: 72, weight: .bold, design: .rounded))
                    .monospacedDigit()
                    .contentTransition(.numericText(value: engine.bpm))
                    .animation(.snappy, value: engine.bpm)
                Text("BPM · \(engine.tempoName)")
                    .font(.headline)
                    .foregroundStyle(.secondary)
            }

            Pendulum(angle: swingRight ? 28 : -28)
                .frame(width: 200, height: 170)

            HStack(spacing: 14) {
                ForEach(0..<engine.beatsPerBar, id: \.self) { beat in
                    let active = engine.isRunning && engine.currentBeat == beat
                    Circle()
                        .fill(active ? (beat == 0 ? Color.red : Color.green) : Color.secondary.opacity(0.25))
                        .frame(width: beat == 0 ? 26 : 20, height: beat == 0 ? 26 : 20)
                        .scaleEffect(active ? 1.3 : 1)
                        .shadow(color: active ? (beat == 0 ? .red : .green) : .clear, radius: 8)
                        .animation(.easeOut(duration: 0.12), value: active)
                }
            }
            .frame(height: 36)

            VStack(spacing: 14) {
                HStack {
                    Button {
                        engine.bpm = max(40, engine.bpm - 1)
                    } label: {
                        Image(systemName: "minus")
                    }
                    Slider(value: $engine.bpm, in: 40...220, step: 1)
                    Button {
                        engine.bpm = min(220, engine.bpm + 1)
                    } label: {
                        Image(systemName: "plus")
                    }
                }
                .frame(width: 360)

                HStack(spacing: 16) {
                    Picker("Time", selection: $engine.beatsPerBar) {
                        ForEach(signatures, id: \.self) { beats in
                            Text("\(beats)/4").tag(beats)
                        }
                    }
                    .frame(width: 140)

                    Button("Tap Tempo") {
                        engine.tap()
                    }
                    .keyboardShortcut("t", modifiers: [])
                }
            }

            Button {
                engine.toggle()
            } label: {
                Label(engine.isRunning ? "Stop" : "Start",
                      systemImage: engine.isRunning ? "stop.fill" : "play.fill")
                    .font(.title3)
                    .frame(width: 140)
            }
            .buttonStyle(.borderedProminent)
            .controlSize(.large)
            .tint(engine.isRunning ? .red : .accentColor)
            .keyboardShortcut(.space, modifiers: [])
        }
        .padding(32)
        .frame(minWidth: 460, minHeight: 600)
        .onChange(of: engine.tickCount) {
            withAnimation(.easeInOut(duration: engine.interval)) {
                swingRight.toggle()
            }
        }
        .onChange(of: engine.isRunning) { _, running in
            if !running {
                withAnimation(.spring) { swingRight = false }
            }
        }
    }
}

struct Pendulum: View {
    var angle: Double

    var body: some View {
        GeometryReader { geo in
            let length = geo.size.height - 20
            ZStack(alignment: .top) {
                Capsule()
                    .fill(Color.secondary.opacity(0.5))
                    .frame(width: 4, height: length)
                Circle()
                    .fill(Color.accentColor.gradient)
                    .frame(width: 30, height: 30)
                    .offset(y: length - 30)
                Circle()
                    .fill(Color.primary)
                    .frame(width: 10, height: 10)
                    .offset(y: -5)
            }
            .frame(width: geo.size.width)
            .rotationEffect(.degrees(angle), anchor: .top)
        }
    }
}
