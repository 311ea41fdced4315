import Foundation

struct Flashcard: Identifiable, Codable, Equatable {
    var id = UUID()
    var front: String
    var back: String
}

extension Flashcard {
    static let starterDeck: [Flashcard] = [
        Flashcard(front: "el perro", back: "the dog"),
        Flashcard(front: "la manzana", back: "the apple"),
        Flashcard(front: "correr", back: "to run"),
        Flashcard(front: "la biblioteca", back: "the library"),
        Flashcard(front: "feliz", back: "happy"),
        Flashcard(front: "mañana", back: "tomorrow")
    ]
}
