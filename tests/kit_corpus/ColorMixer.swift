import SwiftUI

struct AppRoot: View {
    @State private var red = 0.5
    @State private var green = 0.3
    @State private var blue = 0.8

    var body: some View {
        VStack(spacing: 20) {
            RoundedRectangle(cornerRadius: 20)
                .fill(Color(red: red, green: green, blue: blue))
                .frame(height: 200)
                .shadow(radius: 10)
            ColorSlider(value: $red, color: .red, label: "Red")
            ColorSlider(value: $green, color: .green, label: "Green")
            ColorSlider(value: $blue, color: .blue, label: "Blue")
            Text(String(format: "#%02X%02X%02X", Int(red * 255), Int(green * 255), Int(blue * 255)))
                .font(.system(.title, design: .monospaced))
        }
        .padding(30)
    }
}

struct ColorSlider: View {
    @Binding var value: Double
    let color: Color
    let label: String
    var body: some View {
        HStack {
            Text(label).frame(width: 50, alignment: .leading)
            Slider(value: $value, in: 0...1)
                .tint(color)
            Text("\(Int(value * 255))").frame(width: 40).monospacedDigit()
        }
    }
}
