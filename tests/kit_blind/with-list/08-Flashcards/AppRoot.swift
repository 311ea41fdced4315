import SwiftUI

struct AppRoot: View {
    @StateObject private var library = DeckLibrary()
    @State private var selectedDeckID: Deck.ID?
    @State private var newDeckName = ""

    var body: some View {
        NavigationSplitView {
            List(selection: $selectedDeckID) {
                Section("Decks") {
                    ForEach(library.decks) { deck in
                        HStack {
                            Label(deck.name, systemImage: "rectangle.stack")
                            Spacer()
                            Text("\(deck.cards.count)")
                                .foregroundStyle(.secondary)
                                .monospacedDigit()
                        }
                        .tag(deck.id)
                    }
                    .onDelete { library.decks.remove(atOffsets: $0) }
                }
            }
            .safeAreaInset(edge: .bottom) {
                HStack {
                    TextField("New deck", text: $newDeckName)
                        .textFieldStyle(.roundedBorder)
                        .onSubmit(addDeck)
                    Button(action: addDeck) {
                        Image(systemName: "plus")
                    }
                    .disabled(newDeckName.isEmpty)
                }
                .padding(8)
            }
            .navigationTitle("Flashcards")
        } detail: {
            if let index = library.decks.firstIndex(where: { $0.id == selectedDeckID }) {
                DeckDetailView(deck: $library.decks[index])
                    .id(library.decks[index].id)
            } else {
                Text("Choose a deck")
                    .font(.title3)
                    .foregroundStyle(.secondary)
            }
        }
    }

    private func addDeck() {
        let name = newDeckName.trimmingCharacters(in: .whitespaces)
        guard !name.isEmpty else { return }
        let deck = Deck(name: name, cards: [])
        library.decks.append(deck)
        selectedDeckID = deck.id
        newDeckName = ""
    }
}

struct DeckDetailView: View {
    @Binding var deck: Deck
    @State private var front = ""
    @State private var back = ""
    @State private var studying = false

    var body: some View {
        VStack(alignment: .leading, spacing: 16) {
            HStack {
                Text(deck.name)
                    .font(.largeTitle.bold())
                Spacer()
                Button {
                    studying = true
                } label: {
                    Label("Study", systemImage: "play.fill")
                }
                .buttonStyle(.borderedProminent)
                .disabled(deck.cards.isEmpty)
            }

            GroupBox("Add a card") {
                HStack {
                    TextField("Front", text: $front)
                    TextField("Back", text: $back)
                        .onSubmit(addCard)
                    Button("Add", action: addCard)
                        .disabled(front.isEmpty || back.isEmpty)
                }
                .textFieldStyle(.roundedBorder)
                .padding(4)
            }

            List {
                ForEach($deck.cards) { $card in
                    HStack {
                        TextField("Front", text: $card.front)
                        Image(systemName: "arrow.right")
                            .foregroundStyle(.secondary)
                        TextField("Back", text: $card.back)
                    }
                    .textFieldStyle(.plain)
                }
                .onDelete { deck.cards.remove(atOffsets: $0) }
            }
            .listStyle(.bordered)
        }
        .padding()
        .sheet(isPresented: $studying) {
            StudyView(cards: deck.cards.shuffled())
        }
    }

    private func addCard() {
        guard !front.isEmpty, !back.isEmpty else { return }
        deck.cards.append(Flashcard(front: front, back: back))
        front = ""
        back = ""
    }
}

struct StudyView: View {
    @State var cards: [Flashcard]
    @Environment(\.dismiss) private var dismiss
    @State private var index = 0
    @State private var showingBack = false
    @State private var correct = 0
    @State private var again: [Flashcard] = []

    var body: some View {
        VStack(spacing: 20) {
            if index < cards.count {
                ProgressView(value: Double(index), total: Double(cards.count))
                Text("Card \(index + 1) of \(cards.count)")
                    .font(.caption)
                    .foregroundStyle(.secondary)

                ZStack {
                    RoundedRectangle(cornerRadius: 16)
                        .fill(showingBack ? Color.blue.opacity(0.15) : Color(nsColor: .controlBackgroundColor))
                        .shadow(radius: 4)
                    Text(showingBack ? cards[index].back : cards[index].front)
                        .font(.system(size: 34, weight: .semibold, design: .rounded))
                        .multilineTextAlignment(.center)
                        .padding()
                        .rotation3DEffect(.degrees(showingBack ? 180 : 0), axis: (x: 0, y: 1, z: 0))
                }
                .frame(height: 220)
                .rotation3DEffect(.degrees(showingBack ? 180 : 0), axis: (x: 0, y: 1, z: 0))
                .onTapGesture {
                    withAnimation(.spring()) { showingBack.toggle() }
                }

                if showingBack {
                    HStack(spacing: 16) {
                        Button {
                            again.append(cards[index])
                            next()
                        } label: {
                            Label("Again", systemImage: "arrow.uturn.left")
                                .frame(maxWidth: .infinity)
                        }
                        .tint(.orange)
                        .keyboardShortcut("1", modifiers: [])

                        Button {
                            correct += 1
                            next()
                        } label: {
                            Label("Got it", systemImage: "checkmark")
                                .frame(maxWidth: .infinity)
                        }
                        .tint(.green)
                        .keyboardShortcut("2", modifiers: [])
                    }
                    .buttonStyle(.borderedProminent)
                    .controlSize(.large)
                } else {
                    Text("Click the card (or press space) to flip")
                        .foregroundStyle(.secondary)
                    Button("Flip") { showingBack = true }
                        .keyboardShortcut(.space, modifiers: [])
                }
            } else {
                Image(systemName: "party.popper.fill")
                    .font(.system(size: 56))
                    .foregroundStyle(.orange)
                Text("Done!")
                    .font(.largeTitle.bold())
                Text("You got \(correct) of \(cards.count) right")
                    .font(.title3)
                if !again.isEmpty {
                    Button("Review \(again.count) missed cards") {
                        cards = again.shuffled()
                        again = []
                        index = 0
                        correct = 0
                    }
                    .buttonStyle(.borderedProminent)
                }
            }

            Spacer()
            HStack {
                Spacer()
                Button("Close") { dismiss() }
                    .keyboardShortcut(.cancelAction)
            }
        }
        .padding(24)
        .frame(width: 480, height: 460)
    }

    private func next() {
        showingBack = false
        index += 1
    }
}
