import Foundation
import SwiftUI

struct Habit: Identifiable, Codable, Hashable {
    var id = UUID()
    var name: String
    var icon: String
    var colorIndex: Int
    var completedDays: Set<String> = []

    static let palette: [Color] = [.blue, .green, .orange, .pink, .purple, .teal, .red, .indigo]

    var color: Color {
        Habit.palette[colorIndex % Habit.palette.count]
    }

    func isDone(on date: Date) -> Bool {
        completedDays.contains(DayKey.string(for: date))
    }

    var currentStreak: Int {
        var streak = 0
        var day = Calendar.current.startOfDay(for: Date())
        if !isDone(on: day) {
            // Today not done yet still counts yesterday's streak
            guard let yesterday = Calendar.current.date(byAdding: .day, value: -1, to: day) else { return 0 }
            day = yesterday
        }
        while isDone(on: day) && streak < 3650 {
            streak += 1
            guard let previous = Calendar.current.date(byAdding: .day, value: -1, to: day) else { break }
            day = previous
        }
        return streak
    }
}

enum DayKey {
    static let formatter: DateFormatter = {
        let f = DateFormatter()
        f.dateFormat = "yyyy-MM-dd"
        return f
    }()

    static func string(for date: Date) -> String {
        formatter.string(from: date)
    }
}

final class HabitStore: ObservableObject {
    @Published var habits: [Habit] = [] {
        didSet { persist() }
    }

    init() {
        if let data = UserDefaults.app.data(forKey: "habits"),
           let saved = try? JSONDecoder().decode([Habit].self, from: data) {
            habits = saved
        } else {
            habits = [
                Habit(name: "Drink water", icon: "drop.fill", colorIndex: 0),
                Habit(name: "Read 20 pages", icon: "book.fill", colorIndex: 2)
            ]
        }
    }

    func toggle(_ habit: Habit, on date: Date) {
        guard let i = habits.firstIndex(where: { $0.id == habit.id }) else { return }
        let key = DayKey.string(for: date)
        if habits[i].completedDays.contains(key) {
            habits[i].completedDays.remove(key)
        } else {
            habits[i].completedDays.insert(key)
        }
    }

    private func persist() {
        if let data = try? JSONEncoder().encode(habits) {
            UserDefaults.app.set(data, forKey: "habits")
        }
    }
}
