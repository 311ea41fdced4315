import Foundation
import SwiftUI

struct CalendarEvent: Identifiable, Codable, Hashable {
    var id = UUID()
    var title: String
    var day: Date
    var hour: Int
    var minute: Int
    var colorName: String = "blue"

    var color: Color {
        switch colorName {
        case "red": return .red
        case "green": return .green
        case "orange": return .orange
        case "purple": return .purple
        default: return .blue
        }
    }

    var timeText: String {
        String(format: "%02d:%02d", hour, minute)
    }
}

final class CalendarModel: ObservableObject {
    @Published var displayedMonth: Date
    @Published var selectedDay: Date
    @Published var events: [CalendarEvent] = [] {
        didSet {
            if let data = try? JSONEncoder().encode(events) {
                UserDefaults.app.set(data, forKey: "calendarEvents")
            }
        }
    }

    let calendar = Calendar.current

    init() {
        let today = Calendar.current.startOfDay(for: Date())
        selectedDay = today
        displayedMonth = Calendar.current.date(from: Calendar.current.dateComponents([.year, .month], from: today)) ?? today
        if let data = UserDefaults.app.data(forKey: "calendarEvents"),
           let saved = try? JSONDecoder().decode([CalendarEvent].self, from: data) {
            events = saved
        }
    }

    /// Dates to show in the grid, including leading blanks as nil.
    var gridDays: [Date?] {
        guard let range = calendar.range(of: .day, in: .month, for: displayedMonth) else { return [] }
        let firstWeekday = calendar.component(.weekday, from: displayedMonth)
        let leading = (firstWeekday - calendar.firstWeekday + 7) % 7
        var days: [Date?] = Array(repeating: nil, count: leading)
        for day in range {
            days.append(calendar.date(byAdding: .day, value: day - 1, to: displayedMonth))
        }
        while days.count % 7 != 0 { days.append(nil) }
        return days
    }

    var weekdaySymbols: [String] {
        let symbols = calendar.shortWeekdaySymbols
        let start = calendar.firstWeekday - 1
        return Array(symbols[start...] + symbols[..<start])
    }

    func events(on day: Date) -> [CalendarEvent] {
        events
            .filter { calendar.isDate($0.day, inSameDayAs: day) }
            .sorted { ($0.hour, $0.minute) < ($1.hour, $1.minute) }
    }

    func changeMonth(by offset: Int) {
        if let m = calendar.date(byAdding: .month, value: offset, to: displayedMonth) {
            displayedMonth = m
        }
    }

    func goToToday() {
        let today = calendar.startOfDay(for: Date())
        selectedDay = today
        displayedMonth = calendar.date(from: calendar.dateComponents([.year, .month], from: today)) ?? today
    }
}
