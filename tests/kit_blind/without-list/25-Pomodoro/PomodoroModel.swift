import Foundation
import Observation

enum SessionKind: String, CaseIterable {
    case focus = "Focus"
    case shortBreak = "Short Break"
    case longBreak = "Long Break"
}

@Observable
final class PomodoroModel {
    var focusMinutes = 25
    var shortBreakMinutes = 5
    var longBreakMinutes = 15
    var sessionsBeforeLongBreak = 4

    private(set) var kind: SessionKind = .focus
    private(set) var remaining: TimeInterval = 25 * 60
    private(set) var isRunning = false
    private(set) var completedInCycle = 0

    var completedToday: Int {
        get {
            let key = Self.todayKey
            return UserDefaults.standard.integer(forKey: key)
        }
        set {
            UserDefaults.standard.set(newValue, forKey: Self.todayKey)
        }
    }

    private var endDate: Date?
    private var timer: Timer?

    private static var todayKey: String {
        "pomodoro.count." + Date.now.formatted(.iso8601.year().month().day())
    }

    var duration: TimeInterval {
        switch kind {
        case .focus: return TimeInterval(focusMinutes * 60)
        case .shortBreak: return TimeInterval(shortBreakMinutes * 60)
        case .longBreak: return TimeInterval(longBreakMinutes * 60)
        }
    }

    var progress: Double {
        guard duration > 0 else { return 0 }
        return 1 - remaining / duration
    }

    var timeText: String {
        let total = Int(remaining.rounded(.up))
        return String(format: "%02d:%02d", total / 60, total % 60)
    }

    func start() {
        guard !isRunning else { return }
        endDate = Date().addingTimeInterval(remaining)
        isRunning = true
        timer = Timer.scheduledTimer(withTimeInterval: 0.25, repeats: true) { [weak self] _ in
            self?.tick()
        }
    }

    func pause() {
        timer?.invalidate()
        timer = nil
        isRunning = false
        endDate = nil
    }

    func reset() {
        pause()
        remaining = duration
    }

    func skip() {
        pause()
        advance(countFocus: false)
    }

    func switchTo(_ newKind: SessionKind) {
        pause()
        kind = newKind
        remaining = duration
    }

    private func tick() {
        guard let endDate else { return }
        remaining = max(0, endDate.timeIntervalSinceNow)
        if remaining <= 0 {
            pause()
            advance(countFocus: true)
        }
    }

    private func advance(countFocus: Bool) {
        if kind == .focus {
            if countFocus {
                completedToday += 1
            }
            completedInCycle += 1
            if completedInCycle >= sessionsBeforeLongBreak {
                completedInCycle = 0
                kind = .longBreak
            } else {
                kind = .shortBreak
            }
        } else {
            kind = .focus
        }
        remaining = duration
    }
}
