import SwiftUI

struct AppRoot: View {
    @State private var store = ContactStore()
    @State private var selection: Contact.ID?
    @State private var query = ""
    @State private var columnVisibility: NavigationSplitViewVisibility = .all

    private var sections: [(letter: String, contacts: [Contact])] {
        let filtered = store.contacts.filter {
            query.isEmpty
            || $0.fullName.localizedCaseInsensitiveContains(query)
            || $0.company.localizedCaseInsensitiveContains(query)
            || $0.email.localizedCaseInsensitiveContains(query)
        }
        let grouped = Dictionary(grouping: filtered, by: \.sectionLetter)
        return grouped.keys.sorted().map { key in
            (key, grouped[key]!.sorted { $0.lastName < $1.lastName })
        }
    }

    var body: some View {
        NavigationSplitView(columnVisibility: $columnVisibility) {
            List(selection: $selection) {
                ForEach(sections, id: \.letter) { section in
                    Section(section.letter) {
                        ForEach(section.contacts) { contact in
                            HStack {
                                AvatarView(contact: contact, size: 28)
                                Text(contact.fullName)
                                if contact.isFavorite {
                                    Spacer()
                                    Image(systemName: "star.fill")
                                        .foregroundStyle(.yellow)
                                        .font(.caption)
                                }
                            }
                            .tag(contact.id)
                        }
                    }
                }
            }
            .searchable(text: $query, placement: .sidebar)
            .navigationSplitViewColumnWidth(min: 220, ideal: 250, max: 320)
            .toolbar {
                ToolbarItem {
                    Button(action: addContact) {
                        Label("New Contact", systemImage: "person.badge.plus")
                    }
                }
            }
        } detail: {
            if let id = selection, let index = store.contacts.firstIndex(where: { $0.id == id }) {
                ContactDetail(contact: $store.contacts[index]) {
                    store.contacts.remove(at: index)
                    selection = nil
                    store.save()
                }
                .id(id)
            } else {
                ContentUnavailableView("Select a Contact", systemImage: "person.crop.circle")
            }
        }
        .navigationSplitViewStyle(.balanced)
        .frame(minWidth: 720, minHeight: 480)
        .onChange(of: store.contacts) { store.save() }
    }

    private func addContact() {
        let contact = Contact(firstName: "New", lastName: "Contact")
        store.contacts.append(contact)
        selection = contact.id
    }
}

struct AvatarView: View {
    let contact: Contact
    var size: CGFloat = 40

    var body: some View {
        Circle()
            .fill(contact.avatarColor.gradient)
            .frame(width: size, height: size)
            .overlay {
                Text(contact.initials)
                    .font(.system(size: size * 0.4, weight: .semibold, design: .rounded))
                    .foregroundStyle(.white)
            }
    }
}

struct ContactDetail: View {
    @Binding var contact: Contact
    var onDelete: () -> Void

    @State private var isEditing = false
    @State private var draft = Contact(firstName: "", lastName: "")
    @State private var confirmDelete = false

    var body: some View {
        ScrollView {
            VStack(spacing: 20) {
                AvatarView(contact: isEditing ? draft : contact, size: 96)
                    .shadow(radius: 4)

                if isEditing {
                    editForm
                } else {
                    readOnly
                }
            }
            .padding(30)
            .frame(maxWidth: 520)
            .frame(maxWidth: .infinity)
        }
        .toolbar {
            ToolbarItemGroup {
                if isEditing {
                    Button("Cancel") {
                        withAnimation { isEditing = false }
                    }
                    Button("Done") {
                        contact = draft
                        withAnimation { isEditing = false }
                    }
                    .keyboardShortcut(.return, modifiers: .command)
                } else {
                    Button {
                        contact.isFavorite.toggle()
                    } label: {
                        Label("Favorite", systemImage: contact.isFavorite ? "star.fill" : "star")
                    }
                    Button("Edit") {
                        draft = contact
                        withAnimation { isEditing = true }
                    }
                    .keyboardShortcut("e")
                    Button(role: .destructive) {
                        confirmDelete = true
                    } label: {
                        Label("Delete", systemImage: "trash")
                    }
                }
            }
        }
        .confirmationDialog("Delete \(contact.fullName)?", isPresented: $confirmDelete) {
            Button("Delete", role: .destructive, action: onDelete)
        } message: {
            Text("This can't be undone.")
        }
    }

    private var readOnly: some View {
        VStack(spacing: 18) {
            VStack(spacing: 4) {
                Text(contact.fullName)
                    .font(.largeTitle.bold())
                if !contact.company.isEmpty {
                    Text(contact.company)
                        .foregroundStyle(.secondary)
                }
            }

            GroupBox {
                VStack(alignment: .leading, spacing: 12) {
                    if !contact.phone.isEmpty {
                        LabeledContent("Phone") { Text(contact.phone).textSelection(.enabled) }
                    }
                    if !contact.email.isEmpty {
                        LabeledContent("Email") {
                            if let url = URL(string: "mailto:\(contact.email)") {
                                Link(contact.email, destination: url)
                            }
                        }
                    }
                    if let birthday = contact.birthday {
                        LabeledContent("Birthday", value: birthday, format: .dateTime.day().month(.wide).year())
                    }
                    if !contact.notes.isEmpty {
                        Divider()
                        Text(contact.notes)
                            .frame(maxWidth: .infinity, alignment: .leading)
                    }
                }
                .padding(8)
            }
        }
        .transition(.opacity)
    }

    private var editForm: some View {
        Form {
            Section("Name") {
                TextField("First name", text: $draft.firstName)
                TextField("Last name", text: $draft.lastName)
                TextField("Company", text: $draft.company)
            }
            Section("Contact") {
                TextField("Phone", text: $draft.phone)
                TextField("Email", text: $draft.email)
                Toggle("Has birthday", isOn: Binding(
                    get: { draft.birthday != nil },
                    set: { draft.birthday = $0 ? (draft.birthday ?? .now) : nil }
                ))
                if draft.birthday != nil {
                    DatePicker("Birthday",
                               selection: Binding(get: { draft.birthday ?? .now }, set: { draft.birthday = $0 }),
                               displayedComponents: .date)
                }
            }
            Section("Notes") {
                TextEditor(text: $draft.notes)
                    .frame(minHeight: 80)
            }
        }
        .formStyle(.grouped)
        .transition(.opacity)
    }
}
