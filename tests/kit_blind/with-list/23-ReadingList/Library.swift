import Foundation
import SwiftUI

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
    var year: Int?
    var pages: Int
    var currentPage: Int = 0
    var status: ReadingStatus = .wantToRead
    var rating: Int = 0
    var added = Date()

    var progress: Double {
        pages > 0 ? Double(currentPage) / Double(pages) : 0
    }
}

@MainActor
final class Library: ObservableObject {
    @Published var books: [Book] = [] {
        didSet { save() }
    }

    init() {
        if let data = UserDefaults.app.data(forKey: "books"),
           let saved = try? JSONDecoder().decode([Book].self, from: data) {
            books = saved
        }
    }

    func books(with status: ReadingStatus?) -> [Book] {
        guard let status else { return books }
        return books.filter { $0.status == status }
    }

    func count(_ status: ReadingStatus) -> Int {
        books.filter { $0.status == status }.count
    }

    private func save() {
        if let data = try? JSONEncoder().encode(books) {
            UserDefaults.app.set(data, forKey: "books")
        }
    }
}

struct OpenLibraryResult: Decodable {
    struct Doc: Decodable, Identifiable {
        let key: String
        let title: String
        let author_name: [String]?
        let first_publish_year: Int?
        let number_of_pages_median: Int?
        var id: String { key }
    }
    let docs: [Doc]
}

enum OpenLibrary {
    static func search(_ query: String) async throws -> [OpenLibraryResult.Doc] {
        var comps = URLComponents(string: "https://openlibrary.org/search.json")
        comps?.queryItems = [
            URLQueryItem(name: "q", value: query),
            URLQueryItem(name: "limit", value: "20"),
            URLQueryItem(name: "fields", value: "key,title,author_name,first_publish_year,number_of_pages_median")
        ]
        guard let url = comps?.url else { return [] }
        let (data, _) = try await URLSession.shared.data(from: url)
        return try JSONDecoder().decode(OpenLibraryResult.self, from: data).docs
    }
}
