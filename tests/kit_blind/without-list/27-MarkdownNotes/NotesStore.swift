import Foundation

struct Note: Identifiable, Hashable {
    let id: UUID
    var text: String
    var modified: Date
    var isPinned: Bool

    var title: String {
        let firstLine = text.split(separator: "\n", omittingEmptySubsequences: true).first.map(String.init) ?? ""
        let stripped = firstLine.trimmingCharacters(in: CharacterSet(charactersIn: "# ").union(.whitespaces))
        return stripped.isEmpty ? "New Note" : stripped
    }

    var preview: String {
        text.split(separator: "\n").dropFirst().first.map(String.init) ?? ""
    }
}

@MainActor
final class NotesStore: ObservableObject {
    @Published var notes: [Note] = []
    @Published var pinned: Set<UUID> {
        didSet { UserDefaults.standard.set(pinned.map(\.uuidString), forKey: "pinnedNotes") }
    }

    let folder: URL

    init() {
        let docs = FileManager.default.urls(for: .documentDirectory, in: .userDomainMask)[0]
        folder = docs.appendingPathComponent("MarkdownNotes", isDirectory: true)
        let ids = UserDefaults.standard.stringArray(forKey: "pinnedNotes") ?? []
        pinned = Set(ids.compactMap(UUID.init(uuidString:)))
        try? FileManager.default.createDirectory(at: folder, withIntermediateDirectories: true)
        loadAll()
    }

    var sortedNotes: [Note] {
        notes.sorted {
            if $0.isPinned != $1.isPinned { return $0.isPinned }
            return $0.modified > $1.modified
        }
    }

    func loadAll() {
        let files = (try? FileManager.default.contentsOfDirectory(at: folder,
                                                                  includingPropertiesForKeys: [.contentModificationDateKey])) ?? []
        notes = files
            .filter { $0.pathExtension == "md" }
            .compactMap { url in
                guard let id = UUID(uuidString: url.deletingPathExtension().lastPathComponent),
                      let text = try? String(contentsOf: url, encoding: .utf8) else { return nil }
                let date = (try? url.resourceValues(forKeys: [.contentModificationDateKey]).contentModificationDate) ?? .now
                return Note(id: id, text: text, modified: date, isPinned: pinned.contains(id))
            }
        if notes.isEmpty {
            _ = create(text: "# Welcome\n\nThis is **markdown**. Try _italics_, `code`, and [links](https://example.com).\n\n- Lists work too\n- Like this")
        }
    }

    func create(text: String = "# New Note\n\n") -> Note {
        let note = Note(id: UUID(), text: text, modified: .now, isPinned: false)
        notes.append(note)
        write(note)
        return note
    }

    func update(_ id: UUID, text: String) {
        guard let index = notes.firstIndex(where: { $0.id == id }) else { return }
        notes[index].text = text
        notes[index].modified = .now
        write(notes[index])
    }

    func togglePin(_ id: UUID) {
        guard let index = notes.firstIndex(where: { $0.id == id }) else { return }
        notes[index].isPinned.toggle()
        if notes[index].isPinned { pinned.insert(id) } else { pinned.remove(id) }
    }

    func delete(_ id: UUID) {
        notes.removeAll { $0.id == id }
        pinned.remove(id)
        try? FileManager.default.removeItem(at: url(for: id))
    }

    private func url(for id: UUID) -> URL {
        folder.appendingPathComponent(id.uuidString).appendingPathExtension("md")
    }

    private func write(_ note: Note) {
        do {
            try note.text.write(to: url(for: note.id), atomically: true, encoding: .utf8)
        } catch {
            print("Write failed: \(error)")
        }
    }
}
