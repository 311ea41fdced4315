import SwiftUI

enum SortOrder: String, CaseIterable, Identifiable {
    case priority = "Priority"
    case created = "Date Added"
    case alphabetical = "Name"

    var id: String { rawValue }
}

struct AppRoot: View {
    @State private var store = TodoStore()
    @State private var newTitle = ""
    @State private var newPriority: Priority = .medium
    @State private var sortOrder: SortOrder = .priority
    @State private var hideCompleted = false
    @FocusState private var fieldFocused: Bool

    private var visibleItems: [TodoItem] {
        var result = store.items
        if hideCompleted {
            result = result.filter { !$0.isDone }
        }
        switch sortOrder {
        case .priority:
            result.sort { ($0.priority, $1.createdAt) > ($1.priority, $0.createdAt) }
        case .created:
            result.sort { $0.createdAt < $1.createdAt }
        case .alphabetical:
            result.sort { $0.title.localizedCaseInsensitiveCompare($1.title) == .orderedAscending }
        }
        return result
    }

    var body: some View {
        NavigationStack {
            VStack(spacing: 0) {
                HStack {
                    TextField("What needs doing?", text: $newTitle)
                        .textFieldStyle(.roundedBorder)
                        .focused($fieldFocused)
                        .onSubmit(addItem)

                    Picker("Priority", selection: $newPriority) {
                        ForEach(Priority.allCases) { p in
                            Text(p.title).tag(p)
                        }
                    }
                    .labelsHidden()
                    .frame(width: 110)

                    Button("Add", action: addItem)
                        .disabled(newTitle.trimmingCharacters(in: .whitespaces).isEmpty)
                }
                .padding()

                Divider()

                if visibleItems.isEmpty {
                    ContentUnavailableView(
                        hideCompleted && !store.items.isEmpty ? "All Done" : "No Tasks",
                        systemImage: "checklist",
                        description: Text("Add a task above to get started.")
                    )
                } else {
                    List {
                        ForEach(visibleItems) { item in
                            TodoRow(item: item) {
                                withAnimation { store.toggle(item) }
                            }
                            .contextMenu {
                                Menu("Priority") {
                                    ForEach(Priority.allCases) { p in
                                        Button(p.title) { setPriority(p, for: item) }
                                    }
                                }
                                Divider()
                                Button("Delete", role: .destructive) {
                                    withAnimation { store.delete(item) }
                                }
                            }
                        }
                    }
                    .listStyle(.inset(alternatesRowBackgrounds: true))
                }
            }
            .navigationTitle("Tasks")
            .navigationSubtitle("\(store.items.filter { !$0.isDone }.count) remaining")
            .toolbar {
                ToolbarItemGroup {
                    Picker("Sort", selection: $sortOrder) {
                        ForEach(SortOrder.allCases) { order in
                            Text(order.rawValue).tag(order)
                        }
                    }
                    .pickerStyle(.menu)

                    Toggle(isOn: $hideCompleted) {
                        Label("Hide Completed", systemImage: "eye.slash")
                    }

                    Button {
                        withAnimation { store.clearCompleted() }
                    } label: {
                        Label("Clear Completed", systemImage: "trash")
                    }
                    .disabled(!store.items.contains { $0.isDone })
                }
            }
        }
        .frame(minWidth: 520, minHeight: 420)
        .onAppear { fieldFocused = true }
    }

    private func addItem() {
        withAnimation {
            store.add(newTitle, priority: newPriority)
        }
        newTitle = ""
    }

    private func setPriority(_ priority: Priority, for item: TodoItem) {
        if let index = store.items.firstIndex(where: { $0.id == item.id }) {
            store.items[index].priority = priority
        }
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
                    .foregroundStyle(item.isDone ? Color.accentColor : Color.secondary)
            }
            .buttonStyle(.plain)

            Text(item.title)
                .strikethrough(item.isDone)
                .foregroundStyle(item.isDone ? .secondary : .primary)

            Spacer()

            Text(item.priority.title)
                .font(.caption.weight(.medium))
                .padding(.horizontal, 8)
                .padding(.vertical, 3)
                .background(item.priority.color.opacity(0.18), in: Capsule())
                .foregroundStyle(item.priority.color)
        }
        .padding(.vertical, 4)
    }
}
