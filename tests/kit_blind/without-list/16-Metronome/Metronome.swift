import SwiftUI
import Combine

final class MetronomeEngine: ObservableObject {
    @Published var bpm: Double = 100 {
        didSet { if isRunning { restart() } }
    }
    @Published var beatsPerBar: Int = 4
    @Published private(set) var currentBeat: Int = 0
    @Published private(set) var isRunning = false
    @Published private(set) var tickCount = 0

    private var timer: AnyCancellable?
    private var tapTimes: [Date] = []

    var interval: TimeInterval { 60.0 / bpm }

    func toggle() {
        isRunning ? stop() : start()
    }

    func start() {
        isRunning = true
        currentBeat = 0
        tickCount = 0
        fire()
        schedule()
    }

    func stop() {
        isRunning = false
        timer?.cancel()
        timer = nil
    }

    private func restart() {
        timer?.cancel()
        schedule()
    }

    private func schedule() {
        timer = Timer.publish(every: interval, tolerance: 0.001, on: .main, in: .common)
            .autoconnect()
            .sink { [weak self] _ in
                self?.advance()
            }
    }

    private func advance() {
        currentBeat = (currentBeat + 1) % max(beatsPerBar, 1)
        fire()
    }

    private func fire() {
        tickCount += 1
    }

    func tap() {
        let now = Date()
        tapTimes = tapTimes.filter { now.timeIntervalSince($0) < 3 }
        tapTimes.append(now)
        guard tapTimes.count >= 2 else { return }
        let gaps = zip(tapTimes.dropFirst(), tapTimes).map { $0.timeIntervalSince($1) }
        let average = gaps.reduce(0, +) / Double(gaps.count)
        bpm = min(220, max(40, (60 / average).rounded()))
    }

    var tempoName: String {
        switch bpm {
        case ..<60: return "Largo"
        case 60..<76: return "Adagio"
        case 76..<108: return "Andante"
        case 108..<120: return "Moderato"
        case 120..<168: return "Allegro"
        case 168..<200: return "Presto"
        default: return "Prestissimo"
        }
    }
}
