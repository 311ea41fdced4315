import Foundation

enum ReadingStatus: String, Codable, CaseIterable, Identifiable {
    case wantToRead = "Want to Read"
    case reading = "Reading"
    case finished = "Finished"

    var id: String { rawValue }

    var icon: String {
        switch self {
        case .wantToRead: return "bookmark"
        case .reading: return "book"
        case .finished: return "checkmark.seal"
        }
    }
}

struct Book: Identifiable, Codable, Hashable {
    var id = UUID()
    var title: String
    var author: String
    var pages: Int
    var currentPage: Int = 0
    var rating: Int = 0
    var status: ReadingStatus = .wantToRead
    var dateAdded = Date()
    var dateFinished: Date?

    var progress: Double {
        guard pages > 0 else { return 0 }
        return min(Double(currentPage) / Double(pages), 1)
    }
}

@Observable
final class Library {
    var books: [Book] = [] {
        didSet { save() }
    }

    private let key = "readingList.books"

    init() {
        if let data = UserDefaults.standard.data(forKey: key),
           let saved = try? JSONDecoder().decode([Book].self, from: data) {
            books = saved
        } else {
            books = [
                Book(title: "The Hobbit", author: "J.R.R. Tolkien", pages: 310, status: .wantToRead),
                Book(title: "Project Hail Mary", author: "Andy Weir", pages: 476, currentPage: 180, status: .reading),
                Book(title: "Dune", author: "Frank Herbert", pages: 412, currentPage: 412, rating: 5, status: .finished, dateFinished: .now)
            ]
        }
    }

    func books(with status: ReadingStatus) -> [Book] {
        books.filter { $0.status == status }
    }

    func move(_ book: Book, to status: ReadingStatus) {
        guard let index = books.firstIndex(where: { $0.id == book.id }) else { return }
        books[index].status = status
        switch status {
        case .finished:
            books[index].currentPage = books[index].pages
            books[index].dateFinished = .now
        case .reading:
            books[index].dateFinished = nil
        case .wantToRead:
            books[index].currentPage = 0
            books[index].dateFinished = nil
        }
    }

    private func save() {
        if let data = try? JSONEncoder().encode(books) {
            UserDefaults.standard.set(data, forKey: key)
        }
    }
}
