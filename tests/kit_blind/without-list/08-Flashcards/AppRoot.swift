import SwiftUI

struct AppRoot: View {
    @AppStorage("flashcards.deck") private var deckData: Data = Data()
    @State private var cards: [Flashcard] = []
    @State private var mode: Mode = .study

    enum Mode: String, CaseIterable {
        case study = "Study"
        case edit = "Edit Deck"
    }

    var body: some View {
        VStack(spacing: 0) {
            Picker("Mode", selection: $mode) {
                ForEach(Mode.allCases, id: \.self) { Text($0.rawValue) }
            }
            .pickerStyle(.segmented)
            .labelsHidden()
            .frame(width: 240)
            .padding()

            Divider()

            switch mode {
            case .study:
                StudyView(cards: cards)
            case .edit:
                DeckEditor(cards: $cards)
            }
        }
        .frame(minWidth: 560, minHeight: 460)
        .onAppear(perform: load)
        .onChange(of: cards) { _, newValue in
            deckData = (try? JSONEncoder().encode(newValue)) ?? Data()
        }
    }

    private func load() {
        if let decoded = try? JSONDecoder().decode([Flashcard].self, from: deckData), !decoded.isEmpty {
            cards = decoded
        } else {
            cards = Flashcard.starterDeck
        }
    }
}

struct StudyView: View {
    let cards: [Flashcard]

    @State private var session: [Flashcard] = []
    @State private var index = 0
    @State private var showingBack = false
    @State private var correct = 0
    @State private var wrong = 0

    private var isFinished: Bool { !session.isEmpty && index >= session.count }

    var body: some View {
        VStack(spacing: 24) {
            if cards.isEmpty {
                ContentUnavailableView("Empty Deck", systemImage: "rectangle.stack", description: Text("Add some cards in Edit Deck."))
            } else if isFinished {
                VStack(spacing: 12) {
                    Image(systemName: "checkmark.seal.fill")
                        .font(.system(size: 56))
                        .foregroundStyle(.green)
                    Text("Session Complete")
                        .font(.title.bold())
                    Text("\(correct) right · \(wrong) wrong")
                        .font(.title3)
                    Gauge(value: Double(correct), in: 0...Double(max(session.count, 1))) {
                        Text("Score")
                    } currentValueLabel: {
                        Text("\(Int(Double(correct) / Double(max(session.count, 1)) * 100))%")
                    }
                    .gaugeStyle(.accessoryCircular)
                    .tint(.green)
                    .scaleEffect(1.4)
                    .padding()
                    Button("Study Again", action: restart)
                        .buttonStyle(.borderedProminent)
                }
            } else if index < session.count {
                ProgressView(value: Double(index), total: Double(session.count)) {
                    Text("Card \(index + 1) of \(session.count)")
                        .font(.caption)
                }
                .frame(maxWidth: 360)

                FlipCard(front: session[index].front, back: session[index].back, showingBack: showingBack)
                    .frame(width: 360, height: 220)
                    .onTapGesture {
                        withAnimation(.spring(response: 0.5, dampingFraction: 0.75)) {
                            showingBack.toggle()
                        }
                    }

                Text("Click the card to flip")
                    .font(.caption)
                    .foregroundStyle(.secondary)

                HStack(spacing: 20) {
                    Button {
                        answer(correct: false)
                    } label: {
                        Label("Missed it", systemImage: "xmark")
                            .frame(width: 110)
                    }
                    .tint(.red)
                    .keyboardShortcut(.leftArrow, modifiers: [])

                    Button {
                        answer(correct: true)
                    } label: {
                        Label("Got it", systemImage: "checkmark")
                            .frame(width: 110)
                    }
                    .tint(.green)
                    .keyboardShortcut(.rightArrow, modifiers: [])
                }
                .buttonStyle(.borderedProminent)
                .controlSize(.large)
                .disabled(!showingBack)
            }
        }
        .frame(maxWidth: .infinity, maxHeight: .infinity)
        .padding()
        .onAppear(perform: restart)
    }

    private func answer(correct isCorrect: Bool) {
        if isCorrect { correct += 1 } else { wrong += 1 }
        showingBack = false
        withAnimation(.easeInOut) {
            index += 1
        }
    }

    private func restart() {
        session = cards.shuffled()
        index = 0
        correct = 0
        wrong = 0
        showingBack = false
    }
}

struct FlipCard: View {
    let front: String
    let back: String
    let showingBack: Bool

    var body: some View {
        ZStack {
            side(text: front, color: .blue)
                .opacity(showingBack ? 0 : 1)
            side(text: back, color: .purple)
                .rotation3DEffect(.degrees(180), axis: (x: 0, y: 1, z: 0))
                .opacity(showingBack ? 1 : 0)
        }
        .rotation3DEffect(.degrees(showingBack ? 180 : 0), axis: (x: 0, y: 1, z: 0), perspective: 0.4)
    }

    private func side(text: String, color: Color) -> some View {
        RoundedRectangle(cornerRadius: 20, style: .continuous)
            .fill(color.gradient)
            .shadow(color: color.opacity(0.4), radius: 10, y: 6)
            .overlay {
                Text(text)
                    .font(.system(size: 30, weight: .semibold, design: .rounded))
                    .foregroundStyle(.white)
                    .multilineTextAlignment(.center)
                    .padding()
            }
    }
}

struct DeckEditor: View {
    @Binding var cards: [Flashcard]
    @State private var newFront = ""
    @State private var newBack = ""

    var body: some View {
        VStack(spacing: 0) {
            List {
                ForEach($cards) { $card in
                    HStack {
                        TextField("Front", text: $card.front)
                        Image(systemName: "arrow.right")
                            .foregroundStyle(.secondary)
                        TextField("Back", text: $card.back)
                    }
                }
                .onDelete { cards.remove(atOffsets: $0) }
                .onMove { cards.move(fromOffsets: $0, toOffset: $1) }
            }

            Divider()

            HStack {
                TextField("Front", text: $newFront)
                TextField("Back", text: $newBack)
                Button("Add Card") {
                    cards.append(Flashcard(front: newFront, back: newBack))
                    newFront = ""
                    newBack = ""
                }
                .disabled(newFront.isEmpty || newBack.isEmpty)
            }
            .textFieldStyle(.roundedBorder)
            .padding()
        }
    }
}
