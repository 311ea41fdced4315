import SwiftUI

struct Quote: Hashable {
    let text: String
    let author: String
    let category: String
}

let allQuotes: [Quote] = [
    Quote(text: "The secret of getting ahead is getting started.", author: "Mark Twain", category: "motivation"),
    Quote(text: "It always seems impossible until it's done.", author: "Nelson Mandela", category: "motivation"),
    Quote(text: "Well begun is half done.", author: "Aristotle", category: "wisdom"),
    Quote(text: "The only true wisdom is in knowing you know nothing.", author: "Socrates", category: "wisdom"),
    Quote(text: "Knowing yourself is the beginning of all wisdom.", author: "Aristotle", category: "wisdom"),
    Quote(text: "I am so clever that sometimes I don't understand a single word of what I am saying.", author: "Oscar Wilde", category: "humor"),
    Quote(text: "Age is of no importance unless you're a cheese.", author: "Billie Burke", category: "humor"),
    Quote(text: "Nothing in life is to be feared, it is only to be understood.", author: "Marie Curie", category: "science"),
    Quote(text: "Somewhere, something incredible is waiting to be known.", author: "Carl Sagan", category: "science"),
    Quote(text: "Do what you can, with what you have, where you are.", author: "Theodore Roosevelt", category: "motivation")
]

struct AppRoot: View {
    @AppStorage("theme") private var theme: AppTheme = .system
    @AppStorage("accent") private var accent: AccentChoice = .purple
    @AppStorage("fontStyle") private var fontStyle: FontStyleChoice = .serif
    @AppStorage("fontSize") private var fontSize: Double = 28
    @AppStorage("alignment") private var alignment: AlignmentChoice = .center
    @AppStorage("showAuthor") private var showAuthor = true
    @AppStorage("italicQuote") private var italicQuote = true
    @AppStorage("showBackgroundGradient") private var showBackgroundGradient = true
    @AppStorage("rotateEnabled") private var rotateEnabled = false
    @AppStorage("rotateMinutes") private var rotateMinutes = 5
    @AppStorage("shuffle") private var shuffle = true
    @AppStorage("cat.motivation") private var catMotivation = true
    @AppStorage("cat.wisdom") private var catWisdom = true
    @AppStorage("cat.humor") private var catHumor = true
    @AppStorage("cat.science") private var catScience = false
    @AppStorage("quoteIndex") private var quoteIndex = 0

    @State private var showingSettings = false
    @State private var lastRotation = Date()
    @Environment(\.colorScheme) private var systemScheme

    private let ticker = Timer.publish(every: 10, on: .main, in: .common).autoconnect()

    private var pool: [Quote] {
        var cats: Set<String> = []
        if catMotivation { cats.insert("motivation") }
        if catWisdom { cats.insert("wisdom") }
        if catHumor { cats.insert("humor") }
        if catScience { cats.insert("science") }
        let filtered = allQuotes.filter { cats.contains($0.category) }
        return filtered.isEmpty ? allQuotes : filtered
    }

    private var current: Quote {
        pool[abs(quoteIndex) % pool.count]
    }

    private var isDark: Bool {
        switch theme {
        case .system: return systemScheme == .dark
        case .light: return false
        case .dark: return true
        }
    }

    var body: some View {
        ZStack {
            background
            VStack(alignment: alignment.horizontal, spacing: 20) {
                Image(systemName: "quote.opening")
                    .font(.system(size: fontSize * 1.2))
                    .foregroundStyle(accent.color)
                Text(current.text)
                    .font(.system(size: fontSize, design: fontStyle.design))
                    .italic(italicQuote)
                    .multilineTextAlignment(alignment.textAlignment)
                    .foregroundStyle(isDark ? .white : .black)
                if showAuthor {
                    Text("— \(current.author)")
                        .font(.system(size: fontSize * 0.55, weight: .semibold, design: fontStyle.design))
                        .foregroundStyle(accent.color)
                }
            }
            .frame(maxWidth: 640, alignment: Alignment(horizontal: alignment.horizontal, vertical: .center))
            .padding(40)
        }
        .frame(maxWidth: .infinity, maxHeight: .infinity)
        .overlay(alignment: .bottom) {
            HStack {
                Button { step(-1) } label: { Image(systemName: "chevron.left") }
                Button { step(1) } label: { Image(systemName: "chevron.right") }
                Spacer()
                if rotateEnabled {
                    Label("Every \(rotateMinutes) min", systemImage: "arrow.triangle.2.circlepath")
                        .font(.caption)
                        .foregroundStyle(.secondary)
                }
                Button {
                    showingSettings = true
                } label: {
                    Label("Settings", systemImage: "gearshape")
                }
                .keyboardShortcut(",", modifiers: .command)
            }
            .buttonStyle(.borderless)
            .padding()
        }
        .tint(accent.color)
        .preferredColorScheme(theme == .system ? nil : (theme == .dark ? .dark : .light))
        .sheet(isPresented: $showingSettings) {
            SettingsView()
        }
        .onReceive(ticker) { now in
            guard rotateEnabled else { return }
            if now.timeIntervalSince(lastRotation) >= Double(rotateMinutes * 60) {
                step(1)
            }
        }
    }

    @ViewBuilder
    private var background: some View {
        if showBackgroundGradient {
            LinearGradient(
                colors: isDark ? [.black, accent.color.opacity(0.35)] : [.white, accent.color.opacity(0.2)],
                startPoint: .top, endPoint: .bottom)
        } else {
            isDark ? Color.black : Color.white
        }
    }

    private func step(_ delta: Int) {
        lastRotation = Date()
        if shuffle && delta > 0 && pool.count > 1 {
            var next = Int.random(in: 0..<pool.count)
            if next == quoteIndex % pool.count { next = (next + 1) % pool.count }
            quoteIndex = next
        } else {
            quoteIndex = (quoteIndex + delta + pool.count) % pool.count
        }
    }
}
