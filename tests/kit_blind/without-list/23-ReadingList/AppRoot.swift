import SwiftUI

struct AppRoot: View {
    @State private var library = Library()
    @State private var selectedTab: ReadingStatus = .reading
    @State private var showingAdd = false

    var body: some View {
        TabView(selection: $selectedTab) {
            ForEach(ReadingStatus.allCases) { status in
                BookListView(library: library, status: status)
                    .tabItem {
                        Label(status.rawValue, systemImage: status.icon)
                    }
                    .badge(library.books(with: status).count)
                    .tag(status)
            }
        }
        .padding(.top, 8)
        .frame(minWidth: 600, minHeight: 460)
        .toolbar {
            Button {
                showingAdd = true
            } label: {
                Label("Add Book", systemImage: "plus")
            }
        }
        .sheet(isPresented: $showingAdd) {
            AddBookView { book in
                var newBook = book
                newBook.status = selectedTab
                library.books.append(newBook)
            }
        }
    }
}

struct BookListView: View {
    @Bindable var library: Library
    let status: ReadingStatus

    var body: some View {
        let books = library.books(with: status)
        Group {
            if books.isEmpty {
                ContentUnavailableView("Nothing here yet", systemImage: status.icon)
            } else {
                List {
                    ForEach(books) { book in
                        if let index = library.books.firstIndex(where: { $0.id == book.id }) {
                            BookRow(book: $library.books[index])
                                .contextMenu {
                                    ForEach(ReadingStatus.allCases.filter { $0 != status }) { target in
                                        Button {
                                            withAnimation { library.move(book, to: target) }
                                        } label: {
                                            Label("Move to \(target.rawValue)", systemImage: target.icon)
                                        }
                                    }
                                    Divider()
                                    Button("Delete", role: .destructive) {
                                        library.books.removeAll { $0.id == book.id }
                                    }
                                }
                        }
                    }
                }
                .listStyle(.inset)
            }
        }
    }
}

struct BookRow: View {
    @Binding var book: Book

    var body: some View {
        HStack(alignment: .top, spacing: 14) {
            RoundedRectangle(cornerRadius: 4)
                .fill(coverColor.gradient)
                .frame(width: 40, height: 58)
                .overlay(
                    Text(String(book.title.prefix(1)))
                        .font(.title2.bold())
                        .foregroundStyle(.white)
                )
                .shadow(radius: 1, y: 1)

            VStack(alignment: .leading, spacing: 4) {
                Text(book.title)
                    .font(.headline)
                Text(book.author)
                    .foregroundStyle(.secondary)

                switch book.status {
                case .wantToRead:
                    Text("\(book.pages) pages")
                        .font(.caption)
                        .foregroundStyle(.secondary)
                case .reading:
                    ProgressView(value: book.progress)
                        .frame(maxWidth: 240)
                    HStack {
                        Stepper(value: $book.currentPage, in: 0...max(book.pages, 0), step: 10) {
                            Text("Page \(book.currentPage) of \(book.pages)")
                                .font(.caption)
                        }
                        Text(book.progress, format: .percent.precision(.fractionLength(0)))
                            .font(.caption.bold())
                    }
                case .finished:
                    HStack(spacing: 2) {
                        ForEach(1...5, id: \.self) { star in
                            Image(systemName: star <= book.rating ? "star.fill" : "star")
                                .foregroundStyle(.yellow)
                                .onTapGesture {
                                    book.rating = star == book.rating ? 0 : star
                                }
                        }
                    }
                    if let finished = book.dateFinished {
                        Text("Finished \(finished.formatted(date: .abbreviated, time: .omitted))")
                            .font(.caption)
                            .foregroundStyle(.secondary)
                    }
                }
            }
        }
        .padding(.vertical, 6)
    }

    private var coverColor: Color {
        let colors: [Color] = [.red, .orange, .teal, .blue, .purple, .green, .brown]
        let hash = abs(book.title.unicodeScalars.reduce(0) { $0 + Int($1.value) })
        return colors[hash % colors.count]
    }
}

struct AddBookView: View {
    @Environment(\.dismiss) private var dismiss
    @State private var title = ""
    @State private var author = ""
    @State private var pages = 300

    let onAdd: (Book) -> Void

    var body: some View {
        NavigationStack {
            Form {
                TextField("Title", text: $title)
                TextField("Author", text: $author)
                TextField("Pages", value: $pages, format: .number)
            }
            .formStyle(.grouped)
            .navigationTitle("Add Book")
            .toolbar {
                ToolbarItem(placement: .cancellationAction) {
                    Button("Cancel") { dismiss() }
                }
                ToolbarItem(placement: .confirmationAction) {
                    Button("Add") {
                        onAdd(Book(title: title, author: author, pages: pages))
                        dismiss()
                    }
                    .disabled(title.isEmpty || author.isEmpty)
                }
            }
        }
        .frame(width: 360, height: 240)
    }
}
