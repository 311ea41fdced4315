import SwiftUI

struct AppRoot: View {
    @State private var display = "0"
    @State private var accumulator: Double = 0
    @State private var pendingOperation: String?
    @State private var isTypingNumber = false

    let buttons: [[String]] = [
        ["C", "±", "%", "÷"],
        ["7", "8", "9", "×"],
        ["4", "5", "6", "−"],
        ["1", "2", "3", "+"],
        ["0", ".", "="]
    ]

    var body: some View {
        VStack(spacing: 12) {
            Spacer()
            HStack {
                Spacer()
                Text(display)
                    .font(.system(size: 64, weight: .light))
                    .lineLimit(1)
                    .minimumScaleFactor(0.5)
            }
            .padding(.horizontal)
            ForEach(buttons, id: \.self) { row in
                HStack(spacing: 12) {
                    ForEach(row, id: \.self) { label in
                        Button(action: { tap(label) }) {
                            Text(label)
                                .font(.title)
                                .frame(width: label == "0" ? 152 : 70, height: 70)
                                .background(color(for: label))
                                .foregroundColor(.white)
                                .clipShape(Capsule())
                        }
                        .buttonStyle(.plain)
                    }
                }
            }
        }
        .padding()
        .background(Color.black)
    }

    func color(for label: String) -> Color {
        if ["÷", "×", "−", "+", "="].contains(label) { return .orange }
        if ["C", "±", "%"].contains(label) { return Color(.sRGB, white: 0.65, opacity: 1) }
        return Color(white: 0.2)
    }

    func tap(_ label: String) {
        switch label {
        case "0"..."9", ".":
            display = isTypingNumber ? display + label : label
            isTypingNumber = true
        case "C":
            display = "0"; accumulator = 0; pendingOperation = nil; isTypingNumber = false
        case "±":
            if let value = Double(display) { display = format(-value) }
        case "%":
            if let value = Double(display) { display = format(value / 100) }
        default:
            let value = Double(display) ?? 0
            if let op = pendingOperation {
                switch op {
                case "+": accumulator += value
                case "−": accumulator -= value
                case "×": accumulator *= value
                case "÷": accumulator = value == 0 ? 0 : accumulator / value
                default: break
                }
            } else {
                accumulator = value
            }
            display = format(accumulator)
            pendingOperation = label == "=" ? nil : label
            isTypingNumber = false
        }
    }

    func format(_ value: Double) -> String {
        value.truncatingRemainder(dividingBy: 1) == 0 ? String(Int(value)) : String(value)
    }
}
