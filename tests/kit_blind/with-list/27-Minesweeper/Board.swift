import Foundation

struct Cell: Identifiable {
    let id: Int
    var isMine = false
    var isRevealed = false
    var isFlagged = false
    var adjacent = 0
}

enum Difficulty: String, CaseIterable, Identifiable {
    case beginner = "Beginner"
    case intermediate = "Intermediate"
    case expert = "Expert"

    var id: String { rawValue }

    var size: (columns: Int, rows: Int, mines: Int) {
        switch self {
        case .beginner: return (9, 9, 10)
        case .intermediate: return (16, 16, 40)
        case .expert: return (30, 16, 99)
        }
    }
}

enum GameStatus {
    case waiting, playing, won, lost
}

final class MinesweeperGame: ObservableObject {
    @Published private(set) var cells: [Cell] = []
    @Published private(set) var status: GameStatus = .waiting
    @Published var difficulty: Difficulty = .beginner {
        didSet { newGame() }
    }
    @Published private(set) var startTime: Date?
    @Published private(set) var endTime: Date?

    var columns: Int { difficulty.size.columns }
    var rows: Int { difficulty.size.rows }
    var mineCount: Int { difficulty.size.mines }

    var flagsLeft: Int {
        mineCount - cells.filter(\.isFlagged).count
    }

    init() {
        newGame()
    }

    func newGame() {
        cells = (0..<(columns * rows)).map { Cell(id: $0) }
        status = .waiting
        startTime = nil
        endTime = nil
    }

    func neighbors(of index: Int) -> [Int] {
        let x = index % columns
        let y = index / columns
        var result: [Int] = []
        for dy in -1...1 {
            for dx in -1...1 where !(dx == 0 && dy == 0) {
                let nx = x + dx, ny = y + dy
                if nx >= 0, ny >= 0, nx < columns, ny < rows {
                    result.append(ny * columns + nx)
                }
            }
        }
        return result
    }

    private func placeMines(avoiding safeIndex: Int) {
        let forbidden = Set(neighbors(of: safeIndex) + [safeIndex])
        let candidates = cells.indices.filter { !forbidden.contains($0) }.shuffled()
        for i in candidates.prefix(mineCount) {
            cells[i].isMine = true
        }
        for i in cells.indices {
            cells[i].adjacent = neighbors(of: i).filter { cells[$0].isMine }.count
        }
    }

    func reveal(_ index: Int) {
        guard cells.indices.contains(index) else { return }
        guard status == .waiting || status == .playing else { return }
        guard !cells[index].isFlagged else { return }

        if status == .waiting {
            placeMines(avoiding: index)
            status = .playing
            startTime = Date()
        }

        if cells[index].isRevealed {
            chord(index)
            return
        }

        if cells[index].isMine {
            cells[index].isRevealed = true
            lose()
            return
        }

        var queue = [index]
        while let current = queue.popLast() {
            guard !cells[current].isRevealed, !cells[current].isFlagged else { continue }
            cells[current].isRevealed = true
            if cells[current].adjacent == 0 {
                queue.append(contentsOf: neighbors(of: current).filter { !cells[$0].isRevealed })
            }
        }
        checkWin()
    }

    /// Clicking a revealed number with the right number of flags around it opens the rest.
    private func chord(_ index: Int) {
        let around = neighbors(of: index)
        let flags = around.filter { cells[$0].isFlagged }.count
        guard flags == cells[index].adjacent, flags > 0 else { return }
        for n in around where !cells[n].isRevealed && !cells[n].isFlagged {
            reveal(n)
        }
    }

    func toggleFlag(_ index: Int) {
        guard cells.indices.contains(index), status == .playing || status == .waiting else { return }
        guard !cells[index].isRevealed else { return }
        cells[index].isFlagged.toggle()
    }

    private func lose() {
        status = .lost
        endTime = Date()
        for i in cells.indices where cells[i].isMine {
            cells[i].isRevealed = true
        }
    }

    private func checkWin() {
        let unrevealedSafe = cells.filter { !$0.isMine && !$0.isRevealed }.count
        if unrevealedSafe == 0 {
            status = .won
            endTime = Date()
            for i in cells.indices where cells[i].isMine {
                cells[i].isFlagged = true
            }
        }
    }
}
