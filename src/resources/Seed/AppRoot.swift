import SwiftUI

// The app every copy starts as. Describe a change in the chat beside it, and it becomes
// whatever you ask for.
struct AppRoot: View {
    var body: some View {
        ZStack {
            Theme.background
            VStack(spacing: 28) {
                Spacer()
                Badge()
                VStack(spacing: 10) {
                    Text("Hello from \(AppInfo.name)")
                        .font(.largeTitle)
                        .foregroundStyle(Theme.ink)
                    Text("This app is yours to shape.")
                        .font(.title3)
                        .foregroundStyle(Theme.muted)
                }
                Invitation()
                Spacer()
            }
            .padding(40)
        }
    }
}

// A warm square with a spark in it: the app's mark until it has one of its own.
struct Badge: View {
    var body: some View {
        ZStack {
            Theme.accent
            Image(systemName: "sparkles")
                .font(.system(size: 44))
                .foregroundStyle(Color.white)
        }
        .frame(width: 96, height: 96)
    }
}

// Tells the user where to begin.
struct Invitation: View {
    var body: some View {
        HStack(spacing: 12) {
            Image(systemName: "bubble.left.and.bubble.right")
                .foregroundStyle(Theme.accent)
            Text("Describe a change in the chat, and watch it appear here.")
                .foregroundStyle(Theme.ink)
        }
        .font(.body)
        .padding(16)
        .background(Theme.card)
    }
}
