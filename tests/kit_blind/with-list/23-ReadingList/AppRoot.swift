import SwiftUI

struct AppRoot: View {
    @StateObject private var library = Library()
    @State private var shelf: Shelf? = .status(.reading)
    @State private var selectedBookID: Book.ID?
    @State private var showingSearch = false

    var body: some View {
        NavigationSplitView {
            List(selection: $shelf) {
                Label("All Books", systemImage: "books.vertical")
                    .badge(library.books.count)
                    .tag(Shelf.all)
                Section("Shelves") {
                    ForEach(ReadingStatus.allCases) { status in
                        Label(status.rawValue, systemImage: status.icon)
                            .badge(library.count(status))
                            .tag(Shelf.status(status))
                    }
                }
            }
            .navigationTitle("Reading List")
        } content: {
            List(library.books(with: shelf?.status), selection: $selectedBookID) { book in
                BookRow(book: book)
                    .tag(book.id)
            }
            .overlay {
                if library.books(with: shelf?.status).isEmpty {
                    VStack(spacing: 8) {
                        Image(systemName: "books.vertical")
                            .font(.largeTitle)
                        Text("No books here yet")
                    }
                    .foregroundStyle(.secondary)
                }
            }
            .toolbar {
                ToolbarItem {
                    Button {
                        showingSearch = true
                    } label: {
                        Label("Add Book", systemImage: "plus")
                    }
                }
            }
        } detail: {
            if let index = library.books.firstIndex(where: { $0.id == selectedBookID }) {
                BookDetail(book: $library.books[index]) {
                    library.books.remove(at: index)
                    selectedBookID = nil
                }
            } else {
                Text("Select a book")
                    .foregroundStyle(.secondary)
            }
        }
        .sheet(isPresented: $showingSearch) {
            BookSearchSheet { book in
                library.books.append(book)
                selectedBookID = book.id
            }
        }
    }
}

enum Shelf: Hashable {
    case all
    case status(ReadingStatus)

    var status: ReadingStatus? {
        if case .status(let s) = self { return s }
        return nil
    }
}

struct BookRow: View {
    let book: Book

    var body: some View {
        VStack(alignment: .leading, spacing: 4) {
            Text(book.title)
                .font(.headline)
                .lineLimit(1)
            Text(book.author)
                .font(.subheadline)
                .foregroundStyle(.secondary)
            switch book.status {
            case .reading:
                ProgressView(value: book.progress)
                    .tint(.blue)
            case .finished:
                StarRating(rating: .constant(book.rating), size: 10)
            case .wantToRead:
                EmptyView()
            }
        }
        .padding(.vertical, 4)
    }
}

struct StarRating: View {
    @Binding var rating: Int
    var size: CGFloat = 18

    var body: some View {
        HStack(spacing: 2) {
            ForEach(1...5, id: \.self) { star in
                Image(systemName: star <= rating ? "star.fill" : "star")
                    .font(.system(size: size))
                    .foregroundStyle(star <= rating ? .yellow : .secondary)
                    .onTapGesture {
                        rating = (rating == star) ? 0 : star
                    }
            }
        }
    }
}

struct BookDetail: View {
    @Binding var book: Book
    var onDelete: () -> Void

    var body: some View {
        Form {
            Section {
                TextField("Title", text: $book.title)
                TextField("Author", text: $book.author)
                if let year = book.year {
                    LabeledContent("First published", value: String(year))
                }
                LabeledContent("Added", value: book.added.formatted(date: .abbreviated, time: .omitted))
            }

            Section("Status") {
                Picker("Status", selection: $book.status) {
                    ForEach(ReadingStatus.allCases) { s in
                        Label(s.rawValue, systemImage: s.icon).tag(s)
                    }
                }
                .pickerStyle(.inline)
                .labelsHidden()
            }

            if book.status == .reading {
                Section("Progress") {
                    Stepper("Pages: \(book.pages)", value: $book.pages, in: 1...5000, step: 10)
                    HStack {
                        Slider(value: Binding(
                            get: { Double(book.currentPage) },
                            set: { book.currentPage = Int($0) }
                        ), in: 0...Double(max(book.pages, 1)))
                        Text("\(book.currentPage) / \(book.pages)")
                            .monospacedDigit()
                            .frame(width: 90, alignment: .trailing)
                    }
                    Text("\(Int(book.progress * 100))% done")
                        .foregroundStyle(.secondary)
                }
            }

            if book.status == .finished {
                Section("Rating") {
                    StarRating(rating: $book.rating, size: 24)
                }
            }

            Section {
                Button("Remove from list", role: .destructive, action: onDelete)
            }
        }
        .formStyle(.grouped)
        .onChange(of: book.status) { _, newStatus in
            if newStatus == .finished { book.currentPage = book.pages }
        }
    }
}

struct BookSearchSheet: View {
    var onAdd: (Book) -> Void
    @Environment(\.dismiss) private var dismiss
    @State private var query = ""
    @State private var results: [OpenLibraryResult.Doc] = []
    @State private var isSearching = false
    @State private var error: String?

    var body: some View {
        VStack(alignment: .leading, spacing: 12) {
            HStack {
                Text("Add a Book").font(.title2.bold())
                Spacer()
                Button("Close") { dismiss() }
            }
            HStack {
                TextField("Search by title or author", text: $query)
                    .textFieldStyle(.roundedBorder)
                    .onSubmit { Task { await search() } }
                if isSearching {
                    ProgressView().controlSize(.small)
                }
            }
            if let error {
                Text(error).foregroundStyle(.red).font(.caption)
            }
            List(results) { doc in
                HStack {
                    VStack(alignment: .leading) {
                        Text(doc.title).font(.headline)
                        Text([doc.author_name?.first, doc.first_publish_year.map(String.init)].compactMap { $0 }.joined(separator: " · "))
                            .font(.caption)
                            .foregroundStyle(.secondary)
                    }
                    Spacer()
                    Button("Add") {
                        onAdd(Book(title: doc.title,
                                   author: doc.author_name?.first ?? "Unknown",
                                   year: doc.first_publish_year,
                                   pages: doc.number_of_pages_median ?? 300))
                        dismiss()
                    }
                }
            }
            Button("Add \"\(query)\" manually") {
                onAdd(Book(title: query, author: "Unknown", pages: 300))
                dismiss()
            }
            .buttonStyle(.link)
            .disabled(query.isEmpty)
        }
        .padding()
        .frame(width: 480, height: 480)
    }

    private func search() async {
        let q = query.trimmingCharacters(in: .whitespaces)
        guard !q.isEmpty else { return }
        isSearching = true
        error = nil
        do {
            results = try await OpenLibrary.search(q)
            if results.isEmpty { error = "No results" }
        } catch {
            self.error = "Search failed: \(error.localizedDescription)"
        }
        isSearching = false
    }
}
