import SwiftUI

struct AppRoot: View {
    @StateObject private var game = MinesweeperGame()
    @State private var flagMode = false
    @AppStorage("bestBeginner") private var bestBeginner = 0
    @AppStorage("bestIntermediate") private var bestIntermediate = 0
    @AppStorage("bestExpert") private var bestExpert = 0

    var body: some View {
        VStack(spacing: 12) {
            HStack {
                Picker("Difficulty", selection: $game.difficulty) {
                    ForEach(Difficulty.allCases) { Text($0.rawValue).tag($0) }
                }
                .pickerStyle(.segmented)
                .labelsHidden()
                .frame(width: 320)
                Spacer()
                Toggle(isOn: $flagMode) {
                    Label("Flag mode", systemImage: "flag.fill")
                }
                .toggleStyle(.button)
                .keyboardShortcut("f", modifiers: [])
                .help("When on, clicks place flags (F)")
            }

            HStack {
                Label("\(game.flagsLeft)", systemImage: "flag.fill")
                    .foregroundStyle(.red)
                    .font(.title2.monospacedDigit().bold())
                    .frame(width: 90, alignment: .leading)
                Spacer()
                Button {
                    game.newGame()
                } label: {
                    Text(faceEmoji)
                        .font(.system(size: 30))
                }
                .buttonStyle(.plain)
                .keyboardShortcut("n", modifiers: .command)
                Spacer()
                TimelineView(.periodic(from: .now, by: 1)) { context in
                    Label("\(elapsedSeconds(now: context.date))", systemImage: "timer")
                        .font(.title2.monospacedDigit().bold())
                        .frame(width: 90, alignment: .trailing)
                }
            }

            GeometryReader { geo in
                let cellSize = max(14, min(36, min(geo.size.width / CGFloat(game.columns), geo.size.height / CGFloat(game.rows))))
                VStack(spacing: 0) {
                    Grid(horizontalSpacing: 0, verticalSpacing: 0) {
                        ForEach(0..<game.rows, id: \.self) { row in
                            GridRow {
                                ForEach(0..<game.columns, id: \.self) { col in
                                    let index = row * game.columns + col
                                    if index < game.cells.count {
                                        CellView(cell: game.cells[index], size: cellSize, gameLost: game.status == .lost)
                                            .onTapGesture {
                                                if flagMode {
                                                    game.toggleFlag(index)
                                                } else {
                                                    game.reveal(index)
                                                }
                                            }
                                    }
                                }
                            }
                        }
                    }
                    .border(Color.gray)
                }
                .frame(width: geo.size.width, height: geo.size.height)
            }

            Text(statusText)
                .font(.headline)
                .foregroundStyle(game.status == .won ? .green : game.status == .lost ? .red : .secondary)
        }
        .padding()
        .onChange(of: game.status) { _, newStatus in
            if newStatus == .won { recordBest() }
        }
    }

    private var faceEmoji: String {
        switch game.status {
        case .won: return "😎"
        case .lost: return "😵"
        default: return "🙂"
        }
    }

    private var statusText: String {
        switch game.status {
        case .waiting: return "Click any cell to start. Press F (or the Flag button) to switch between revealing and flagging."
        case .playing: return "Good luck!"
        case .won: return "You cleared the field in \(elapsedSeconds(now: Date())) s! Best: \(best)s"
        case .lost: return "Boom! Click the face to try again."
        }
    }

    private var best: Int {
        switch game.difficulty {
        case .beginner: return bestBeginner
        case .intermediate: return bestIntermediate
        case .expert: return bestExpert
        }
    }

    private func recordBest() {
        let t = elapsedSeconds(now: Date())
        switch game.difficulty {
        case .beginner: if bestBeginner == 0 || t < bestBeginner { bestBeginner = t }
        case .intermediate: if bestIntermediate == 0 || t < bestIntermediate { bestIntermediate = t }
        case .expert: if bestExpert == 0 || t < bestExpert { bestExpert = t }
        }
    }

    private func elapsedSeconds(now: Date) -> Int {
        guard let start = game.startTime else { return 0 }
        let end = game.endTime ?? now
        return min(999, Int(end.timeIntervalSince(start)))
    }
}

struct CellView: View {
    let cell: Cell
    let size: CGFloat
    let gameLost: Bool

    private let numberColors: [Color] = [.clear, .blue, .green, .red, .purple, .brown, .teal, .black, .gray]

    var body: some View {
        ZStack {
            if cell.isRevealed {
                Rectangle()
                    .fill(cell.isMine ? Color.red.opacity(0.7) : Color(white: 0.85))
                if cell.isMine {
                    Image(systemName: "circle.hexagongrid.fill")
                        .font(.system(size: size * 0.55))
                        .foregroundStyle(.black)
                } else if cell.adjacent > 0 {
                    Text("\(cell.adjacent)")
                        .font(.system(size: size * 0.55, weight: .bold, design: .rounded))
                        .foregroundStyle(numberColors[min(cell.adjacent, 8)])
                }
            } else {
                Rectangle()
                    .fill(LinearGradient(colors: [Color(white: 0.75), Color(white: 0.6)], startPoint: .topLeading, endPoint: .bottomTrailing))
                if cell.isFlagged {
                    Image(systemName: "flag.fill")
                        .font(.system(size: size * 0.5))
                        .foregroundStyle(gameLost && !cell.isMine ? .orange : .red)
                }
            }
        }
        .frame(width: size, height: size)
        .overlay(Rectangle().stroke(Color.gray.opacity(0.6), lineWidth: 0.5))
        .contentShape(Rectangle())
    }
}
