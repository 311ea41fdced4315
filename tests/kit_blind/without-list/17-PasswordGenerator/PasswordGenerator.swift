import SwiftUI

struct PasswordOptions: Equatable {
    var length: Double = 16
    var uppercase = true
    var lowercase = true
    var digits = true
    var symbols = false
    var avoidAmbiguous = false
}

enum Strength: Int {
    case weak, fair, good, strong

    var label: String {
        switch self {
        case .weak: return "Weak"
        case .fair: return "Fair"
        case .good: return "Good"
        case .strong: return "Strong"
        }
    }

    var color: Color {
        switch self {
        case .weak: return .red
        case .fair: return .orange
        case .good: return .yellow
        case .strong: return .green
        }
    }
}

enum Generator {
    static let upper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ"
    static let lower = "abcdefghijklmnopqrstuvwxyz"
    static let numbers = "0123456789"
    static let symbolSet = "!@#$%^&*()-_=+[]{};:,.<>?/"
    static let ambiguous: Set<Character> = ["O", "0", "l", "1", "I"]

    static func make(_ options: PasswordOptions) -> String {
        var pools: [[Character]] = []
        if options.uppercase { pools.append(Array(upper)) }
        if options.lowercase { pools.append(Array(lower)) }
        if options.digits { pools.append(Array(numbers)) }
        if options.symbols { pools.append(Array(symbolSet)) }
        if options.avoidAmbiguous {
            pools = pools.map { $0.filter { !ambiguous.contains($0) } }
        }
        guard !pools.isEmpty else { return "" }

        let length = Int(options.length)
        var result: [Character] = pools.compactMap { $0.randomElement() }
        let all = pools.flatMap { $0 }
        while result.count < length {
            result.append(all.randomElement()!)
        }
        return String(result.prefix(length).shuffled())
    }

    static func entropy(of password: String, options: PasswordOptions) -> Double {
        var poolSize = 0
        if options.uppercase { poolSize += 26 }
        if options.lowercase { poolSize += 26 }
        if options.digits { poolSize += 10 }
        if options.symbols { poolSize += symbolSet.count }
        guard poolSize > 0 else { return 0 }
        return Double(password.count) * log2(Double(poolSize))
    }

    static func strength(bits: Double) -> Strength {
        switch bits {
        case ..<40: return .weak
        case 40..<60: return .fair
        case 60..<80: return .good
        default: return .strong
        }
    }
}

struct AppRoot: View {
    @State private var options = PasswordOptions()
    @State private var password = ""
    @State private var history: [String] = []
    @State private var revealHistory = false

    private var bits: Double { Generator.entropy(of: password, options: options) }
    private var strength: Strength { Generator.strength(bits: bits) }

    var body: some View {
        VStack(alignment: .leading, spacing: 20) {
            HStack {
                Text(password.isEmpty ? "Select at least one character set" : password)
                    .font(.system(.title2, design: .monospaced))
                    .textSelection(.enabled)
                    .lineLimit(2)
                    .minimumScaleFactor(0.5)
                    .frame(maxWidth: .infinity, alignment: .leading)
                    .foregroundStyle(password.isEmpty ? .secondary : .primary)

                Button {
                    generate()
                } label: {
                    Image(systemName: "arrow.clockwise")
                }
                .help("Generate")
                .keyboardShortcut("r")
            }
            .padding()
            .background(.quaternary.opacity(0.5), in: RoundedRectangle(cornerRadius: 10))

            VStack(alignment: .leading, spacing: 6) {
                HStack {
                    Text("Strength: \(strength.label)")
                        .font(.subheadline.bold())
                        .foregroundStyle(strength.color)
                    Spacer()
                    Text("\(Int(bits)) bits")
                        .font(.caption)
                        .foregroundStyle(.secondary)
                }
                GeometryReader { geo in
                    ZStack(alignment: .leading) {
                        Capsule().fill(Color.secondary.opacity(0.2))
                        Capsule()
                            .fill(strength.color)
                            .frame(width: geo.size.width * min(bits / 100, 1))
                    }
                }
                .frame(height: 8)
                .animation(.easeInOut, value: bits)
            }

            GroupBox {
                VStack(alignment: .leading, spacing: 10) {
                    HStack {
                        Text("Length")
                        Slider(value: $options.length, in: 6...64, step: 1)
                        Text("\(Int(options.length))")
                            .monospacedDigit()
                            .frame(width: 28, alignment: .trailing)
                    }
                    Toggle("Uppercase (A–Z)", isOn: $options.uppercase)
                    Toggle("Lowercase (a–z)", isOn: $options.lowercase)
                    Toggle("Numbers (0–9)", isOn: $options.digits)
                    Toggle("Symbols (!@#…)", isOn: $options.symbols)
                    Toggle("Avoid ambiguous characters", isOn: $options.avoidAmbiguous)
                }
                .padding(6)
            } label: {
                Text("Options")
            }

            DisclosureGroup("History (\(history.count))", isExpanded: $revealHistory) {
                if history.isEmpty {
                    Text("Nothing yet").foregroundStyle(.secondary)
                } else {
                    ForEach(history, id: \.self) { old in
                        HStack {
                            Text(old)
                                .font(.system(.body, design: .monospaced))
                                .textSelection(.enabled)
                                .lineLimit(1)
                                .truncationMode(.middle)
                            Spacer()
                            Button("Use") {
                                withAnimation { password = old }
                            }
                            .buttonStyle(.link)
                        }
                    }
                }
            }

            Spacer(minLength: 0)
        }
        .padding(24)
        .frame(minWidth: 480, minHeight: 520)
        .onAppear(perform: generate)
        .onChange(of: options) { generate() }
    }

    private func generate() {
        let new = Generator.make(options)
        if !password.isEmpty && password != new {
            history.insert(password, at: 0)
            if history.count > 8 { history.removeLast() }
        }
        password = new
    }
}
