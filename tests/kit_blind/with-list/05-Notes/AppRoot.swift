import SwiftUI

struct AppRoot: View {
    @State private var model = NotesModel()

    var body: some View {
        NavigationSplitView {
            VStack(spacing: 0) {
                HStack {
                    Image(systemName: "magnifyingglass")
                        .foregroundStyle(.secondary)
                    TextField("Search", text: $model.searchText)
                        .textFieldStyle(.plain)
                    if !model.searchText.isEmpty {
                        Button {
                            model.searchText = ""
                        } label: {
                            Image(systemName: "xmark.circle.fill")
                                .foregroundStyle(.secondary)
                        }
                        .buttonStyle(.plain)
                    }
                }
                .padding(8)
                .background(RoundedRectangle(cornerRadius: 8).fill(Color.secondary.opacity(0.1)))
                .padding(8)

                List(selection: $model.selection) {
                    ForEach(model.sortedNotes) { note in
                        NoteRow(note: note)
                            .tag(note.id)
                            .contextMenu {
                                Button(note.isPinned ? "Unpin" : "Pin") {
                                    model.togglePin(note.id)
                                }
                                Button("Delete", role: .destructive) {
                                    model.delete(note.id)
                                }
                            }
                    }
                }
                .listStyle(.sidebar)
            }
            .navigationSplitViewColumnWidth(min: 200, ideal: 240)
            .toolbar {
                ToolbarItem {
                    Button(action: model.newNote) {
                        Label("New Note", systemImage: "square.and.pencil")
                    }
                    .keyboardShortcut("n", modifiers: .command)
                }
            }
        } detail: {
            if let id = model.selection, let note = model.binding(for: id) {
                NoteEditor(note: note, model: model)
                    .id(note.id)
            } else {
                VStack(spacing: 8) {
                    Image(systemName: "note.text")
                        .font(.system(size: 48))
                        .foregroundStyle(.secondary)
                    Text("Select or create a note")
                        .foregroundStyle(.secondary)
                }
            }
        }
    }
}

struct NoteRow: View {
    let note: Note

    var body: some View {
        VStack(alignment: .leading, spacing: 2) {
            HStack(spacing: 4) {
                if note.isPinned {
                    Image(systemName: "pin.fill")
                        .font(.caption)
                        .foregroundStyle(.orange)
                }
                Text(note.displayTitle)
                    .font(.headline)
                    .lineLimit(1)
            }
            HStack {
                Text(note.modified, format: .dateTime.month(.abbreviated).day().hour().minute())
                Text(note.preview)
                    .lineLimit(1)
            }
            .font(.caption)
            .foregroundStyle(.secondary)
        }
        .padding(.vertical, 2)
    }
}

struct NoteEditor: View {
    let note: Note
    let model: NotesModel
    @State private var title: String = ""
    @State private var text: String = ""

    var body: some View {
        VStack(alignment: .leading, spacing: 12) {
            TextField("Title", text: $title)
                .textFieldStyle(.plain)
                .font(.title.bold())
                .onChange(of: title) { _, newValue in
                    guard newValue != note.title else { return }
                    model.update(note.id, title: newValue)
                }

            Text("Edited \(note.modified.formatted(date: .abbreviated, time: .shortened))")
                .font(.caption)
                .foregroundStyle(.secondary)

            Divider()

            TextEditor(text: $text)
                .font(.body)
                .scrollContentBackground(.hidden)
                .onChange(of: text) { _, newValue in
                    guard newValue != note.body else { return }
                    model.update(note.id, body: newValue)
                }
        }
        .padding(24)
        .toolbar {
            ToolbarItemGroup {
                Button {
                    model.togglePin(note.id)
                } label: {
                    Label("Pin", systemImage: note.isPinned ? "pin.slash" : "pin")
                }
                Button(role: .destructive) {
                    model.delete(note.id)
                } label: {
                    Label("Delete", systemImage: "trash")
                }
            }
        }
        .onAppear {
            title = note.title
            text = note.body
        }
    }
}
