import SwiftUI

struct AppRoot: View {
    @State private var feed: FeedKind = .top
    @State private var stories: [HNItem] = []
    @State private var allIDs: [Int] = []
    @State private var isLoading = false
    @State private var errorText: String?
    @State private var selected: HNItem?
    private let pageSize = 30

    var body: some View {
        NavigationSplitView {
            VStack(spacing: 0) {
                Picker("Feed", selection: $feed) {
                    ForEach(FeedKind.allCases) { kind in
                        Text(kind.rawValue).tag(kind)
                    }
                }
                .pickerStyle(.segmented)
                .labelsHidden()
                .padding(8)

                if let errorText {
                    Text(errorText)
                        .foregroundStyle(.red)
                        .padding()
                }

                List(selection: $selected) {
                    ForEach(Array(stories.enumerated()), id: \.element.id) { index, story in
                        StoryRow(rank: index + 1, story: story)
                            .tag(story)
                    }
                    if stories.count < allIDs.count {
                        HStack {
                            Spacer()
                            if isLoading {
                                ProgressView().controlSize(.small)
                            } else {
                                Button("Load more") { Task { await loadMore() } }
                            }
                            Spacer()
                        }
                    }
                }
                .overlay {
                    if isLoading && stories.isEmpty {
                        ProgressView("Loading \(feed.rawValue.lowercased()) stories…")
                    }
                }
            }
            .navigationSplitViewColumnWidth(min: 340, ideal: 420)
            .navigationTitle("Hacker News")
            .toolbar {
                ToolbarItem {
                    Button {
                        Task { await reload() }
                    } label: {
                        Label("Refresh", systemImage: "arrow.clockwise")
                    }
                    .keyboardShortcut("r", modifiers: .command)
                    .disabled(isLoading)
                }
            }
        } detail: {
            if let selected {
                CommentsView(story: selected)
                    .id(selected.id)
            } else {
                VStack(spacing: 8) {
                    Image(systemName: "text.bubble")
                        .font(.system(size: 44))
                    Text("Select a story to read the discussion")
                }
                .foregroundStyle(.secondary)
            }
        }
        .task(id: feed) {
            await reload()
        }
    }

    private func reload() async {
        isLoading = true
        errorText = nil
        selected = nil
        do {
            allIDs = try await HNClient.shared.storyIDs(for: feed)
            stories = await HNClient.shared.items(Array(allIDs.prefix(pageSize)))
        } catch {
            errorText = "Couldn't load stories: \(error.localizedDescription)"
        }
        isLoading = false
    }

    private func loadMore() async {
        guard !isLoading else { return }
        isLoading = true
        let next = Array(allIDs.dropFirst(stories.count).prefix(pageSize))
        let more = await HNClient.shared.items(next)
        stories.append(contentsOf: more)
        isLoading = false
    }
}

struct StoryRow: View {
    let rank: Int
    let story: HNItem

    var body: some View {
        HStack(alignment: .top, spacing: 10) {
            Text("\(rank).")
                .font(.callout.monospacedDigit())
                .foregroundStyle(.secondary)
                .frame(width: 28, alignment: .trailing)
            VStack(alignment: .leading, spacing: 4) {
                Text(story.title ?? "(untitled)")
                    .font(.body.weight(.medium))
                    .lineLimit(2)
                HStack(spacing: 10) {
                    Label("\(story.score ?? 0)", systemImage: "arrow.up")
                        .foregroundStyle(.orange)
                    Label("\(story.descendants ?? 0)", systemImage: "bubble.left")
                    Text(story.date, style: .relative) + Text(" ago")
                    if let domain = story.domain {
                        Text(domain)
                            .lineLimit(1)
                    }
                }
                .font(.caption)
                .foregroundStyle(.secondary)
            }
        }
        .padding(.vertical, 3)
    }
}

struct CommentsView: View {
    let story: HNItem
    @State private var comments: [HNItem] = []
    @State private var loading = true

    var body: some View {
        ScrollView {
            VStack(alignment: .leading, spacing: 14) {
                Text(story.title ?? "")
                    .font(.title2.bold())
                HStack(spacing: 12) {
                    Text("by \(story.by ?? "unknown")")
                    Text("\(story.score ?? 0) points")
                    if let urlString = story.url, let url = URL(string: urlString) {
                        Link(destination: url) {
                            Label("Open article", systemImage: "safari")
                        }
                    }
                }
                .font(.callout)
                .foregroundStyle(.secondary)

                if let text = story.text {
                    Text(text.strippingHTML)
                        .padding()
                        .background(RoundedRectangle(cornerRadius: 8).fill(Color.secondary.opacity(0.08)))
                }

                Divider()

                if loading {
                    ProgressView()
                        .frame(maxWidth: .infinity)
                } else if comments.isEmpty {
                    Text("No comments yet.")
                        .foregroundStyle(.secondary)
                } else {
                    ForEach(comments) { comment in
                        VStack(alignment: .leading, spacing: 6) {
                            HStack {
                                Text(comment.by ?? "[deleted]")
                                    .font(.caption.bold())
                                Text(comment.date, format: .relative(presentation: .named))
                                    .font(.caption)
                                    .foregroundStyle(.secondary)
                                Spacer()
                                if let replies = comment.kids?.count, replies > 0 {
                                    Text("\(replies) repl\(replies == 1 ? "y" : "ies")")
                                        .font(.caption)
                                        .foregroundStyle(.secondary)
                                }
                            }
                            Text((comment.text ?? "").strippingHTML)
                                .font(.callout)
                                .textSelection(.enabled)
                        }
                        .padding(12)
                        .frame(maxWidth: .infinity, alignment: .leading)
                        .background(RoundedRectangle(cornerRadius: 8).fill(Color(nsColor: .controlBackgroundColor)))
                    }
                }
            }
            .padding(20)
        }
        .task {
            let ids = Array((story.kids ?? []).prefix(20))
            let loaded = await HNClient.shared.items(ids)
            comments = loaded.filter { $0.deleted != true && $0.dead != true }
            loading = false
        }
    }
}
