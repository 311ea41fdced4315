import SwiftUI

struct PasswordOptions {
    var length: Double = 16
    var uppercase = true
    var lowercase = true
    var digits = true
    var symbols = false
    var avoidAmbiguous = true

    var pool: [Character] {
        var chars = ""
        if uppercase { chars += "ABCDEFGHIJKLMNOPQRSTUVWXYZ" }
        if lowercase { chars += "abcdefghijklmnopqrstuvwxyz" }
        if digits { chars += "0123456789" }
        if symbols { chars += "!@#$%^&*()-_=+[]{};:,.<>?/" }
        if avoidAmbiguous {
            chars.removeAll { "O0oIl1|".contains($0) }
        }
        return Array(chars)
    }
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

    static func evaluate(length: Int, poolSize: Int) -> (Strength, Double) {
        guard poolSize > 1 else { return (.weak, 0) }
        let entropy = Double(length) * log2(Double(poolSize))
        switch entropy {
        case ..<40: return (.weak, entropy)
        case 40..<60: return (.fair, entropy)
        case 60..<90: return (.good, entropy)
        default: return (.strong, entropy)
        }
    }
}

struct AppRoot: View {
    @State private var options = PasswordOptions()
    @State private var password = ""
    @State private var history: [String] = []
    @State private var copied = false
    @State private var revealHistory = false

    private var strength: (Strength, Double) {
        Strength.evaluate(length: Int(options.length), poolSize: options.pool.count)
    }

    var body: some View {
        HStack(alignment: .top, spacing: 24) {
            VStack(alignment: .leading, spacing: 20) {
                Text("Password Generator")
                    .font(.largeTitle.bold())

                HStack {
                    Text(password.isEmpty ? "Select at least one character set" : password)
                        .font(.system(.title2, design: .monospaced))
                        .lineLimit(2)
                        .textSelection(.enabled)
                        .frame(maxWidth: .infinity, alignment: .leading)
                    Button {
                        copy(password)
                    } label: {
                        Image(systemName: copied ? "checkmark" : "doc.on.doc")
                    }
                    .help("Copy to clipboard")
                    .disabled(password.isEmpty)
                    Button {
                        generate()
                    } label: {
                        Image(systemName: "arrow.clockwise")
                    }
                    .keyboardShortcut("r", modifiers: .command)
                }
                .padding()
                .background(RoundedRectangle(cornerRadius: 10).fill(Color(nsColor: .textBackgroundColor)))
                .overlay(RoundedRectangle(cornerRadius: 10).stroke(Color.secondary.opacity(0.3)))

                VStack(alignment: .leading, spacing: 6) {
                    HStack(spacing: 4) {
                        ForEach(0..<4) { i in
                            Capsule()
                                .fill(i <= strength.0.rawValue ? strength.0.color : Color.secondary.opacity(0.2))
                                .frame(height: 6)
                        }
                    }
                    Text("\(strength.0.label) · about \(Int(strength.1)) bits of entropy")
                        .font(.caption)
                        .foregroundStyle(.secondary)
                }

                GroupBox {
                    VStack(alignment: .leading, spacing: 12) {
                        HStack {
                            Text("Length")
                            Slider(value: $options.length, in: 6...64, step: 1)
                            Text("\(Int(options.length))")
                                .monospacedDigit()
                                .frame(width: 28)
                        }
                        Toggle("Uppercase (A–Z)", isOn: $options.uppercase)
                        Toggle("Lowercase (a–z)", isOn: $options.lowercase)
                        Toggle("Digits (0–9)", isOn: $options.digits)
                        Toggle("Symbols (!@#…)", isOn: $options.symbols)
                        Divider()
                        Toggle("Avoid look-alike characters (O 0 l 1 I)", isOn: $options.avoidAmbiguous)
                    }
                    .padding(8)
                } label: {
                    Label("Options", systemImage: "slider.horizontal.3")
                }

                Button {
                    generate()
                } label: {
                    Text("Generate")
                        .frame(maxWidth: .infinity)
                }
                .buttonStyle(.borderedProminent)
                .controlSize(.large)
            }
            .frame(maxWidth: 460)

            VStack(alignment: .leading) {
                HStack {
                    Text("History").font(.headline)
                    Spacer()
                    Toggle(isOn: $revealHistory) {
                        Image(systemName: revealHistory ? "eye" : "eye.slash")
                    }
                    .toggleStyle(.button)
                    Button("Clear") { history.removeAll() }
                        .disabled(history.isEmpty)
                }
                List(history, id: \.self) { item in
                    HStack {
                        Text(revealHistory ? item : String(repeating: "•", count: min(item.count, 20)))
                            .font(.system(.body, design: .monospaced))
                            .lineLimit(1)
                        Spacer()
                        Button {
                            copy(item)
                        } label: {
                            Image(systemName: "doc.on.doc")
                        }
                        .buttonStyle(.borderless)
                    }
                }
                .listStyle(.bordered(alternatesRowBackgrounds: true))
            }
            .frame(minWidth: 220)
        }
        .padding(24)
        .onAppear(perform: generate)
        .onChange(of: options.length) { generate() }
        .onChange(of: options.uppercase) { generate() }
        .onChange(of: options.lowercase) { generate() }
        .onChange(of: options.digits) { generate() }
        .onChange(of: options.symbols) { generate() }
        .onChange(of: options.avoidAmbiguous) { generate() }
    }

    private func generate() {
        let pool = options.pool
        guard !pool.isEmpty else {
            password = ""
            return
        }
        var generator = SystemRandomNumberGenerator()
        password = String((0..<Int(options.length)).compactMap { _ in pool.randomElement(using: &generator) })
        history.insert(password, at: 0)
        if history.count > 15 { history.removeLast() }
        copied = false
    }

    private func copy(_ text: String) {
        Clipboard.copy(text)
        copied = true
        DispatchQueue.main.asyncAfter(deadline: .now() + 1.5) {
            copied = false
        }
    }
}

/// AppKit isn't available, so hand the text to whichever clipboard tool the desktop has.
enum Clipboard {
    static func copy(_ text: String) {
        let candidates: [(String, [String])] = [
            ("/usr/bin/wl-copy", []),
            ("/usr/bin/xclip", ["-selection", "clipboard"]),
            ("/usr/bin/xsel", ["--clipboard", "--input"])
        ]
        guard let (path, args) = candidates.first(where: { FileManager.default.isExecutableFile(atPath: $0.0) }) else {
            print("No clipboard tool found")
            return
        }
        DispatchQueue.global(qos: .userInitiated).async {
            let process = Process()
            process.executableURL = URL(fileURLWithPath: path)
            process.arguments = args
            let pipe = Pipe()
            process.standardInput = pipe
            do {
                try process.run()
                pipe.fileHandleForWriting.write(Data(text.utf8))
                try? pipe.fileHandleForWriting.close()
            } catch {
                print("Clipboard copy failed: \(error)")
            }
        }
    }
}
