import SwiftUI

struct ClockFace: View {
    let date: Date
    let timeZone: TimeZone
    let isNight: Bool

    var body: some View {
        Canvas { context, size in
            let radius = min(size.width, size.height) / 2
            let center = CGPoint(x: size.width / 2, y: size.height / 2)

            let faceRect = CGRect(x: center.x - radius, y: center.y - radius, width: radius * 2, height: radius * 2)
            context.fill(Path(ellipseIn: faceRect), with: .color(isNight ? Color(white: 0.15) : .white))
            context.stroke(Path(ellipseIn: faceRect.insetBy(dx: 1, dy: 1)), with: .color(.gray.opacity(0.5)), lineWidth: 2)

            let tickColor: Color = isNight ? .white : .black
            for i in 0..<60 {
                let angle = Double(i) / 60 * 2 * .pi
                let isHour = i % 5 == 0
                let inner = radius * (isHour ? 0.82 : 0.9)
                let outer = radius * 0.95
                var tick = Path()
                tick.move(to: point(center, inner, angle))
                tick.addLine(to: point(center, outer, angle))
                context.stroke(tick, with: .color(tickColor.opacity(isHour ? 0.9 : 0.35)), lineWidth: isHour ? 2 : 1)
            }

            var calendar = Calendar(identifier: .gregorian)
            calendar.timeZone = timeZone
            let comps = calendar.dateComponents([.hour, .minute, .second], from: date)
            let hour = Double(comps.hour ?? 0)
            let minute = Double(comps.minute ?? 0)
            let second = Double(comps.second ?? 0)

            let hourAngle = (hour.truncatingRemainder(dividingBy: 12) + minute / 60) / 12 * 2 * .pi
            let minuteAngle = (minute + second / 60) / 60 * 2 * .pi
            let secondAngle = second / 60 * 2 * .pi

            drawHand(context, center, radius * 0.5, hourAngle, width: 5, color: tickColor)
            drawHand(context, center, radius * 0.75, minuteAngle, width: 3, color: tickColor)
            drawHand(context, center, radius * 0.85, secondAngle, width: 1.2, color: .orange)

            context.fill(Path(ellipseIn: CGRect(x: center.x - 4, y: center.y - 4, width: 8, height: 8)), with: .color(.orange))
        }
        .aspectRatio(1, contentMode: .fit)
    }

    private func point(_ center: CGPoint, _ length: CGFloat, _ angle: Double) -> CGPoint {
        CGPoint(x: center.x + length * CGFloat(sin(angle)),
                y: center.y - length * CGFloat(cos(angle)))
    }

    private func drawHand(_ context: GraphicsContext, _ center: CGPoint, _ length: CGFloat, _ angle: Double, width: CGFloat, color: Color) {
        var hand = Path()
        hand.move(to: center)
        hand.addLine(to: point(center, length, angle))
        context.stroke(hand, with: .color(color), style: StrokeStyle(lineWidth: width, lineCap: .round))
    }
}
