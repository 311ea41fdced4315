import SwiftUI

struct AppRoot: View {
    @State private var store = BoardStore()

    var body: some View {
        ScrollView(.horizontal) {
            HStack(alignment: .top, spacing: 16) {
                ForEach(Column.allCases) { column in
                    ColumnView(column: column, store: store)
                }
            }
            .padding()
        }
        .frame(minWidth: 820, minHeight: 500)
        .navigationTitle("Board")
    }
}

struct ColumnView: View {
    let column: Column
    @Bindable var store: BoardStore

    @State private var isTargeted = false
    @State private var newTitle = ""
    @State private var isAdding = false

    var body: some View {
        let cards = store.cards(in: column)

        VStack(alignment: .leading, spacing: 10) {
            HStack {
                Circle()
                    .fill(column.tint)
                    .frame(width: 10, height: 10)
                Text(column.rawValue)
                    .font(.headline)
                Text("\(cards.count)")
                    .font(.caption.bold())
                    .padding(.horizontal, 6)
                    .padding(.vertical, 2)
                    .background(.quaternary, in: Capsule())
                Spacer()
                Button {
                    withAnimation { isAdding.toggle() }
                } label: {
                    Image(systemName: "plus")
                }
                .buttonStyle(.borderless)
            }

            if isAdding {
                TextField("Card title", text: $newTitle)
                    .textFieldStyle(.roundedBorder)
                    .onSubmit {
                        let title = newTitle.trimmingCharacters(in: .whitespaces)
                        if !title.isEmpty {
                            withAnimation { store.add(title: title, to: column) }
                        }
                        newTitle = ""
                        isAdding = false
                    }
                    .onExitCommand {
                        newTitle = ""
                        isAdding = false
                    }
            }

            ScrollView {
                VStack(spacing: 8) {
                    ForEach(cards) { card in
                        CardView(card: card, tint: column.tint)
                            .draggable(card.id.uuidString) {
                                CardView(card: card, tint: column.tint)
                                    .frame(width: 220)
                                    .opacity(0.85)
                            }
                            .contextMenu {
                                ForEach(Column.allCases.filter { $0 != column }) { target in
                                    Button("Move to \(target.rawValue)") {
                                        withAnimation { store.move(cardID: card.id, to: target) }
                                    }
                                }
                                Divider()
                                Button("Delete", role: .destructive) {
                                    withAnimation { store.delete(card) }
                                }
                            }
                    }
                }
                .frame(maxWidth: .infinity)
            }

            Spacer(minLength: 0)
        }
        .padding(12)
        .frame(width: 260)
        .frame(maxHeight: .infinity, alignment: .top)
        .background(
            RoundedRectangle(cornerRadius: 14)
                .fill(isTargeted ? column.tint.opacity(0.15) : Color.secondary.opacity(0.08))
        )
        .overlay(
            RoundedRectangle(cornerRadius: 14)
                .strokeBorder(isTargeted ? column.tint : .clear, lineWidth: 2)
        )
        .dropDestination(for: String.self) { items, _ in
            guard let first = items.first, let id = UUID(uuidString: first) else { return false }
            withAnimation(.spring) {
                store.move(cardID: id, to: column)
            }
            return true
        } isTargeted: { targeted in
            withAnimation(.easeInOut(duration: 0.15)) {
                isTargeted = targeted
            }
        }
    }
}

struct CardView: View {
    let card: KanbanCard
    let tint: Color
    @State private var isHovering = false

    var body: some View {
        HStack(spacing: 0) {
            Rectangle()
                .fill(tint)
                .frame(width: 4)
            VStack(alignment: .leading, spacing: 4) {
                Text(card.title)
                    .font(.body)
                    .frame(maxWidth: .infinity, alignment: .leading)
                if !card.notes.isEmpty {
                    Text(card.notes)
                        .font(.caption)
                        .foregroundStyle(.secondary)
                }
            }
            .padding(10)
        }
        .background(.background, in: RoundedRectangle(cornerRadius: 8))
        .clipShape(RoundedRectangle(cornerRadius: 8))
        .shadow(color: .black.opacity(isHovering ? 0.2 : 0.08), radius: isHovering ? 6 : 2, y: isHovering ? 3 : 1)
        .scaleEffect(isHovering ? 1.02 : 1)
        .onHover { hovering in
            withAnimation(.easeOut(duration: 0.15)) { isHovering = hovering }
        }
    }
}
