import Foundation

struct HNItem: Decodable, Identifiable, Hashable {
    let id: Int
    let title: String?
    let by: String?
    let score: Int?
    let time: TimeInterval?
    let url: String?
    let descendants: Int?
    let kids: [Int]?
    let text: String?
    let deleted: Bool?
    let dead: Bool?

    var date: Date { Date(timeIntervalSince1970: time ?? 0) }

    var domain: String? {
        guard let url, let host = URL(string: url)?.host else { return nil }
        return host.hasPrefix("www.") ? String(host.dropFirst(4)) : host
    }
}

enum FeedKind: String, CaseIterable, Identifiable {
    case top = "Top"
    case new = "New"
    case best = "Best"
    case ask = "Ask"
    case show = "Show"

    var id: String { rawValue }

    var endpoint: String {
        switch self {
        case .top: return "topstories"
        case .new: return "newstories"
        case .best: return "beststories"
        case .ask: return "askstories"
        case .show: return "showstories"
        }
    }

    var icon: String {
        switch self {
        case .top: return "flame"
        case .new: return "sparkles"
        case .best: return "star"
        case .ask: return "questionmark.bubble"
        case .show: return "eye"
        }
    }
}

actor HNClient {
    static let shared = HNClient()
    private let base = "https://hacker-news.firebaseio.com/v0"
    private var cache: [Int: HNItem] = [:]

    func storyIDs(for feed: FeedKind) async throws -> [Int] {
        guard let url = URL(string: "\(base)/\(feed.endpoint).json") else { return [] }
        let (data, _) = try await URLSession.shared.data(from: url)
        return try JSONDecoder().decode([Int].self, from: data)
    }

    func item(_ id: Int) async throws -> HNItem {
        if let cached = cache[id] { return cached }
        guard let url = URL(string: "\(base)/item/\(id).json") else { throw URLError(.badURL) }
        let (data, _) = try await URLSession.shared.data(from: url)
        let item = try JSONDecoder().decode(HNItem.self, from: data)
        cache[id] = item
        return item
    }

    func items(_ ids: [Int]) async -> [HNItem] {
        await withTaskGroup(of: (Int, HNItem?).self) { group in
            for (index, id) in ids.enumerated() {
                group.addTask { (index, try? await self.item(id)) }
            }
            var results: [(Int, HNItem)] = []
            for await (index, item) in group {
                if let item { results.append((index, item)) }
            }
            return results.sorted { $0.0 < $1.0 }.map(\.1)
        }
    }
}

extension String {
    /// Very small HTML-to-text cleanup for comment bodies.
    var strippingHTML: String {
        var s = self
            .replacingOccurrences(of: "<p>", with: "\n\n")
            .replacingOccurrences(of: "<i>", with: "")
            .replacingOccurrences(of: "</i>", with: "")
        while let start = s.range(of: "<"), let end = s.range(of: ">", range: start.upperBound..<s.endIndex) {
            s.removeSubrange(start.lowerBound..<end.upperBound)
        }
        let entities = ["&#x27;": "'", "&quot;": "\"", "&amp;": "&", "&lt;": "<", "&gt;": ">", "&#x2F;": "/", "&#x3D;": "="]
        for (k, v) in entities {
            s = s.replacingOccurrences(of: k, with: v)
        }
        return s
    }
}
