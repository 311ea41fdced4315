import Foundation

enum Mood: String, Codable, CaseIterable, Identifiable {
    case great, good, okay, bad, awful

    var id: String { rawValue }

    var emoji: String {
        switch self {
        case .great: return "😄"
        case .good: return "🙂"
        case .okay: return "😐"
        case .bad: return "🙁"
        case .awful: return "😫"
        }
    }
}

struct JournalEntry: Identifiable, Codable, Hashable {
    var id = UUID()
    var date: Date = .now
    var title: String = ""
    var body: String = ""
    var mood: Mood = .okay
}

@Observable
final class Journal {
    var entries: [JournalEntry] = []

    private var fileURL: URL {
        URL.documentsDirectory.appending(path: "journal.json")
    }

    init() {
        load()
    }

    func load() {
        guard let data = try? Data(contentsOf: fileURL) else { return }
        let decoder = JSONDecoder()
        decoder.dateDecodingStrategy = .iso8601
        entries = (try? decoder.decode([JournalEntry].self, from: data)) ?? []
    }

    func save() {
        let encoder = JSONEncoder()
        encoder.dateEncodingStrategy = .iso8601
        encoder.outputFormatting = .prettyPrinted
        do {
            try encoder.encode(entries).write(to: fileURL, options: .atomic)
        } catch {
            print("Save failed:", error.localizedDescription)
        }
    }

    @discardableResult
    func newEntry() -> JournalEntry {
        let entry = JournalEntry()
        entries.insert(entry, at: 0)
        save()
        return entry
    }

    func delete(id: JournalEntry.ID) {
        entries.removeAll { $0.id == id }
        save()
    }
}
