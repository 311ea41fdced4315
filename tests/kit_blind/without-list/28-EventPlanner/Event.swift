import Foundation

enum RSVP: String, Codable, CaseIterable, Identifiable {
    case pending = "Pending"
    case going = "Going"
    case maybe = "Maybe"
    case declined = "Declined"

    var id: String { rawValue }

    var symbol: String {
        switch self {
        case .pending: return "questionmark.circle"
        case .going: return "checkmark.circle.fill"
        case .maybe: return "circle.lefthalf.filled"
        case .declined: return "xmark.circle.fill"
        }
    }
}

struct Guest: Identifiable, Codable, Hashable {
    var id = UUID()
    var name: String
    var rsvp: RSVP = .pending
}

struct PlannedEvent: Identifiable, Codable, Hashable {
    var id = UUID()
    var title: String
    var start: Date
    var end: Date
    var location: String = ""
    var isAllDay = false
    var notes: String = ""
    var guests: [Guest] = []
    var emoji: String = "🎉"

    var isPast: Bool { end < .now }

    var daysUntil: Int {
        let calendar = Calendar.current
        return calendar.dateComponents([.day], from: calendar.startOfDay(for: .now), to: calendar.startOfDay(for: start)).day ?? 0
    }

    func count(_ rsvp: RSVP) -> Int {
        guests.filter { $0.rsvp == rsvp }.count
    }

    static func blank() -> PlannedEvent {
        let start = Calendar.current.date(byAdding: .day, value: 7, to: .now) ?? .now
        return PlannedEvent(title: "New Event", start: start, end: start.addingTimeInterval(2 * 3600))
    }
}
