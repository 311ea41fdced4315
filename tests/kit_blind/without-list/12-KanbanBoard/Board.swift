import Foundation
import SwiftUI

enum Column: String, Codable, CaseIterable, Identifiable {
    case todo = "To Do"
    case doing = "In Progress"
    case done = "Done"

    var id: String { rawValue }

    var tint: Color {
        switch self {
        case .todo: return .blue
        case .doing: return .orange
        case .done: return .green
        }
    }
}

struct KanbanCard: Identifiable, Codable, Equatable {
    var id = UUID()
    var title: String
    var notes: String = ""
    var column: Column = .todo
    var color: Int = 0
}

@Observable
final class BoardStore {
    var cards: [KanbanCard] = [] {
        didSet { save() }
    }

    private let storageURL: URL = {
        let base = FileManager.default.urls(for: .applicationSupportDirectory, in: .userDomainMask).first!
        let folder = base.appendingPathComponent("Kanban")
        try? FileManager.default.createDirectory(at: folder, withIntermediateDirectories: true)
        return folder.appendingPathComponent("board.json")
    }()

    init() {
        if let data = try? Data(contentsOf: storageURL),
           let decoded = try? JSONDecoder().decode([KanbanCard].self, from: data) {
            cards = decoded
        } else {
            cards = [
                KanbanCard(title: "Sketch the layout", column: .done),
                KanbanCard(title: "Write the copy", column: .doing),
                KanbanCard(title: "Pick a colour scheme"),
                KanbanCard(title: "Ship it 🚀")
            ]
        }
    }

    func cards(in column: Column) -> [KanbanCard] {
        cards.filter { $0.column == column }
    }

    func move(cardID: UUID, to column: Column) {
        guard let index = cards.firstIndex(where: { $0.id == cardID }) else { return }
        var card = cards.remove(at: index)
        card.column = column
        cards.append(card)
    }

    func add(title: String, to column: Column) {
        cards.append(KanbanCard(title: title, column: column))
    }

    func delete(_ card: KanbanCard) {
        cards.removeAll { $0.id == card.id }
    }

    private func save() {
        do {
            let data = try JSONEncoder().encode(cards)
            try data.write(to: storageURL)
        } catch {
            print("Could not save board: \(error)")
        }
    }
}
