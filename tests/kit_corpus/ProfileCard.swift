import SwiftUI

struct AppRoot: View {
    @State private var isFollowing = false
    @State private var followers = 1280

    var body: some View {
        VStack(spacing: 16) {
            Circle()
                .fill(LinearGradient(gradient: Gradient(colors: [.purple, .pink]), startPoint: .top, endPoint: .bottom))
                .frame(width: 120, height: 120)
                .overlay(Text("JD").font(.system(size: 44, weight: .bold)).foregroundColor(.white))
                .shadow(color: .purple.opacity(0.4), radius: 10, x: 0, y: 5)
            Text("Jane Doe").font(.title).fontWeight(.semibold)
            Text("iOS Developer · Coffee lover · Runner")
                .font(.subheadline)
                .foregroundColor(.secondary)
            HStack(spacing: 30) {
                StatView(value: "\(followers)", label: "Followers")
                StatView(value: "312", label: "Following")
                StatView(value: "48", label: "Posts")
            }
            Button(action: {
                isFollowing.toggle()
                followers += isFollowing ? 1 : -1
            }) {
                Text(isFollowing ? "Following" : "Follow")
                    .fontWeight(.bold)
                    .frame(maxWidth: .infinity)
                    .padding()
                    .background(isFollowing ? Color.gray.opacity(0.3) : Color.blue)
                    .foregroundColor(isFollowing ? .primary : .white)
                    .cornerRadius(10)
            }
            .buttonStyle(PlainButtonStyle())
        }
        .padding(30)
        .frame(width: 360)
        .background(RoundedRectangle(cornerRadius: 20).fill(Color(.windowBackgroundColor)))
    }
}

struct StatView: View {
    let value: String
    let label: String
    var body: some View {
        VStack {
            Text(value).font(.headline)
            Text(label).font(.caption).foregroundColor(.secondary)
        }
    }
}
