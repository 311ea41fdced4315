import Foundation
import Observation

struct DrinkEntry: Codable, Identifiable {
    var id = UUID()
    var amount: Int
    var time: Date
}

@Observable
final class WaterStore {
    var entries: [DrinkEntry] = [] {
        didSet { save() }
    }
    var goal: Int {
        didSet { UserDefaults.app.set(goal, forKey: "waterGoal") }
    }

    init() {
        let savedGoal = UserDefaults.app.integer(forKey: "waterGoal")
        goal = savedGoal > 0 ? savedGoal : 2000
        if let data = UserDefaults.app.data(forKey: "waterEntries"),
           let saved = try? JSONDecoder().decode([DrinkEntry].self, from: data) {
            // keep roughly a month of history
            let cutoff = Calendar.current.date(byAdding: .day, value: -31, to: Date()) ?? .distantPast
            entries = saved.filter { $0.time > cutoff }
        }
    }

    var todayEntries: [DrinkEntry] {
        entries.filter { Calendar.current.isDateInToday($0.time) }.sorted { $0.time > $1.time }
    }

    var todayTotal: Int {
        todayEntries.reduce(0) { $0 + $1.amount }
    }

    var progress: Double {
        goal > 0 ? Double(todayTotal) / Double(goal) : 0
    }

    func add(_ amount: Int) {
        guard amount > 0 else { return }
        entries.append(DrinkEntry(amount: amount, time: Date()))
    }

    func remove(_ entry: DrinkEntry) {
        entries.removeAll { $0.id == entry.id }
    }

    func lastSevenDays() -> [(date: Date, total: Int)] {
        let cal = Calendar.current
        let today = cal.startOfDay(for: Date())
        return (0..<7).reversed().compactMap { offset in
            guard let day = cal.date(byAdding: .day, value: -offset, to: today) else { return nil }
            let total = entries.filter { cal.isDate($0.time, inSameDayAs: day) }.reduce(0) { $0 + $1.amount }
            return (day, total)
        }
    }

    private func save() {
        if let data = try? JSONEncoder().encode(entries) {
            UserDefaults.app.set(data, forKey: "waterEntries")
        }
    }
}
