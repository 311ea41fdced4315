import Foundation

struct Flashcard: Identifiable, Codable, Hashable {
    var id = UUID()
    var front: String
    var back: String
}

struct Deck: Identifiable, Codable, Hashable {
    var id = UUID()
    var name: String
    var cards: [Flashcard]
}

final class DeckLibrary: ObservableObject {
    @Published var decks: [Deck] {
        didSet { save() }
    }

    init() {
        if let data = UserDefaults.app.data(forKey: "decks"),
           let saved = try? JSONDecoder().decode([Deck].self, from: data) {
            decks = saved
        } else {
            decks = [
                Deck(name: "Spanish Basics", cards: [
                    Flashcard(front: "Hello", back: "Hola"),
                    Flashcard(front: "Thank you", back: "Gracias"),
                    Flashcard(front: "Goodbye", back: "Adiós"),
                    Flashcard(front: "Please", back: "Por favor"),
                    Flashcard(front: "Water", back: "Agua"),
                    Flashcard(front: "Cat", back: "Gato")
                ])
            ]
        }
    }

    private func save() {
        if let data = try? JSONEncoder().encode(decks) {
            UserDefaults.app.set(data, forKey: "decks")
        }
    }
}
