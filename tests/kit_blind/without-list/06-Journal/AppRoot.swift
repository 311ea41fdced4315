import SwiftUI

struct AppRoot: View {
    @State private var journal = Journal()
    @State private var selection: JournalEntry.ID?
    @State private var searchText = ""

    private var filtered: [JournalEntry] {
        let sorted = journal.entries.sorted { $0.date > $1.date }
        guard !searchText.isEmpty else { return sorted }
        return sorted.filter {
            $0.title.localizedCaseInsensitiveContains(searchText) ||
            $0.body.localizedCaseInsensitiveContains(searchText)
        }
    }

    var body: some View {
        NavigationSplitView {
            List(selection: $selection) {
                ForEach(filtered) { entry in
                    EntryRow(entry: entry)
                        .tag(entry.id)
                        .contextMenu {
                            Button("Delete", role: .destructive) {
                                if selection == entry.id { selection = nil }
                                journal.delete(id: entry.id)
                            }
                        }
                }
            }
            .searchable(text: $searchText, placement: .sidebar, prompt: "Search entries")
            .navigationSplitViewColumnWidth(min: 220, ideal: 260)
            .toolbar {
                ToolbarItem {
                    Button {
                        let entry = journal.newEntry()
                        selection = entry.id
                    } label: {
                        Label("New Entry", systemImage: "square.and.pencil")
                    }
                    .keyboardShortcut("n")
                }
            }
        } detail: {
            if let id = selection,
               let index = journal.entries.firstIndex(where: { $0.id == id }) {
                EntryEditor(entry: $journal.entries[index])
                    .onChange(of: journal.entries[index]) {
                        journal.save()
                    }
            } else {
                ContentUnavailableView("No Entry Selected",
                                       systemImage: "book.closed",
                                       description: Text("Select an entry or create a new one."))
            }
        }
        .frame(minWidth: 700, minHeight: 450)
    }
}

struct EntryRow: View {
    let entry: JournalEntry

    var body: some View {
        HStack(alignment: .top, spacing: 10) {
            Text(entry.mood.emoji)
                .font(.title2)
            VStack(alignment: .leading, spacing: 2) {
                Text(entry.title.isEmpty ? "Untitled" : entry.title)
                    .font(.headline)
                    .lineLimit(1)
                Text(entry.date, style: .date)
                    .font(.caption)
                    .foregroundStyle(.secondary)
                if !entry.body.isEmpty {
                    Text(entry.body)
                        .font(.caption)
                        .foregroundStyle(.secondary)
                        .lineLimit(2)
                }
            }
        }
        .padding(.vertical, 4)
    }
}

struct EntryEditor: View {
    @Binding var entry: JournalEntry

    var body: some View {
        VStack(alignment: .leading, spacing: 14) {
            HStack {
                TextField("Title", text: $entry.title)
                    .font(.title.bold())
                    .textFieldStyle(.plain)
                Spacer()
                DatePicker("", selection: $entry.date, displayedComponents: [.date, .hourAndMinute])
                    .labelsHidden()
                    .datePickerStyle(.compact)
            }

            HStack(spacing: 8) {
                Text("Mood:")
                    .foregroundStyle(.secondary)
                ForEach(Mood.allCases) { mood in
                    Button {
                        entry.mood = mood
                    } label: {
                        Text(mood.emoji)
                            .font(.title2)
                            .padding(6)
                            .background(
                                Circle()
                                    .fill(entry.mood == mood ? Color.accentColor.opacity(0.25) : Color.clear)
                            )
                            .scaleEffect(entry.mood == mood ? 1.15 : 1)
                    }
                    .buttonStyle(.plain)
                    .help(mood.rawValue.capitalized)
                }
            }
            .animation(.spring(duration: 0.25), value: entry.mood)

            Divider()

            TextEditor(text: $entry.body)
                .font(.body)
                .scrollContentBackground(.hidden)
                .padding(8)
                .background(.background, in: RoundedRectangle(cornerRadius: 8))

            HStack {
                Spacer()
                Text("\(entry.body.split { $0.isWhitespace || $0.isNewline }.count) words")
                    .font(.caption)
                    .foregroundStyle(.secondary)
            }
        }
        .padding()
    }
}
