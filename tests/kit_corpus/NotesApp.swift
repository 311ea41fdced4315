import SwiftUI

struct Note: Identifiable, Codable {
    var id = UUID()
    var title: String
    var body: String
    var date = Date()
}

class NotesStore: ObservableObject {
    @Published var notes: [Note] = [] {
        didSet { save() }
    }
    private let url = FileManager.default.urls(for: .documentDirectory, in: .userDomainMask)[0].appendingPathComponent("notes.json")

    init() {
        if let data = try? Data(contentsOf: url), let decoded = try? JSONDecoder().decode([Note].self, from: data) {
            notes = decoded
        }
    }
    func save() {
        try? JSONEncoder().encode(notes).write(to: url)
    }
}

struct AppRoot: View {
    @StateObject private var store = NotesStore()
    @State private var selection: Note.ID?
    @State private var showingNew = false
    @State private var newTitle = ""

    var body: some View {
        NavigationSplitView {
            List(store.notes) { note in
                NavigationLink(value: note.id) {
                    VStack(alignment: .leading) {
                        Text(note.title).font(.headline)
                        Text(note.date, style: .date).font(.caption).foregroundStyle(.secondary)
                    }
                }
            }
            .navigationTitle("Notes")
            .toolbar {
                Button { showingNew = true } label: { Image(systemName: "plus") }
            }
        } detail: {
            Text("Select a note")
                .foregroundStyle(.secondary)
        }
        .sheet(isPresented: $showingNew) {
            VStack {
                TextField("Title", text: $newTitle)
                HStack {
                    Button("Cancel") { showingNew = false }
                    Button("Add") {
                        store.notes.append(Note(title: newTitle, body: ""))
                        newTitle = ""
                        showingNew = false
                    }
                    .keyboardShortcut(.defaultAction)
                }
            }
            .padding()
        }
    }
}
