import SwiftUI
import Combine

struct Quote: Hashable {
    let text: String
    let author: String
}

let allQuotes: [Quote] = [
    Quote(text: "The best way to get started is to quit talking and begin doing.", author: "Walt Disney"),
    Quote(text: "It always seems impossible until it's done.", author: "Nelson Mandela"),
    Quote(text: "Simplicity is the ultimate sophistication.", author: "Leonardo da Vinci"),
    Quote(text: "Well done is better than well said.", author: "Benjamin Franklin"),
    Quote(text: "What we think, we become.", author: "Buddha"),
    Quote(text: "Act as if what you do makes a difference. It does.", author: "William James"),
    Quote(text: "Stay hungry, stay foolish.", author: "Stewart Brand")
]

struct AppRoot: View {
    @AppStorage("userName") private var userName = ""
    @AppStorage("showAuthor") private var showAuthor = true
    @AppStorage("showGreeting") private var showGreeting = true
    @AppStorage("refreshMinutes") private var refreshMinutes = 60
    @AppStorage("appearance") private var appearance: AppearanceMode = .system
    @AppStorage("fontSize") private var fontSize: Double = 24
    @AppStorage("accent") private var accent: AccentChoice = .blue
    @AppStorage("useSerif") private var useSerif = true

    @State private var quote = allQuotes.randomElement()!
    @State private var showingSettings = false
    @State private var lastRefresh = Date()

    private let ticker = Timer.publish(every: 30, on: .main, in: .common).autoconnect()

    private var greeting: String {
        let hour = Calendar.current.component(.hour, from: .now)
        let part: String
        switch hour {
        case 5..<12: part = "Good morning"
        case 12..<17: part = "Good afternoon"
        default: part = "Good evening"
        }
        return userName.isEmpty ? part : "\(part), \(userName)"
    }

    var body: some View {
        VStack(spacing: 24) {
            if showGreeting {
                Text(greeting)
                    .font(.title3)
                    .foregroundStyle(.secondary)
                    .transition(.move(edge: .top).combined(with: .opacity))
            }

            Spacer()

            Image(systemName: "quote.opening")
                .font(.largeTitle)
                .foregroundStyle(accent.color)

            Text(quote.text)
                .font(.system(size: fontSize, weight: .medium, design: useSerif ? .serif : .default))
                .multilineTextAlignment(.center)
                .frame(maxWidth: 520)
                .id(quote)
                .transition(.opacity)

            if showAuthor {
                Text("— \(quote.author)")
                    .font(.headline)
                    .foregroundStyle(accent.color)
            }

            Spacer()

            HStack {
                Text("Next quote \(lastRefresh.addingTimeInterval(Double(refreshMinutes) * 60), style: .relative)")
                    .font(.caption)
                    .foregroundStyle(.secondary)
                Spacer()
                Button {
                    nextQuote()
                } label: {
                    Label("New Quote", systemImage: "arrow.triangle.2.circlepath")
                }
                Button {
                    showingSettings = true
                } label: {
                    Label("Settings", systemImage: "gearshape")
                }
                .keyboardShortcut(",", modifiers: .command)
            }
        }
        .padding(32)
        .frame(minWidth: 560, minHeight: 420)
        .tint(accent.color)
        .preferredColorScheme(appearance.colorScheme)
        .animation(.easeInOut, value: showGreeting)
        .animation(.easeInOut, value: showAuthor)
        .animation(.easeInOut(duration: 0.2), value: fontSize)
        .sheet(isPresented: $showingSettings) {
            SettingsView()
                .preferredColorScheme(appearance.colorScheme)
                .tint(accent.color)
        }
        .onReceive(ticker) { now in
            if now.timeIntervalSince(lastRefresh) >= Double(refreshMinutes) * 60 {
                nextQuote()
            }
        }
    }

    private func nextQuote() {
        var next = allQuotes.randomElement()!
        while next == quote && allQuotes.count > 1 {
            next = allQuotes.randomElement()!
        }
        withAnimation(.easeInOut(duration: 0.4)) {
            quote = next
        }
        lastRefresh = .now
    }
}
