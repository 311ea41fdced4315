import Foundation
import Observation

@Observable
final class MetronomeEngine {
    var bpm: Double = 100 {
        didSet {
            UserDefaults.app.set(bpm, forKey: "bpm")
            if isRunning { restartTimer() }
        }
    }
    var beatsPerBar: Int = 4 {
        didSet { UserDefaults.app.set(beatsPerBar, forKey: "beatsPerBar") }
    }
    var accentFirstBeat = true
    private(set) var isRunning = false
    private(set) var currentBeat = 0
    private(set) var barCount = 0

    private var timer: Timer?
    private var tapTimes: [Date] = []

    init() {
        let saved = UserDefaults.app.double(forKey: "bpm")
        if saved >= 40 { bpm = saved }
        let beats = UserDefaults.app.integer(forKey: "beatsPerBar")
        if beats > 0 { beatsPerBar = beats }
    }

    var interval: TimeInterval { 60.0 / max(bpm, 1) }

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

    func toggle() {
        isRunning ? stop() : start()
    }

    func start() {
        isRunning = true
        currentBeat = 0
        barCount = 0
        tick()
        restartTimer()
    }

    func stop() {
        isRunning = false
        timer?.invalidate()
        timer = nil
        currentBeat = 0
    }

    private func restartTimer() {
        timer?.invalidate()
        timer = Timer.scheduledTimer(withTimeInterval: interval, repeats: true) { [weak self] _ in
            self?.advance()
        }
    }

    private func advance() {
        currentBeat += 1
        if currentBeat > beatsPerBar {
            currentBeat = 1
            barCount += 1
        }
    }

    private func tick() {
        currentBeat = 1
    }

    func tap() {
        let now = Date()
        if let last = tapTimes.last, now.timeIntervalSince(last) > 2 {
            tapTimes.removeAll()
        }
        tapTimes.append(now)
        if tapTimes.count > 6 { tapTimes.removeFirst() }
        guard tapTimes.count >= 2,
              let first = tapTimes.first,
              let last = tapTimes.last else { return }
        let average = last.timeIntervalSince(first) / Double(tapTimes.count - 1)
        guard average > 0 else { return }
        bpm = min(220, max(40, (60 / average).rounded()))
    }
}
