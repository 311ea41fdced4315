import Foundation
import Observation

struct Note: Identifiable, Codable, Hashable {
    var id = UUID()
    var title: String
    var body: String
    var isPinned = false
    var modified = Date()

    var displayTitle: String {
        let t = title.trimmingCharacters(in: .whitespaces)
        return t.isEmpty ? "Untitled" : t
    }

    var preview: String {
        let firstLine = body.split(separator: "\n").first.map(String.init) ?? ""
        return firstLine.isEmpty ? "No additional text" : firstLine
    }
}

@Observable
final class NotesModel {
    var notes: [Note] = []
    var selection: Note.ID?
    var searchText = ""

    private let storageURL: URL

    init() {
        let base = FileManager.default.homeDirectoryForCurrentUser
            .appendingPathComponent(".local/share/\(AppInfo.name)", isDirectory: true)
        try? FileManager.default.createDirectory(at: base, withIntermediateDirectories: true)
        storageURL = base.appendingPathComponent("notes.json")
        load()
        if notes.isEmpty {
            notes = [Note(title: "Welcome", body: "This is your first note.\nStart typing to edit it.")]
        }
        selection = sortedNotes.first?.id
    }

    var sortedNotes: [Note] {
        let filtered = searchText.isEmpty ? notes : notes.filter {
            $0.title.localizedCaseInsensitiveContains(searchText) ||
            $0.body.localizedCaseInsensitiveContains(searchText)
        }
        return filtered.sorted {
            if $0.isPinned != $1.isPinned { return $0.isPinned }
            return $0.modified > $1.modified
        }
    }

    func binding(for id: Note.ID) -> Note? {
        notes.first { $0.id == id }
    }

    func update(_ id: Note.ID, title: String? = nil, body: String? = nil) {
        guard let i = notes.firstIndex(where: { $0.id == id }) else { return }
        if let title { notes[i].title = title }
        if let body { notes[i].body = body }
        notes[i].modified = Date()
        save()
    }

    func togglePin(_ id: Note.ID) {
        guard let i = notes.firstIndex(where: { $0.id == id }) else { return }
        notes[i].isPinned.toggle()
        save()
    }

    func newNote() {
        let note = Note(title: "", body: "")
        notes.append(note)
        selection = note.id
        searchText = ""
        save()
    }

    func delete(_ id: Note.ID) {
        notes.removeAll { $0.id == id }
        if selection == id {
            selection = sortedNotes.first?.id
        }
        save()
    }

    private func load() {
        guard let data = try? Data(contentsOf: storageURL),
              let decoded = try? JSONDecoder().decode([Note].self, from: data) else { return }
        notes = decoded
    }

    private func save() {
        guard let data = try? JSONEncoder().encode(notes) else { return }
        try? data.write(to: storageURL, options: .atomic)
    }
}
