import SwiftUI
import Observation

enum Column: String, Codable, CaseIterable, Identifiable {
    case todo = "To Do"
    case doing = "In Progress"
    case done = "Done"

    var id: String { rawValue }

    var tint: Color {
        switch self {
        case .todo: return .gray
        case .doing: return .orange
        case .done: return .green
        }
    }

    var next: Column? {
        switch self {
        case .todo: return .doing
        case .doing: return .done
        case .done: return nil
        }
    }

    var previous: Column? {
        switch self {
        case .todo: return nil
        case .doing: return .todo
        case .done: return .doing
        }
    }
}

enum LabelColor: String, Codable, CaseIterable, Identifiable {
    case none, red, orange, yellow, green, blue, purple
    var id: String { rawValue }
    var color: Color {
        switch self {
        case .none: return .clear
        case .red: return .red
        case .orange: return .orange
        case .yellow: return .yellow
        case .green: return .green
        case .blue: return .blue
        case .purple: return .purple
        }
    }
}

struct Card: Identifiable, Codable, Equatable {
    var id = UUID()
    var title: String
    var details: String = ""
    var label: LabelColor = .none
    var column: Column = .todo
}

@Observable
final class Board {
    var cards: [Card] = [] {
        didSet { save() }
    }

    init() {
        if let data = UserDefaults.app.data(forKey: "kanban.cards"),
           let saved = try? JSONDecoder().decode([Card].self, from: data) {
            cards = saved
        } else {
            cards = [
                Card(title: "Sketch app layout", label: .blue, column: .done),
                Card(title: "Write onboarding copy", details: "Three short screens", label: .purple, column: .doing),
                Card(title: "Fix login bug", details: "Happens after password reset", label: .red),
                Card(title: "Plan sprint review")
            ]
        }
    }

    func cards(in column: Column) -> [Card] {
        cards.filter { $0.column == column }
    }

    func move(_ card: Card, to column: Column) {
        guard let i = cards.firstIndex(where: { $0.id == card.id }) else { return }
        var moved = cards.remove(at: i)
        moved.column = column
        cards.append(moved)
    }

    func update(_ card: Card) {
        guard let i = cards.firstIndex(where: { $0.id == card.id }) else { return }
        cards[i] = card
    }

    func delete(_ card: Card) {
        cards.removeAll { $0.id == card.id }
    }

    private func save() {
        if let data = try? JSONEncoder().encode(cards) {
            UserDefaults.app.set(data, forKey: "kanban.cards")
        }
    }
}
