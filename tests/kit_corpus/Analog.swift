import SwiftUI

struct Hand: Shape {
    var length: CGFloat
    func path(in rect: CGRect) -> Path {
        Path { p in
            p.move(to: CGPoint(x: rect.midX, y: rect.midY))
            p.addLine(to: CGPoint(x: rect.midX, y: rect.midY - rect.height / 2 * length))
        }
    }
}

struct AppRoot: View {
    @State private var now = Date()
    let timer = Timer.publish(every: 1, on: .main, in: .common).autoconnect()

    var body: some View {
        let calendar = Calendar.current
        let seconds = Double(calendar.component(.second, from: now))
        let minutes = Double(calendar.component(.minute, from: now)) + seconds / 60
        let hours = Double(calendar.component(.hour, from: now) % 12) + minutes / 60
        ZStack {
            Circle().stroke(Color.primary, lineWidth: 4)
            ForEach(0..<12) { tick in
                Rectangle()
                    .fill(Color.primary)
                    .frame(width: 2, height: 12)
                    .offset(y: -130)
                    .rotationEffect(.degrees(Double(tick) * 30))
            }
            Hand(length: 0.5).stroke(Color.primary, style: StrokeStyle(lineWidth: 6, lineCap: .round))
                .rotationEffect(.degrees(hours * 30))
            Hand(length: 0.75).stroke(Color.primary, style: StrokeStyle(lineWidth: 4, lineCap: .round))
                .rotationEffect(.degrees(minutes * 6))
            Hand(length: 0.85).stroke(Color.red, lineWidth: 2)
                .rotationEffect(.degrees(seconds * 6))
            Circle().fill(Color.red).frame(width: 10, height: 10)
        }
        .frame(width: 280, height: 280)
        .padding()
        .onReceive(timer) { now = $0 }
    }
}
