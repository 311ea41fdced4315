import SwiftUI

enum TodoFilter: String, CaseIterable, Identifiable {
    case all = "All"
    case active = "Active"
    case done = "Done"
    var id: String { rawValue }
}

struct AppRoot: View {
    @State private var store = TodoStore()
    @State private var newTitle = ""
    @State private var newPriority: TodoItem.Priority = .normal
    @State private var filter: TodoFilter = .all
    @FocusState private var inputFocused: Bool

    private var filteredItems: [TodoItem] {
        switch filter {
        case .all: return store.items
        case .active: return store.items.filter { !$0.isDone }
        case .done: return store.items.filter { $0.isDone }
        }
    }

    private var remainingCount: Int {
        store.items.filter { !$0.isDone }.count
    }

    var body: some View {
        NavigationStack {
            VStack(spacing: 0) {
                HStack {
                    TextField("What needs to be done?", text: $newTitle)
                        .textFieldStyle(.roundedBorder)
                        .focused($inputFocused)
                        .onSubmit(addItem)

                    Picker("Priority", selection: $newPriority) {
                        ForEach(TodoItem.Priority.allCases) { p in
                            Text(p.label).tag(p)
                        }
                    }
                    .labelsHidden()
                    .frame(width: 100)

                    Button(action: addItem) {
                        Image(systemName: "plus")
                    }
                    .buttonStyle(.borderedProminent)
                    .disabled(newTitle.trimmingCharacters(in: .whitespaces).isEmpty)
                }
                .padding()

                Picker("Filter", selection: $filter) {
                    ForEach(TodoFilter.allCases) { f in
                        Text(f.rawValue).tag(f)
                    }
                }
                .pickerStyle(.segmented)
                .labelsHidden()
                .padding(.horizontal)

                if filteredItems.isEmpty {
                    Spacer()
                    VStack(spacing: 12) {
                        Image(systemName: "checkmark.circle")
                            .font(.system(size: 48))
                            .foregroundStyle(.tertiary)
                        Text(filter == .done ? "Nothing completed yet" : "No tasks here")
                            .foregroundStyle(.secondary)
                    }
                    Spacer()
                } else {
                    List {
                        ForEach(filteredItems) { item in
                            TodoRow(item: item) {
                                store.toggle(item)
                            }
                        }
                        .onDelete { offsets in
                            let toDelete = offsets.map { filteredItems[$0] }
                            toDelete.forEach(store.delete)
                        }
                    }
                    .listStyle(.inset)
                }

                Divider()
                HStack {
                    Text("\(remainingCount) item\(remainingCount == 1 ? "" : "s") left")
                        .foregroundStyle(.secondary)
                    Spacer()
                    Button("Clear completed") {
                        store.clearCompleted()
                    }
                    .buttonStyle(.borderless)
                    .disabled(!store.items.contains { $0.isDone })
                }
                .font(.callout)
                .padding(.horizontal)
                .padding(.vertical, 8)
            }
            .navigationTitle("To-Do")
        }
        .onAppear { inputFocused = true }
    }

    private func addItem() {
        store.add(newTitle, priority: newPriority)
        newTitle = ""
        inputFocused = true
    }
}

struct TodoRow: View {
    let item: TodoItem
    let onToggle: () -> Void

    var body: some View {
        HStack(spacing: 12) {
            Button(action: onToggle) {
                Image(systemName: item.isDone ? "checkmark.circle.fill" : "circle")
                    .font(.title2)
                    .foregroundStyle(item.isDone ? .green : .secondary)
            }
            .buttonStyle(.plain)

            VStack(alignment: .leading, spacing: 2) {
                Text(item.title)
                    .strikethrough(item.isDone)
                    .foregroundStyle(item.isDone ? .secondary : .primary)
                Text(item.createdAt, style: .date)
                    .font(.caption)
                    .foregroundStyle(.secondary)
            }

            Spacer()

            Circle()
                .fill(item.priority.color)
                .frame(width: 8, height: 8)
                .help(item.priority.label + " priority")
        }
        .padding(.vertical, 4)
        .contentShape(Rectangle())
    }
}
