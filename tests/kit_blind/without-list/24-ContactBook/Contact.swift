import Foundation
import SwiftUI

struct Contact: Identifiable, Codable, Hashable {
    var id = UUID()
    var firstName: String
    var lastName: String
    var phone: String = ""
    var email: String = ""
    var company: String = ""
    var birthday: Date?
    var notes: String = ""
    var isFavorite = false

    var fullName: String {
        [firstName, lastName].filter { !$0.isEmpty }.joined(separator: " ")
    }

    var initials: String {
        let first = firstName.first.map(String.init) ?? ""
        let last = lastName.first.map(String.init) ?? ""
        return (first + last).uppercased()
    }

    var sectionLetter: String {
        let letter = (lastName.isEmpty ? firstName : lastName).prefix(1).uppercased()
        return letter.isEmpty ? "#" : letter
    }

    var avatarColor: Color {
        let palette: [Color] = [.blue, .green, .orange, .pink, .purple, .teal, .indigo]
        return palette[abs(fullName.hashValue) % palette.count]
    }
}

@Observable
class ContactStore {
    var contacts: [Contact] = []

    private var url: URL {
        URL.applicationSupportDirectory.appending(path: "contacts.json")
    }

    init() {
        load()
        if contacts.isEmpty {
            contacts = [
                Contact(firstName: "Ada", lastName: "Lovelace", phone: "+44 20 7946 0000", email: "ada@example.com", company: "Analytical Engines"),
                Contact(firstName: "Grace", lastName: "Hopper", phone: "+1 555 0100", email: "grace@example.com", company: "US Navy", isFavorite: true),
                Contact(firstName: "Alan", lastName: "Turing", phone: "+44 161 555 0199", email: "alan@example.com"),
                Contact(firstName: "Katherine", lastName: "Johnson", phone: "+1 555 0142", email: "kj@example.com", company: "NASA")
            ]
        }
    }

    func load() {
        guard let data = try? Data(contentsOf: url) else { return }
        let decoder = JSONDecoder()
        contacts = (try? decoder.decode([Contact].self, from: data)) ?? []
    }

    func save() {
        try? FileManager.default.createDirectory(at: URL.applicationSupportDirectory, withIntermediateDirectories: true)
        if let data = try? JSONEncoder().encode(contacts) {
            try? data.write(to: url, options: .atomic)
        }
    }
}
