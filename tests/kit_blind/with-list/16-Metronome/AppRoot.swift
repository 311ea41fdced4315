import SwiftUI

struct TimeSignature: Hashable, Identifiable {
    let beats: Int
    let noteValue: Int
    var id: String { "\(beats)/\(noteValue)" }

    static let all = [
        TimeSignature(beats: 2, noteValue: 4),
        TimeSignature(beats: 3, noteValue: 4),
        TimeSignature(beats: 4, noteValue: 4),
        TimeSignature(beats: 6, noteValue: 8)
    ]
}

struct AppRoot: View {
    @State private var engine = MetronomeEngine()

    var body: some View {
        VStack(spacing: 28) {
            HStack(alignment: .firstTextBaseline, spacing: 6) {
                Text("\(Int(engine.bpm))")
                    .font(.system(size: 96, weight: .bold, design: .rounded))
                    .monospacedDigit()
                Text("BPM")
                    .font(.title2)
                    .foregroundStyle(.secondary)
            }
            Text(engine.tempoName)
                .font(.title3.italic())
                .foregroundStyle(.secondary)
                .padding(.top, -20)

            BeatIndicator(beats: engine.beatsPerBar,
                          current: engine.isRunning ? engine.currentBeat : 0,
                          accentFirst: engine.accentFirstBeat)
                .frame(height: 60)

            HStack(spacing: 12) {
                Button { engine.bpm = max(40, engine.bpm - 1) } label: {
                    Image(systemName: "minus")
                }
                .keyboardShortcut(.downArrow, modifiers: [])
                Slider(value: $engine.bpm, in: 40...220, step: 1)
                    .frame(maxWidth: 360)
                Button { engine.bpm = min(220, engine.bpm + 1) } label: {
                    Image(systemName: "plus")
                }
                .keyboardShortcut(.upArrow, modifiers: [])
            }

            HStack(spacing: 20) {
                Picker("Time", selection: Binding(
                    get: { TimeSignature.all.first { $0.beats == engine.beatsPerBar } ?? TimeSignature.all[2] },
                    set: { engine.beatsPerBar = $0.beats }
                )) {
                    ForEach(TimeSignature.all) { sig in
                        Text(sig.id).tag(sig)
                    }
                }
                .pickerStyle(.segmented)
                .frame(width: 240)

                Toggle("Accent first beat", isOn: $engine.accentFirstBeat)
                    .toggleStyle(.checkbox)
            }

            HStack(spacing: 16) {
                Button {
                    engine.toggle()
                } label: {
                    Label(engine.isRunning ? "Stop" : "Start",
                          systemImage: engine.isRunning ? "stop.fill" : "play.fill")
                        .frame(width: 110)
                }
                .buttonStyle(.borderedProminent)
                .tint(engine.isRunning ? .red : .accentColor)
                .keyboardShortcut(.space, modifiers: [])

                Button {
                    engine.tap()
                } label: {
                    Label("Tap Tempo", systemImage: "hand.tap")
                        .frame(width: 110)
                }
                .keyboardShortcut("t", modifiers: [])
            }
            .controlSize(.large)

            if engine.isRunning {
                Text("Bar \(engine.barCount + 1)")
                    .font(.caption)
                    .foregroundStyle(.secondary)
            }
        }
        .padding(40)
        .frame(maxWidth: .infinity, maxHeight: .infinity)
        .onDisappear { engine.stop() }
    }
}

struct BeatIndicator: View {
    let beats: Int
    let current: Int
    let accentFirst: Bool

    var body: some View {
        HStack(spacing: 16) {
            ForEach(1...max(beats, 1), id: \.self) { beat in
                let active = beat == current
                let isAccent = accentFirst && beat == 1
                Circle()
                    .fill(active ? (isAccent ? Color.orange : Color.accentColor) : Color.secondary.opacity(0.2))
                    .overlay(
                        Circle().strokeBorder(isAccent ? Color.orange : Color.clear, lineWidth: 2)
                    )
                    .frame(width: isAccent ? 54 : 44, height: isAccent ? 54 : 44)
                    .scaleEffect(active ? 1.15 : 1)
                    .animation(.easeOut(duration: 0.08), value: active)
            }
        }
    }
}
