import SwiftUI

struct Contact: Identifiable, Hashable {
    let id = UUID()
    var name: String
    var phone: String
    var isFavorite = false
}

struct AppRoot: View {
    @State private var contacts = [
        Contact(name: "Alice Johnson", phone: "555-0101"),
        Contact(name: "Bob Smith", phone: "555-0102", isFavorite: true),
        Contact(name: "Carol White", phone: "555-0103"),
    ]
    @State private var searchText = ""

    var filtered: [Contact] {
        searchText.isEmpty ? contacts : contacts.filter { $0.name.localizedCaseInsensitiveContains(searchText) }
    }

    var body: some View {
        NavigationStack {
            VStack {
                TextField("Search", text: $searchText)
                    .textFieldStyle(.roundedBorder)
                    .padding(.horizontal)
                List {
                    ForEach(filtered) { contact in
                        NavigationLink(destination: ContactDetail(contact: contact)) {
                            HStack {
                                Image(systemName: "person.circle.fill")
                                    .font(.title)
                                    .foregroundColor(.accentColor)
                                VStack(alignment: .leading) {
                                    Text(contact.name).font(.headline)
                                    Text(contact.phone).font(.subheadline).foregroundColor(.secondary)
                                }
                                Spacer()
                                if contact.isFavorite {
                                    Image(systemName: "star.fill").foregroundColor(.yellow)
                                }
                            }
                        }
                    }
                    .onDelete { indexSet in contacts.remove(atOffsets: indexSet) }
                }
            }
            .navigationTitle("Contacts")
        }
    }
}

struct ContactDetail: View {
    let contact: Contact
    var body: some View {
        VStack(spacing: 16) {
            Image(systemName: "person.crop.circle")
                .resizable()
                .frame(width: 100, height: 100)
            Text(contact.name).font(.largeTitle)
            Label(contact.phone, systemImage: "phone")
        }
        .navigationTitle(contact.name)
    }
}
