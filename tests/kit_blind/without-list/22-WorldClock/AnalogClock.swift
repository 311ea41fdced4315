import SwiftUI

struct AnalogClock: View {
    let date: Date
    let timeZone: TimeZone
    var isDaytime: Bool

    private var components: DateComponents {
        var calendar = Calendar(identifier: .gregorian)
        calendar.timeZone = timeZone
        return calendar.dateComponents([.hour, .minute, .second, .nanosecond], from: date)
    }

    var body: some View {
        let hour = Double(components.hour ?? 0)
        let minute = Double(components.minute ?? 0)
        let second = Double(components.second ?? 0)

        ZStack {
            Circle()
                .fill(isDaytime ? Color.white : Color(white: 0.12))
            Circle()
                .stroke(isDaytime ? Color.gray.opacity(0.4) : Color.gray.opacity(0.6), lineWidth: 2)

            ForEach(0..<12) { tick in
                Capsule()
                    .fill(isDaytime ? Color.black : Color.white)
                    .frame(width: tick % 3 == 0 ? 3 : 1.5, height: tick % 3 == 0 ? 10 : 6)
                    .offset(y: -52)
                    .rotationEffect(.degrees(Double(tick) * 30))
            }

            Hand(length: 0.5, width: 4)
                .fill(isDaytime ? Color.black : Color.white)
                .rotationEffect(.degrees((hour.truncatingRemainder(dividingBy: 12) + minute / 60) * 30))

            Hand(length: 0.75, width: 3)
                .fill(isDaytime ? Color.black : Color.white)
                .rotationEffect(.degrees((minute + second / 60) * 6))

            Hand(length: 0.85, width: 1)
                .fill(Color.orange)
                .rotationEffect(.degrees(second * 6))

            Circle()
                .fill(Color.orange)
                .frame(width: 7, height: 7)
        }
        .frame(width: 120, height: 120)
    }
}

struct Hand: Shape {
    var length: CGFloat
    var width: CGFloat

    func path(in rect: CGRect) -> Path {
        let radius = min(rect.width, rect.height) / 2
        let center = CGPoint(x: rect.midX, y: rect.midY)
        let handRect = CGRect(x: center.x - width / 2,
                              y: center.y - radius * length,
                              width: width,
                              height: radius * length + 6)
        return Path(roundedRect: handRect, cornerRadius: width / 2)
    }
}
