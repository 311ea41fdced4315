import SwiftUI

struct Contact: Identifiable, Codable, Hashable {
    var id = UUID()
    var firstName: String
    var lastName: String
    var phone: String = ""
    var email: String = ""
    var company: String = ""
    var birthdayMonth: Int = 0
    var birthdayDay: Int = 0
    var notes: String = ""
    var isFavorite = false

    var fullName: String {
        [firstName, lastName].filter { !$0.isEmpty }.joined(separator: " ")
    }

    var initials: String {
        let f = firstName.first.map(String.init) ?? ""
        let l = lastName.first.map(String.init) ?? ""
        let result = (f + l).uppercased()
        return result.isEmpty ? "?" : result
    }

    var sortKey: String {
        (lastName.isEmpty ? firstName : lastName).lowercased()
    }

    var sectionLetter: String {
        guard let c = sortKey.first, c.isLetter else { return "#" }
        return String(c).uppercased()
    }

    var avatarColor: Color {
        let colors: [Color] = [.red, .orange, .green, .teal, .blue, .indigo, .purple, .pink]
        let hash = fullName.unicodeScalars.reduce(0) { $0 + Int($1.value) }
        return colors[hash % colors.count]
    }

    var birthdayText: String? {
        guard birthdayMonth > 0, birthdayDay > 0 else { return nil }
        let months = Calendar.current.monthSymbols
        guard birthdayMonth <= months.count else { return nil }
        return "\(months[birthdayMonth - 1]) \(birthdayDay)"
    }
}

final class ContactStore: ObservableObject {
    @Published var contacts: [Contact] = [] {
        didSet {
            if let data = try? JSONEncoder().encode(contacts) {
                UserDefaults.app.set(data, forKey: "contacts")
            }
        }
    }

    init() {
        if let data = UserDefaults.app.data(forKey: "contacts"),
           let saved = try? JSONDecoder().decode([Contact].self, from: data) {
            contacts = saved
        } else {
            contacts = [
                Contact(firstName: "Ada", lastName: "Lovelace", phone: "+44 20 7946 0001", email: "ada@example.com", company: "Analytical Engines", birthdayMonth: 12, birthdayDay: 10),
                Contact(firstName: "Grace", lastName: "Hopper", phone: "+1 555 0100", email: "grace@example.com", company: "US Navy", birthdayMonth: 12, birthdayDay: 9, isFavorite: true),
                Contact(firstName: "Alan", lastName: "Turing", email: "alan@example.com", birthdayMonth: 6, birthdayDay: 23),
                Contact(firstName: "Margaret", lastName: "Hamilton", phone: "+1 555 0199", company: "MIT")
            ]
        }
    }

    func sections(matching search: String) -> [(letter: String, contacts: [Contact])] {
        let filtered = contacts.filter {
            search.isEmpty ||
            $0.fullName.localizedCaseInsensitiveContains(search) ||
            $0.company.localizedCaseInsensitiveContains(search) ||
            $0.email.localizedCaseInsensitiveContains(search)
        }
        let grouped = Dictionary(grouping: filtered, by: \.sectionLetter)
        return grouped.keys.sorted().map { key in
            (key, (grouped[key] ?? []).sorted { $0.sortKey < $1.sortKey })
        }
    }
}
