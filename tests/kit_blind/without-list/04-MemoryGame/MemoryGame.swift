import SwiftUI

struct Card: Identifiable, Equatable {
    let id = UUID()
    let emoji: String
    var isFaceUp = false
    var isMatched = false
}

@Observable
final class MemoryGameModel {
    private(set) var cards: [Card] = []
    private(set) var moves = 0
    private(set) var isBusy = false
    private var firstIndex: Int?

    static let themes: [String: [String]] = [
        "Animals": ["🐶", "🐱", "🦊", "🐼", "🐸", "🐵", "🦁", "🐙", "🐢", "🦄"],
        "Food": ["🍎", "🍕", "🍩", "🍉", "🥑", "🍔", "🌮", "🍣", "🍪", "🥐"],
        "Sports": ["⚽️", "🏀", "🏈", "⚾️", "🎾", "🏐", "🏓", "🥊", "⛳️", "🎳"]
    ]

    var isWon: Bool { !cards.isEmpty && cards.allSatisfy(\.isMatched) }

    init(theme: String = "Animals", pairs: Int = 8) {
        newGame(theme: theme, pairs: pairs)
    }

    func newGame(theme: String, pairs: Int) {
        let emojis = (Self.themes[theme] ?? []).shuffled().prefix(pairs)
        cards = (emojis + emojis).map { Card(emoji: $0) }.shuffled()
        moves = 0
        firstIndex = nil
        isBusy = false
    }

    func choose(_ card: Card) {
        guard !isBusy,
              let index = cards.firstIndex(where: { $0.id == card.id }),
              !cards[index].isFaceUp,
              !cards[index].isMatched else { return }

        cards[index].isFaceUp = true

        if let first = firstIndex {
            moves += 1
            firstIndex = nil
            if cards[first].emoji == cards[index].emoji {
                cards[first].isMatched = true
                cards[index].isMatched = true
            } else {
                isBusy = true
                DispatchQueue.main.asyncAfter(deadline: .now() + 0.8) { [weak self] in
                    guard let self else { return }
                    withAnimation(.easeInOut(duration: 0.3)) {
                        self.cards[first].isFaceUp = false
                        self.cards[index].isFaceUp = false
                    }
                    self.isBusy = false
                }
            }
        } else {
            firstIndex = index
        }
    }
}

struct AppRoot: View {
    @State private var game = MemoryGameModel()
    @State private var theme = "Animals"
    @State private var pairs = 8

    private let columns = [GridItem(.adaptive(minimum: 80, maximum: 110), spacing: 12)]

    var body: some View {
        VStack(spacing: 16) {
            HStack {
                Picker("Theme", selection: $theme) {
                    ForEach(MemoryGameModel.themes.keys.sorted(), id: \.self) { name in
                        Text(name).tag(name)
                    }
                }
                .frame(width: 180)

                Picker("Pairs", selection: $pairs) {
                    Text("6").tag(6)
                    Text("8").tag(8)
                    Text("10").tag(10)
                }
                .pickerStyle(.segmented)
                .frame(width: 160)

                Spacer()

                Text("Moves: \(game.moves)")
                    .font(.headline)
                    .monospacedDigit()

                Button("New Game") {
                    startNewGame()
                }
                .keyboardShortcut("n", modifiers: .command)
            }

            ScrollView {
                LazyVGrid(columns: columns, spacing: 12) {
                    ForEach(game.cards) { card in
                        CardView(card: card)
                            .aspectRatio(2/3, contentMode: .fit)
                            .onTapGesture {
                                withAnimation(.easeInOut(duration: 0.3)) {
                                    game.choose(card)
                                }
                            }
                    }
                }
                .padding(4)
            }
        }
        .padding()
        .frame(minWidth: 560, minHeight: 520)
        .onChange(of: theme) { startNewGame() }
        .onChange(of: pairs) { startNewGame() }
        .overlay {
            if game.isWon {
                WinBanner(moves: game.moves) {
                    startNewGame()
                }
                .transition(.scale.combined(with: .opacity))
            }
        }
        .animation(.spring(response: 0.4, dampingFraction: 0.7), value: game.isWon)
    }

    private func startNewGame() {
        withAnimation {
            game.newGame(theme: theme, pairs: pairs)
        }
    }
}

struct CardView: View {
    let card: Card

    var body: some View {
        ZStack {
            RoundedRectangle(cornerRadius: 12)
                .fill(LinearGradient(colors: [.indigo, .purple], startPoint: .topLeading, endPoint: .bottomTrailing))
                .overlay(
                    Image(systemName: "questionmark")
                        .font(.title.bold())
                        .foregroundStyle(.white.opacity(0.6))
                )
                .opacity(card.isFaceUp || card.isMatched ? 0 : 1)

            RoundedRectangle(cornerRadius: 12)
                .fill(.white)
                .overlay(
                    RoundedRectangle(cornerRadius: 12)
                        .stroke(card.isMatched ? Color.green : Color.gray.opacity(0.4), lineWidth: 3)
                )
                .overlay(
                    Text(card.emoji)
                        .font(.system(size: 44))
                )
                .opacity(card.isFaceUp || card.isMatched ? 1 : 0)
        }
        .rotation3DEffect(.degrees(card.isFaceUp || card.isMatched ? 0 : 180), axis: (x: 0, y: 1, z: 0))
        .opacity(card.isMatched ? 0.6 : 1)
        .shadow(color: .black.opacity(0.15), radius: 3, y: 2)
    }
}

struct WinBanner: View {
    let moves: Int
    let onPlayAgain: () -> Void

    var body: some View {
        VStack(spacing: 14) {
            Text("🎉")
                .font(.system(size: 60))
            Text("You Win!")
                .font(.largeTitle.bold())
            Text("Finished in \(moves) moves")
                .foregroundStyle(.secondary)
            Button("Play Again", action: onPlayAgain)
                .buttonStyle(.borderedProminent)
                .controlSize(.large)
        }
        .padding(32)
        .background(.regularMaterial, in: RoundedRectangle(cornerRadius: 20))
        .shadow(radius: 20)
    }
}
