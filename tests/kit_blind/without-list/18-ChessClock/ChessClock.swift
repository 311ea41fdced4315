import SwiftUI
import Combine

enum Player {
    case white, black

    var other: Player { self == .white ? .black : .white }
}

struct TimeControl: Hashable, Identifiable {
    let minutes: Int
    let increment: Int

    var id: String { name }
    var name: String { "\(minutes) + \(increment)" }

    static let presets: [TimeControl] = [
        TimeControl(minutes: 1, increment: 0),
        TimeControl(minutes: 3, increment: 2),
        TimeControl(minutes: 5, increment: 0),
        TimeControl(minutes: 10, increment: 5),
        TimeControl(minutes: 15, increment: 10),
        TimeControl(minutes: 30, increment: 0)
    ]
}

@Observable
final class ChessClockModel {
    var control = TimeControl(minutes: 5, increment: 0)
    var whiteTime: TimeInterval = 300
    var blackTime: TimeInterval = 300
    var active: Player?
    var isPaused = false
    var flagged: Player?
    var whiteMoves = 0
    var blackMoves = 0

    private var lastTick: Date?

    func reset() {
        whiteTime = TimeInterval(control.minutes * 60)
        blackTime = TimeInterval(control.minutes * 60)
        active = nil
        isPaused = false
        flagged = nil
        whiteMoves = 0
        blackMoves = 0
        lastTick = nil
    }

    func press(by player: Player) {
        guard flagged == nil else { return }
        if active == nil {
            active = player.other
            lastTick = .now
            return
        }
        guard active == player, !isPaused else { return }
        switch player {
        case .white:
            whiteTime += TimeInterval(control.increment)
            whiteMoves += 1
        case .black:
            blackTime += TimeInterval(control.increment)
            blackMoves += 1
        }
        active = player.other
        lastTick = .now
    }

    func togglePause() {
        guard active != nil, flagged == nil else { return }
        isPaused.toggle()
        lastTick = isPaused ? nil : .now
    }

    func tick(now: Date) {
        guard let player = active, !isPaused, flagged == nil, let last = lastTick else { return }
        let elapsed = now.timeIntervalSince(last)
        lastTick = now
        switch player {
        case .white:
            whiteTime = max(0, whiteTime - elapsed)
            if whiteTime == 0 { flagged = .white }
        case .black:
            blackTime = max(0, blackTime - elapsed)
            if blackTime == 0 { flagged = .black }
        }
    }
}

struct AppRoot: View {
    @State private var clock = ChessClockModel()
    private let ticker = Timer.publish(every: 0.05, on: .main, in: .common).autoconnect()

    var body: some View {
        VStack(spacing: 0) {
            HStack(spacing: 0) {
                ClockFace(player: .white,
                          time: clock.whiteTime,
                          moves: clock.whiteMoves,
                          isActive: clock.active == .white,
                          isFlagged: clock.flagged == .white,
                          hint: "Press A")
                    .onTapGesture { clock.press(by: .white) }

                ClockFace(player: .black,
                          time: clock.blackTime,
                          moves: clock.blackMoves,
                          isActive: clock.active == .black,
                          isFlagged: clock.flagged == .black,
                          hint: "Press L")
                    .onTapGesture { clock.press(by: .black) }
            }
            .animation(.easeInOut(duration: 0.2), value: clock.active)
            .animation(.easeInOut, value: clock.flagged)

            HStack(spacing: 16) {
                Picker("Time control", selection: Binding(
                    get: { clock.control },
                    set: { clock.control = $0; clock.reset() }
                )) {
                    ForEach(TimeControl.presets) { preset in
                        Text(preset.name).tag(preset)
                    }
                }
                .frame(width: 200)
                .disabled(clock.active != nil && clock.flagged == nil && !clock.isPaused)

                Spacer()

                Button {
                    clock.togglePause()
                } label: {
                    Label(clock.isPaused ? "Resume" : "Pause",
                          systemImage: clock.isPaused ? "play.fill" : "pause.fill")
                }
                .keyboardShortcut(.space, modifiers: [])
                .disabled(clock.active == nil || clock.flagged != nil)

                Button {
                    clock.reset()
                } label: {
                    Label("Reset", systemImage: "arrow.counterclockwise")
                }
                .keyboardShortcut("r", modifiers: .command)
            }
            .padding()
            .background(.bar)

            // Hidden buttons to catch keyboard shortcuts for each player
            HStack {
                Button("White") { clock.press(by: .white) }
                    .keyboardShortcut("a", modifiers: [])
                Button("Black") { clock.press(by: .black) }
                    .keyboardShortcut("l", modifiers: [])
            }
            .frame(width: 0, height: 0)
            .opacity(0)
        }
        .frame(minWidth: 640, minHeight: 400)
        .onReceive(ticker) { clock.tick(now: $0) }
    }
}

struct ClockFace: View {
    let player: Player
    let time: TimeInterval
    let moves: Int
    let isActive: Bool
    let isFlagged: Bool
    let hint: String

    private var formatted: String {
        let total = Int(time.rounded(.up))
        let minutes = total / 60
        let seconds = total % 60
        if time < 10 && time > 0 {
            return String(format: "%d.%01d", Int(time), Int((time - floor(time)) * 10))
        }
        return String(format: "%d:%02d", minutes, seconds)
    }

    private var background: Color {
        if isFlagged { return .red }
        if isActive { return player == .white ? Color(white: 0.95) : Color(white: 0.15) }
        return player == .white ? Color(white: 0.8) : Color(white: 0.35)
    }

    private var foreground: Color {
        if isFlagged { return .white }
        return player == .white ? .black : .white
    }

    var body: some View {
        ZStack {
            background
            VStack(spacing: 10) {
                Text(player == .white ? "White" : "Black")
                    .font(.title3.weight(.medium))
                Text(formatted)
                    .font(.system(size: 72, weight: .bold, design: .monospaced))
                    .minimumScaleFactor(0.4)
                    .lineLimit(1)
                if isFlagged {
                    Label("Flag fell", systemImage: "flag.fill")
                        .font(.headline)
                } else {
                    Text("Moves: \(moves) · \(hint)")
                        .font(.caption)
                        .opacity(0.7)
                }
            }
            .foregroundStyle(foreground)
            .padding()
        }
        .overlay(
            Rectangle()
                .strokeBorder(Color.accentColor, lineWidth: isActive ? 6 : 0)
        )
        .contentShape(Rectangle())
    }
}
