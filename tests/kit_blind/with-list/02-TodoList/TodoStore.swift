import SwiftUI
import Observation

struct TodoItem: Identifiable, Codable, Equatable {
    var id = UUID()
    var title: String
    var isDone = false
    var priority: Priority = .normal
    var createdAt = Date()

    enum Priority: Int, Codable, CaseIterable, Identifiable {
        case low, normal, high
        var id: Int { rawValue }
        var label: String {
            switch self {
            case .low: return "Low"
            case .normal: return "Normal"
            case .high: return "High"
            }
        }
        var color: Color {
            switch self {
            case .low: return .gray
            case .normal: return .blue
            case .high: return .red
            }
        }
    }
}

@Observable
final class TodoStore {
    var items: [TodoItem] = [] {
        didSet { save() }
    }

    private let key = "todo.items"

    init() {
        if let data = UserDefaults.app.data(forKey: key),
           let decoded = try? JSONDecoder().decode([TodoItem].self, from: data) {
            items = decoded
        }
    }

    func add(_ title: String, priority: TodoItem.Priority) {
        let trimmed = title.trimmingCharacters(in: .whitespacesAndNewlines)
        guard !trimmed.isEmpty else { return }
        items.insert(TodoItem(title: trimmed, priority: priority), at: 0)
    }

    func toggle(_ item: TodoItem) {
        guard let index = items.firstIndex(where: { $0.id == item.id }) else { return }
        items[index].isDone.toggle()
    }

    func delete(_ item: TodoItem) {
        items.removeAll { $0.id == item.id }
    }

    func clearCompleted() {
        items.removeAll { $0.isDone }
    }

    private func save() {
        if let data = try? JSONEncoder().encode(items) {
            UserDefaults.app.set(data, forKey: key)
        }
    }
}
