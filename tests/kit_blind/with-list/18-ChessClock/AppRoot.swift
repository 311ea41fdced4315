import SwiftUI

struct TimeControl: Hashable, Identifiable {
    let minutes: Int
    let increment: Int
    var id: String { "\(minutes)+\(increment)" }
    var name: String {
        switch minutes {
        case ..<3: return "Bullet"
        case 3..<10: return "Blitz"
        case 10..<30: return "Rapid"
        default: return "Classical"
        }
    }

    static let presets = [
        TimeControl(minutes: 1, increment: 0),
        TimeControl(minutes: 3, increment: 2),
        TimeControl(minutes: 5, increment: 0),
        TimeControl(minutes: 5, increment: 3),
        TimeControl(minutes: 10, increment: 0),
        TimeControl(minutes: 15, increment: 10),
        TimeControl(minutes: 30, increment: 0)
    ]
}

enum Player {
    case white, black
    var other: Player { self == .white ? .black : .white }
}

struct AppRoot: View {
    @State private var control = TimeControl(minutes: 5, increment: 3)
    @State private var whiteTime: TimeInterval = 300
    @State private var blackTime: TimeInterval = 300
    @State private var active: Player?
    @State private var paused = false
    @State private var whiteMoves = 0
    @State private var blackMoves = 0
    @State private var lastTick = Date()
    @State private var flagged: Player?

    private let timer = Timer.publish(every: 0.1, on: .main, in: .common).autoconnect()

    var body: some View {
        VStack(spacing: 0) {
            PlayerSide(name: "Black", time: blackTime, moves: blackMoves,
                       isActive: active == .black && !paused, flagged: flagged == .black, inverted: true)
                .onTapGesture { press(.black) }

            controls

            PlayerSide(name: "White", time: whiteTime, moves: whiteMoves,
                       isActive: active == .white && !paused, flagged: flagged == .white, inverted: false)
                .onTapGesture { press(.white) }
        }
        .onReceive(timer) { now in
            let delta = now.timeIntervalSince(lastTick)
            lastTick = now
            guard let active, !paused, flagged == nil else { return }
            switch active {
            case .white:
                whiteTime = max(0, whiteTime - delta)
                if whiteTime == 0 { flagged = .white }
            case .black:
                blackTime = max(0, blackTime - delta)
                if blackTime == 0 { flagged = .black }
            }
        }
        .background(
            Group {
                Button("") { press(.white) }.keyboardShortcut("a", modifiers: [])
                Button("") { press(.black) }.keyboardShortcut("l", modifiers: [])
            }
            .opacity(0)
        )
    }

    private var controls: some View {
        HStack(spacing: 16) {
            Picker("Time control", selection: $control) {
                ForEach(TimeControl.presets) { tc in
                    Text("\(tc.id)  \(tc.name)").tag(tc)
                }
            }
            .frame(width: 200)
            .disabled(active != nil && flagged == nil)
            .onChange(of: control) { reset() }

            Spacer()

            if active != nil && flagged == nil {
                Button {
                    paused.toggle()
                    lastTick = Date()
                } label: {
                    Label(paused ? "Resume" : "Pause", systemImage: paused ? "play.fill" : "pause.fill")
                }
                .keyboardShortcut(.space, modifiers: [])
            }

            Button {
                reset()
            } label: {
                Label("Reset", systemImage: "arrow.counterclockwise")
            }

            Text("A = White · L = Black")
                .font(.caption)
                .foregroundStyle(.secondary)
        }
        .padding(.horizontal)
        .padding(.vertical, 10)
        .background(.bar)
    }

    private func press(_ player: Player) {
        guard flagged == nil else { return }
        if active == nil {
            // The first press starts the opponent's clock
            active = player.other
            lastTick = Date()
            return
        }
        guard active == player, !paused else { return }
        switch player {
        case .white:
            whiteTime += Double(control.increment)
            whiteMoves += 1
        case .black:
            blackTime += Double(control.increment)
            blackMoves += 1
        }
        active = player.other
        lastTick = Date()
    }

    private func reset() {
        whiteTime = Double(control.minutes * 60)
        blackTime = Double(control.minutes * 60)
        whiteMoves = 0
        blackMoves = 0
        active = nil
        paused = false
        flagged = nil
    }
}

struct PlayerSide: View {
    let name: String
    let time: TimeInterval
    let moves: Int
    let isActive: Bool
    let flagged: Bool
    let inverted: Bool

    private var lowTime: Bool { time < 10 }

    private var background: Color {
        if flagged { return .red }
        if isActive && lowTime { return Int(time * 2) % 2 == 0 ? .red : .red.opacity(0.6) }
        if isActive { return .green.opacity(0.8) }
        return Color.secondary.opacity(0.15)
    }

    var body: some View {
        ZStack {
            background
            VStack(spacing: 8) {
                Text(formatted(time))
                    .font(.system(size: 88, weight: .semibold, design: .monospaced))
                    .foregroundStyle(isActive || flagged ? .white : .primary)
                HStack(spacing: 16) {
                    Text(name).font(.title3.bold())
                    Text("Moves: \(moves)")
                    if flagged {
                        Label("Flag fell", systemImage: "flag.fill")
                    }
                }
                .foregroundStyle(isActive || flagged ? .white.opacity(0.9) : .secondary)
            }
            .rotationEffect(.degrees(inverted ? 180 : 0))
        }
        .frame(maxWidth: .infinity, maxHeight: .infinity)
        .contentShape(Rectangle())
    }

    private func formatted(_ t: TimeInterval) -> String {
        let total = max(0, t)
        if total < 10 {
            return String(format: "%d.%d", Int(total), Int((total * 10).truncatingRemainder(dividingBy: 10)))
        }
        let minutes = Int(total) / 60
        let seconds = Int(total) % 60
        return String(format: "%d:%02d", minutes, seconds)
    }
}
