import Foundation
import Observation

struct GridPoint: Hashable {
    var x: Int
    var y: Int
}

enum Direction {
    case up, down, left, right

    var delta: GridPoint {
        switch self {
        case .up: return GridPoint(x: 0, y: -1)
        case .down: return GridPoint(x: 0, y: 1)
        case .left: return GridPoint(x: -1, y: 0)
        case .right: return GridPoint(x: 1, y: 0)
        }
    }

    var opposite: Direction {
        switch self {
        case .up: return .down
        case .down: return .up
        case .left: return .right
        case .right: return .left
        }
    }
}

enum GameState {
    case ready, running, paused, over
}

@Observable
final class SnakeGame {
    let columns = 24
    let rows = 18

    private(set) var snake: [GridPoint] = []
    private(set) var apple = GridPoint(x: 0, y: 0)
    private(set) var state: GameState = .ready
    private(set) var score = 0
    var highScore: Int = UserDefaults.app.integer(forKey: "snakeHighScore")

    private var direction: Direction = .right
    private var queuedDirection: Direction?
    private var timer: Timer?

    var tickInterval: TimeInterval {
        max(0.05, 0.16 - Double(score) * 0.004)
    }

    init() {
        reset()
    }

    func reset() {
        let mid = GridPoint(x: columns / 2, y: rows / 2)
        snake = [mid, GridPoint(x: mid.x - 1, y: mid.y), GridPoint(x: mid.x - 2, y: mid.y)]
        direction = .right
        queuedDirection = nil
        score = 0
        placeApple()
        state = .ready
        timer?.invalidate()
    }

    func start() {
        if state == .over { reset() }
        state = .running
        scheduleTimer()
    }

    func togglePause() {
        switch state {
        case .running:
            state = .paused
            timer?.invalidate()
        case .paused, .ready, .over:
            start()
        }
    }

    func turn(_ newDirection: Direction) {
        if state == .ready { start() }
        guard state == .running else { return }
        let current = queuedDirection ?? direction
        if newDirection != current.opposite {
            queuedDirection = newDirection
        }
    }

    private func scheduleTimer() {
        timer?.invalidate()
        timer = Timer.scheduledTimer(withTimeInterval: tickInterval, repeats: true) { [weak self] _ in
            self?.step()
        }
    }

    private func step() {
        guard state == .running, let head = snake.first else { return }
        if let queued = queuedDirection {
            direction = queued
            queuedDirection = nil
        }
        let next = GridPoint(x: head.x + direction.delta.x, y: head.y + direction.delta.y)

        if next.x < 0 || next.y < 0 || next.x >= columns || next.y >= rows || snake.dropLast().contains(next) {
            gameOver()
            return
        }

        snake.insert(next, at: 0)
        if next == apple {
            score += 1
            placeApple()
            scheduleTimer() // speed up
        } else {
            snake.removeLast()
        }
    }

    private func gameOver() {
        state = .over
        timer?.invalidate()
        if score > highScore {
            highScore = score
            UserDefaults.app.set(score, forKey: "snakeHighScore")
        }
    }

    private func placeApple() {
        let occupied = Set(snake)
        var free: [GridPoint] = []
        for y in 0..<rows {
            for x in 0..<columns where !occupied.contains(GridPoint(x: x, y: y)) {
                free.append(GridPoint(x: x, y: y))
            }
        }
        if let spot = free.randomElement() {
            apple = spot
        }
    }
}
