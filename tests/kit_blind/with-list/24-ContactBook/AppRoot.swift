import SwiftUI

struct AppRoot: View {
    @StateObject private var store = ContactStore()
    @State private var selection: Contact.ID?
    @State private var search = ""
    @State private var editing: Contact?

    private var favorites: [Contact] {
        store.contacts.filter(\.isFavorite).sorted { $0.sortKey < $1.sortKey }
    }

    var body: some View {
        NavigationSplitView {
            List(selection: $selection) {
                if search.isEmpty && !favorites.isEmpty {
                    Section("Favourites") {
                        ForEach(favorites) { contact in
                            ContactRow(contact: contact).tag(contact.id)
                        }
                    }
                }
                ForEach(store.sections(matching: search), id: \.letter) { section in
                    Section(section.letter) {
                        ForEach(section.contacts) { contact in
                            ContactRow(contact: contact).tag(contact.id)
                        }
                    }
                }
            }
            .searchable(text: $search, prompt: "Search contacts")
            .navigationTitle("Contacts")
            .toolbar {
                ToolbarItem {
                    Button {
                        editing = Contact(firstName: "", lastName: "")
                    } label: {
                        Label("New Contact", systemImage: "person.crop.circle.badge.plus")
                    }
                }
            }
        } detail: {
            if let contact = store.contacts.first(where: { $0.id == selection }) {
                ContactDetail(contact: contact,
                              onEdit: { editing = contact },
                              onToggleFavorite: { toggleFavorite(contact) },
                              onDelete: { delete(contact) })
            } else {
                VStack(spacing: 8) {
                    Image(systemName: "person.crop.circle")
                        .font(.system(size: 56))
                    Text("No contact selected")
                }
                .foregroundStyle(.secondary)
            }
        }
        .sheet(item: $editing) { contact in
            ContactEditor(contact: contact) { saved in
                if let i = store.contacts.firstIndex(where: { $0.id == saved.id }) {
                    store.contacts[i] = saved
                } else {
                    store.contacts.append(saved)
                }
                selection = saved.id
            }
        }
    }

    private func toggleFavorite(_ contact: Contact) {
        if let i = store.contacts.firstIndex(where: { $0.id == contact.id }) {
            store.contacts[i].isFavorite.toggle()
        }
    }

    private func delete(_ contact: Contact) {
        store.contacts.removeAll { $0.id == contact.id }
        selection = nil
    }
}

struct Avatar: View {
    let contact: Contact
    var size: CGFloat = 32

    var body: some View {
        Text(contact.initials)
            .font(.system(size: size * 0.4, weight: .semibold))
            .foregroundStyle(.white)
            .frame(width: size, height: size)
            .background(Circle().fill(contact.avatarColor.gradient))
    }
}

struct ContactRow: View {
    let contact: Contact

    var body: some View {
        HStack {
            Avatar(contact: contact, size: 28)
            VStack(alignment: .leading) {
                Text(contact.fullName.isEmpty ? "No Name" : contact.fullName)
                if !contact.company.isEmpty {
                    Text(contact.company)
                        .font(.caption)
                        .foregroundStyle(.secondary)
                }
            }
            Spacer()
            if contact.isFavorite {
                Image(systemName: "star.fill")
                    .foregroundStyle(.yellow)
                    .font(.caption)
            }
        }
    }
}

struct ContactDetail: View {
    let contact: Contact
    let onEdit: () -> Void
    let onToggleFavorite: () -> Void
    let onDelete: () -> Void
    @State private var confirmDelete = false

    var body: some View {
        ScrollView {
            VStack(spacing: 16) {
                Avatar(contact: contact, size: 96)
                Text(contact.fullName)
                    .font(.largeTitle.bold())
                if !contact.company.isEmpty {
                    Text(contact.company)
                        .foregroundStyle(.secondary)
                }

                HStack(spacing: 12) {
                    Button(action: onToggleFavorite) {
                        Label(contact.isFavorite ? "Unfavourite" : "Favourite",
                              systemImage: contact.isFavorite ? "star.slash" : "star")
                    }
                    Button(action: onEdit) {
                        Label("Edit", systemImage: "pencil")
                    }
                    .keyboardShortcut("e", modifiers: .command)
                    Button(role: .destructive) {
                        confirmDelete = true
                    } label: {
                        Label("Delete", systemImage: "trash")
                    }
                }

                GroupBox {
                    VStack(alignment: .leading, spacing: 12) {
                        InfoRow(icon: "phone.fill", label: "Phone", value: contact.phone)
                        Divider()
                        InfoRow(icon: "envelope.fill", label: "Email", value: contact.email)
                        Divider()
                        InfoRow(icon: "gift.fill", label: "Birthday", value: contact.birthdayText ?? "")
                    }
                    .padding(8)
                }
                .frame(maxWidth: 420)

                if !contact.notes.isEmpty {
                    GroupBox("Notes") {
                        Text(contact.notes)
                            .frame(maxWidth: .infinity, alignment: .leading)
                            .padding(8)
                    }
                    .frame(maxWidth: 420)
                }
            }
            .padding(32)
            .frame(maxWidth: .infinity)
        }
        .alert("Delete \(contact.fullName)?", isPresented: $confirmDelete) {
            Button("Delete", role: .destructive, action: onDelete)
            Button("Cancel", role: .cancel) {}
        } message: {
            Text("This can't be undone.")
        }
    }
}

struct InfoRow: View {
    let icon: String
    let label: String
    let value: String

    var body: some View {
        HStack {
            Image(systemName: icon)
                .foregroundStyle(.tint)
                .frame(width: 24)
            Text(label)
                .foregroundStyle(.secondary)
                .frame(width: 70, alignment: .leading)
            Text(value.isEmpty ? "—" : value)
                .textSelection(.enabled)
            Spacer()
        }
    }
}

struct ContactEditor: View {
    @State var contact: Contact
    var onSave: (Contact) -> Void
    @Environment(\.dismiss) private var dismiss

    var body: some View {
        VStack(spacing: 0) {
            Form {
                Section("Name") {
                    TextField("First name", text: $contact.firstName)
                    TextField("Last name", text: $contact.lastName)
                    TextField("Company", text: $contact.company)
                }
                Section("Contact") {
                    TextField("Phone", text: $contact.phone)
                    TextField("Email", text: $contact.email)
                }
                Section("Birthday") {
                    HStack {
                        Picker("Month", selection: $contact.birthdayMonth) {
                            Text("None").tag(0)
                            ForEach(1...12, id: \.self) { m in
                                Text(Calendar.current.monthSymbols[m - 1]).tag(m)
                            }
                        }
                        Picker("Day", selection: $contact.birthdayDay) {
                            Text("—").tag(0)
                            ForEach(1...31, id: \.self) { d in Text("\(d)").tag(d) }
                        }
                        .disabled(contact.birthdayMonth == 0)
                    }
                }
                Section("Notes") {
                    TextField("Notes", text: $contact.notes, axis: .vertical)
                        .lineLimit(3...6)
                }
                Toggle("Favourite", isOn: $contact.isFavorite)
            }
            .formStyle(.grouped)

            HStack {
                Spacer()
                Button("Cancel") { dismiss() }
                    .keyboardShortcut(.cancelAction)
                Button("Save") {
                    onSave(contact)
                    dismiss()
                }
                .buttonStyle(.borderedProminent)
                .keyboardShortcut(.defaultAction)
                .disabled(contact.firstName.isEmpty && contact.lastName.isEmpty)
            }
            .padding()
        }
        .frame(width: 440, height: 560)
    }
}
