import Foundation

struct Habit: Identifiable, Codable, Hashable {
    var id = UUID()
    var name: String
    var icon: String
    var completedDays: Set<String> = []

    static let dayFormatter: DateFormatter = {
        let f = DateFormatter()
        f.dateFormat = "yyyy-MM-dd"
        return f
    }()

    static func key(for date: Date) -> String {
        dayFormatter.string(from: date)
    }

    func isDone(on date: Date) -> Bool {
        completedDays.contains(Habit.key(for: date))
    }

    var currentStreak: Int {
        let calendar = Calendar.current
        var day = calendar.startOfDay(for: .now)
        if !isDone(on: day) {
            guard let yesterday = calendar.date(byAdding: .day, value: -1, to: day) else { return 0 }
            day = yesterday
        }
        var streak = 0
        while isDone(on: day) {
            streak += 1
            guard let previous = calendar.date(byAdding: .day, value: -1, to: day) else { break }
            day = previous
        }
        return streak
    }
}

final class HabitStore: ObservableObject {
    @Published var habits: [Habit] = [] {
        didSet { persist() }
    }

    private let url: URL = {
        let dir = FileManager.default.urls(for: .applicationSupportDirectory, in: .userDomainMask)[0]
            .appendingPathComponent("HabitTracker", isDirectory: true)
        try? FileManager.default.createDirectory(at: dir, withIntermediateDirectories: true)
        return dir.appendingPathComponent("habits.json")
    }()

    init() {
        if let data = try? Data(contentsOf: url),
           let saved = try? JSONDecoder().decode([Habit].self, from: data) {
            habits = saved
        } else {
            habits = [
                Habit(name: "Drink water", icon: "drop.fill"),
                Habit(name: "Read 20 pages", icon: "book.fill"),
                Habit(name: "Stretch", icon: "figure.walk")
            ]
        }
    }

    func toggle(_ habit: Habit, on date: Date) {
        guard let index = habits.firstIndex(of: habit) else { return }
        let key = Habit.key(for: date)
        if habits[index].completedDays.contains(key) {
            habits[index].completedDays.remove(key)
        } else {
            habits[index].completedDays.insert(key)
        }
    }

    private func persist() {
        do {
            let data = try JSONEncoder().encode(habits)
            try data.write(to: url, options: .atomic)
        } catch {
            print("Failed to save habits: \(error)")
        }
    }
}
