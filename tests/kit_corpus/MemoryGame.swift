import SwiftUI

struct Card: Identifiable {
    let id: Int
    let emoji: String
    var isFaceUp = false
    var isMatched = false
}

class Game: ObservableObject {
    @Published var cards: [Card] = []
    @Published var score = 0
    private var firstIndex: Int?

    init() { newGame() }

    func newGame() {
        let emojis = ["🐶", "🐱", "🐭", "🐹", "🐰", "🦊"]
        cards = (emojis + emojis).shuffled().enumerated().map { Card(id: $0.offset, emoji: $0.element) }
        score = 0
        firstIndex = nil
    }

    func choose(_ card: Card) {
        guard let index = cards.firstIndex(where: { $0.id == card.id }), !cards[index].isFaceUp, !cards[index].isMatched else { return }
        if let first = firstIndex {
            if cards[first].emoji == cards[index].emoji {
                cards[first].isMatched = true
                cards[index].isMatched = true
                score += 2
            }
            firstIndex = nil
        } else {
            for i in cards.indices where !cards[i].isMatched { cards[i].isFaceUp = false }
            firstIndex = index
        }
        cards[index].isFaceUp = true
    }
}

struct AppRoot: View {
    @StateObject private var game = Game()

    var body: some View {
        VStack {
            HStack {
                Text("Score: \(game.score)").font(.title2)
                Spacer()
                Button("New Game") { withAnimation { game.newGame() } }
            }
            LazyVGrid(columns: [GridItem(.adaptive(minimum: 80))]) {
                ForEach(game.cards) { card in
                    CardView(card: card)
                        .aspectRatio(2/3, contentMode: .fit)
                        .onTapGesture { withAnimation(.easeInOut) { game.choose(card) } }
                }
            }
            Spacer()
        }
        .padding()
    }
}

struct CardView: View {
    let card: Card
    var body: some View {
        ZStack {
            let shape = RoundedRectangle(cornerRadius: 12)
            if card.isFaceUp || card.isMatched {
                shape.fill(.white)
                shape.strokeBorder(lineWidth: 3)
                Text(card.emoji).font(.largeTitle)
            } else {
                shape.fill(Color.orange)
            }
        }
        .opacity(card.isMatched ? 0.4 : 1)
    }
}
