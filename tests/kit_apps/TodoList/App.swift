import SwiftUI

struct TodoItem: Identifiable, Codable, Equatable {
    var id = UUID()
    var title: String
    var isDone = false
}

struct AppRoot: View {
    @AppStorage("todoItems") private var storedItems: Data = Data()
    @State private var items: [TodoItem] = []
    @State private var newTitle = ""

    var body: some View {
        NavigationStack {
            VStack(spacing: 0) {
                HStack {
                    TextField("New task", text: $newTitle)
                        .textFieldStyle(.roundedBorder)
                        .onSubmit(addItem)
                    Button("Add", action: addItem)
                        .buttonStyle(.borderedProminent)
                        .disabled(newTitle.trimmingCharacters(in: .whitespaces).isEmpty)
                }
                .padding()

                if items.isEmpty {
                    Spacer()
                    Text("Nothing to do yet")
                        .foregroundStyle(.secondary)
                    Spacer()
                } else {
                    List {
                        Section("Tasks") {
                            ForEach($items) { $item in
                                HStack {
                                    Button {
                                        item.isDone.toggle()
                                    } label: {
                                        Image(systemName: item.isDone ? "checkmark.circle.fill" : "circle")
                                            .foregroundStyle(item.isDone ? .green : .secondary)
                                    }
                                    .buttonStyle(.plain)
                                    Text(item.title)
                                        .strikethrough(item.isDone)
                                        .foregroundStyle(item.isDone ? .secondary : .primary)
                                    Spacer()
                                }
                            }
                            .onDelete { offsets in
                                items.remove(atOffsets: offsets)
                            }
                        }
                    }
                }
            }
            .navigationTitle("To-Do")
            .toolbar {
                Text("\(items.filter { !$0.isDone }.count) left")
                    .foregroundStyle(.secondary)
            }
        }
        .onAppear(perform: load)
        .onChange(of: items) { _ in save() }
    }

    private func addItem() {
        let title = newTitle.trimmingCharacters(in: .whitespaces)
        guard !title.isEmpty else { return }
        items.append(TodoItem(title: title))
        newTitle = ""
    }

    private func load() {
        if let decoded = try? JSONDecoder().decode([TodoItem].self, from: storedItems) {
            items = decoded
        }
    }

    private func save() {
        if let encoded = try? JSONEncoder().encode(items) {
            storedItems = encoded
        }
    }
}
