import SwiftUI

struct AppRoot: View {
    @StateObject private var store = NotesStore()
    @State private var selectedID: UUID?
    @State private var showPreview = true

    var body: some View {
        NavigationSplitView {
            List(selection: $selectedID) {
                let pinnedNotes = store.sortedNotes.filter(\.isPinned)
                if !pinnedNotes.isEmpty {
                    Section("Pinned") {
                        ForEach(pinnedNotes) { note in
                            NoteRow(note: note).tag(note.id)
                                .contextMenu { menu(for: note) }
                        }
                    }
                }
                Section("Notes") {
                    ForEach(store.sortedNotes.filter { !$0.isPinned }) { note in
                        NoteRow(note: note).tag(note.id)
                            .contextMenu { menu(for: note) }
                    }
                }
            }
            .navigationSplitViewColumnWidth(min: 200, ideal: 240)
            .toolbar {
                ToolbarItem {
                    Button {
                        selectedID = store.create().id
                    } label: {
                        Label("New Note", systemImage: "square.and.pencil")
                    }
                    .keyboardShortcut("n")
                }
            }
        } detail: {
            if let id = selectedID, let note = store.notes.first(where: { $0.id == id }) {
                EditorView(note: note, showPreview: showPreview) { newText in
                    store.update(id, text: newText)
                }
                .id(id)
            } else {
                ContentUnavailableView("No Note Selected", systemImage: "note.text")
            }
        }
        .toolbar {
            ToolbarItem(placement: .primaryAction) {
                Toggle(isOn: $showPreview.animation()) {
                    Label("Preview", systemImage: "eye")
                }
                .keyboardShortcut("p", modifiers: [.command, .shift])
            }
        }
        .frame(minWidth: 800, minHeight: 500)
        .onAppear {
            if selectedID == nil { selectedID = store.sortedNotes.first?.id }
        }
    }

    @ViewBuilder
    private func menu(for note: Note) -> some View {
        Button(note.isPinned ? "Unpin" : "Pin") {
            withAnimation { store.togglePin(note.id) }
        }
        Divider()
        Button("Delete", role: .destructive) {
            if selectedID == note.id { selectedID = nil }
            withAnimation { store.delete(note.id) }
        }
    }
}

struct NoteRow: View {
    let note: Note

    var body: some View {
        VStack(alignment: .leading, spacing: 3) {
            HStack(spacing: 4) {
                if note.isPinned {
                    Image(systemName: "pin.fill")
                        .font(.caption2)
                        .foregroundStyle(.orange)
                }
                Text(note.title)
                    .font(.headline)
                    .lineLimit(1)
            }
            HStack {
                Text(note.modified, format: .dateTime.month(.abbreviated).day())
                Text(note.preview)
                    .lineLimit(1)
            }
            .font(.caption)
            .foregroundStyle(.secondary)
        }
        .padding(.vertical, 2)
    }
}

struct EditorView: View {
    let note: Note
    let showPreview: Bool
    let onChange: (String) -> Void

    @State private var text = ""

    var body: some View {
        HStack(spacing: 0) {
            TextEditor(text: $text)
                .font(.system(.body, design: .monospaced))
                .scrollContentBackground(.hidden)
                .padding(12)
                .frame(maxWidth: .infinity, maxHeight: .infinity)
                .onChange(of: text) { _, newValue in
                    onChange(newValue)
                }

            if showPreview {
                Divider()
                ScrollView {
                    MarkdownPreview(markdown: text)
                        .padding(16)
                        .frame(maxWidth: .infinity, alignment: .leading)
                }
                .frame(maxWidth: .infinity, maxHeight: .infinity)
                .background(Color.secondary.opacity(0.05))
                .transition(.move(edge: .trailing))
            }
        }
        .onAppear { text = note.text }
        .navigationTitle(note.title)
        .navigationSubtitle("\(text.count) characters")
    }
}

struct MarkdownPreview: View {
    let markdown: String

    var body: some View {
        VStack(alignment: .leading, spacing: 8) {
            ForEach(Array(markdown.components(separatedBy: "\n").enumerated()), id: \.offset) { _, line in
                render(line)
            }
        }
        .textSelection(.enabled)
    }

    @ViewBuilder
    private func render(_ line: String) -> some View {
        let trimmed = line.trimmingCharacters(in: .whitespaces)
        if trimmed.hasPrefix("### ") {
            inline(String(trimmed.dropFirst(4))).font(.title3.bold())
        } else if trimmed.hasPrefix("## ") {
            inline(String(trimmed.dropFirst(3))).font(.title2.bold())
        } else if trimmed.hasPrefix("# ") {
            inline(String(trimmed.dropFirst(2))).font(.largeTitle.bold())
        } else if trimmed.hasPrefix("- ") || trimmed.hasPrefix("* ") {
            HStack(alignment: .firstTextBaseline, spacing: 6) {
                Text("•")
                inline(String(trimmed.dropFirst(2)))
            }
        } else if trimmed.hasPrefix("> ") {
            inline(String(trimmed.dropFirst(2)))
                .italic()
                .foregroundStyle(.secondary)
                .padding(.leading, 10)
                .overlay(alignment: .leading) {
                    Rectangle().fill(Color.secondary.opacity(0.5)).frame(width: 3)
                }
        } else if trimmed == "---" {
            Divider()
        } else if trimmed.isEmpty {
            Spacer().frame(height: 4)
        } else {
            inline(trimmed)
        }
    }

    private func inline(_ string: String) -> Text {
        if let attributed = try? AttributedString(
            markdown: string,
            options: AttributedString.MarkdownParsingOptions(interpretedSyntax: .inlineOnlyPreservingWhitespace)
        ) {
            return Text(attributed)
        }
        return Text(string)
    }
}
