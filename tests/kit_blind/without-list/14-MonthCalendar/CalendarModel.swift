import Foundation

struct DayNote: Identifiable, Codable, Hashable {
    var id = UUID()
    var text: String
}

final class NotesStore: ObservableObject {
    @Published private(set) var notes: [String: [DayNote]] = [:]

    private let defaultsKey = "calendar.notes"

    static let keyFormatter: DateFormatter = {
        let formatter = DateFormatter()
        formatter.calendar = Calendar(identifier: .gregorian)
        formatter.dateFormat = "yyyy-MM-dd"
        return formatter
    }()

    init() {
        if let data = UserDefaults.standard.data(forKey: defaultsKey),
           let decoded = try? JSONDecoder().decode([String: [DayNote]].self, from: data) {
            notes = decoded
        }
    }

    func notes(for date: Date) -> [DayNote] {
        notes[Self.keyFormatter.string(from: date)] ?? []
    }

    func add(_ text: String, to date: Date) {
        let key = Self.keyFormatter.string(from: date)
        notes[key, default: []].append(DayNote(text: text))
        persist()
    }

    func remove(_ note: DayNote, from date: Date) {
        let key = Self.keyFormatter.string(from: date)
        notes[key]?.removeAll { $0.id == note.id }
        if notes[key]?.isEmpty == true {
            notes[key] = nil
        }
        persist()
    }

    private func persist() {
        if let data = try? JSONEncoder().encode(notes) {
            UserDefaults.standard.set(data, forKey: defaultsKey)
        }
    }
}

extension Calendar {
    func daysInMonthGrid(for month: Date) -> [Date?] {
        guard let interval = dateInterval(of: .month, for: month),
              let dayCount = range(of: .day, in: .month, for: month)?.count else { return [] }

        let firstWeekday = component(.weekday, from: interval.start)
        let leadingBlanks = (firstWeekday - self.firstWeekday + 7) % 7

        var cells: [Date?] = Array(repeating: nil, count: leadingBlanks)
        for offset in 0..<dayCount {
            cells.append(date(byAdding: .day, value: offset, to: interval.start))
        }
        while cells.count % 7 != 0 {
            cells.append(nil)
        }
        return cells
    }

    var orderedShortWeekdaySymbols: [String] {
        let symbols = shortWeekdaySymbols
        let start = firstWeekday - 1
        return Array(symbols[start...] + symbols[..<start])
    }
}
