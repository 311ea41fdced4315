import SwiftUI

struct AppRoot: View {
    @State private var board = Board()
    @State private var editingCard: Card?

    var body: some View {
        ScrollView(.horizontal) {
            HStack(alignment: .top, spacing: 16) {
                ForEach(Column.allCases) { column in
                    ColumnView(column: column, board: board, editingCard: $editingCard)
                }
            }
            .padding()
        }
        .background(Color(nsColor: .windowBackgroundColor))
        .sheet(item: $editingCard) { card in
            CardEditor(card: card) { updated in
                board.update(updated)
            } onDelete: {
                board.delete(card)
            }
        }
    }
}

struct ColumnView: View {
    let column: Column
    let board: Board
    @Binding var editingCard: Card?
    @State private var newTitle = ""
    @State private var isTargeted = false

    var body: some View {
        VStack(alignment: .leading, spacing: 10) {
            HStack {
                Circle().fill(column.tint).frame(width: 10, height: 10)
                Text(column.rawValue)
                    .font(.headline)
                Text("\(board.cards(in: column).count)")
                    .font(.caption.bold())
                    .padding(.horizontal, 6)
                    .padding(.vertical, 2)
                    .background(Capsule().fill(Color.secondary.opacity(0.2)))
                Spacer()
            }

            ScrollView {
                LazyVStack(spacing: 8) {
                    ForEach(board.cards(in: column)) { card in
                        CardView(card: card, board: board)
                            .onTapGesture(count: 2) { editingCard = card }
                    }
                }
            }

            HStack {
                TextField("Add a card…", text: $newTitle)
                    .textFieldStyle(.roundedBorder)
                    .onSubmit(add)
                Button(action: add) {
                    Image(systemName: "plus")
                }
                .buttonStyle(.borderless)
                .disabled(newTitle.isEmpty)
            }
        }
        .padding(12)
        .frame(width: 260)
        .frame(maxHeight: .infinity, alignment: .top)
        .background(RoundedRectangle(cornerRadius: 12).fill(Color.secondary.opacity(0.08)))
    }

    private func add() {
        let title = newTitle.trimmingCharacters(in: .whitespaces)
        guard !title.isEmpty else { return }
        board.cards.append(Card(title: title, column: column))
        newTitle = ""
    }
}

struct CardView: View {
    let card: Card
    let board: Board
    @State private var hovering = false

    var body: some View {
        VStack(alignment: .leading, spacing: 6) {
            if card.label != .none {
                Capsule()
                    .fill(card.label.color)
                    .frame(width: 36, height: 6)
            }
            Text(card.title)
                .font(.body.weight(.medium))
                .strikethrough(card.column == .done, color: .secondary)
            if !card.details.isEmpty {
                Text(card.details)
                    .font(.caption)
                    .foregroundStyle(.secondary)
                    .lineLimit(3)
            }
            if hovering {
                HStack {
                    if let prev = card.column.previous {
                        Button {
                            board.move(card, to: prev)
                        } label: {
                            Image(systemName: "arrow.left")
                        }
                        .help("Move to \(prev.rawValue)")
                    }
                    Spacer()
                    if let next = card.column.next {
                        Button {
                            board.move(card, to: next)
                        } label: {
                            Image(systemName: "arrow.right")
                        }
                        .help("Move to \(next.rawValue)")
                    }
                }
                .buttonStyle(.borderless)
                .font(.caption)
            }
        }
        .padding(10)
        .frame(maxWidth: .infinity, alignment: .leading)
        .background(RoundedRectangle(cornerRadius: 8).fill(Color(nsColor: .controlBackgroundColor)))
        .overlay(RoundedRectangle(cornerRadius: 8).stroke(Color.secondary.opacity(hovering ? 0.4 : 0.15)))
        .shadow(color: .black.opacity(0.05), radius: 2, y: 1)
        .onHover { hovering = $0 }
        .contextMenu {
            ForEach(Column.allCases.filter { $0 != card.column }) { col in
                Button("Move to \(col.rawValue)") { board.move(card, to: col) }
            }
            Divider()
            Button("Delete", role: .destructive) { board.delete(card) }
        }
    }
}

struct CardEditor: View {
    @State var card: Card
    var onSave: (Card) -> Void
    var onDelete: () -> Void
    @Environment(\.dismiss) private var dismiss

    var body: some View {
        VStack(alignment: .leading, spacing: 14) {
            Text("Edit Card").font(.title2.bold())
            TextField("Title", text: $card.title)
                .textFieldStyle(.roundedBorder)
            TextField("Description", text: $card.details, axis: .vertical)
                .textFieldStyle(.roundedBorder)
                .lineLimit(3...6)
            Picker("Column", selection: $card.column) {
                ForEach(Column.allCases) { Text($0.rawValue).tag($0) }
            }
            .pickerStyle(.segmented)
            HStack {
                Text("Label")
                ForEach(LabelColor.allCases) { label in
                    ZStack {
                        Circle()
                            .fill(label == .none ? Color.secondary.opacity(0.2) : label.color)
                        if label == .none {
                            Image(systemName: "slash.circle").font(.caption)
                        }
                    }
                    .frame(width: 22, height: 22)
                    .overlay(Circle().strokeBorder(Color.primary, lineWidth: card.label == label ? 2 : 0))
                    .onTapGesture { card.label = label }
                }
            }
            HStack {
                Button("Delete", role: .destructive) {
                    onDelete()
                    dismiss()
                }
                Spacer()
                Button("Cancel") { dismiss() }
                Button("Save") {
                    onSave(card)
                    dismiss()
                }
                .buttonStyle(.borderedProminent)
                .keyboardShortcut(.defaultAction)
            }
        }
        .padding(24)
        .frame(width: 420)
    }
}
