import Foundation
import Combine

final class Stopwatch: ObservableObject {
    @Published private(set) var elapsed: TimeInterval = 0
    @Published private(set) var laps: [TimeInterval] = []
    @Published private(set) var isRunning = false

    private var startDate: Date?
    private var accumulated: TimeInterval = 0
    private var lapStart: TimeInterval = 0
    private var cancellable: AnyCancellable?

    var currentLap: TimeInterval { elapsed - lapStart }

    func start() {
        guard !isRunning else { return }
        startDate = Date()
        isRunning = true
        cancellable = Timer.publish(every: 0.01, on: .main, in: .common)
            .autoconnect()
            .sink { [weak self] _ in self?.update() }
    }

    func stop() {
        guard isRunning else { return }
        update()
        accumulated = elapsed
        startDate = nil
        isRunning = false
        cancellable?.cancel()
    }

    func lap() {
        guard isRunning else { return }
        laps.insert(currentLap, at: 0)
        lapStart = elapsed
    }

    func reset() {
        stop()
        elapsed = 0
        accumulated = 0
        lapStart = 0
        laps.removeAll()
    }

    private func update() {
        guard let startDate else { return }
        elapsed = accumulated + Date().timeIntervalSince(startDate)
    }
}

extension TimeInterval {
    var stopwatchString: String {
        let hundredths = Int((self * 100).rounded(.down)) % 100
        let totalSeconds = Int(self)
        let seconds = totalSeconds % 60
        let minutes = (totalSeconds / 60) % 60
        let hours = totalSeconds / 3600
        if hours > 0 {
            return String(format: "%d:%02d:%02d.%02d", hours, minutes, seconds, hundredths)
        }
        return String(format: "%02d:%02d.%02d", minutes, seconds, hundredths)
    }
}
