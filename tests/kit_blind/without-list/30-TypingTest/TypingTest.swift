import SwiftUI
import Combine

enum Passages {
    static let all = [
        "The quick brown fox jumps over the lazy dog while the sleepy cat watches from the warm windowsill.",
        "Good software is built in small steps, each one tested and understood before moving on to the next.",
        "On quiet mornings the harbour fills with fog, and the fishing boats slip out one by one into the grey.",
        "She packed a notebook, two pencils and an apple, then set off up the hill to sketch the old lighthouse.",
        "Learning to type quickly is less about speed and more about rhythm, accuracy and a relaxed pair of hands."
    ]
}

@Observable
final class TypingSession {
    var target: String = Passages.all.randomElement()!
    var typed: String = "" {
        didSet { handleInput(oldValue: oldValue) }
    }
    var startDate: Date?
    var endDate: Date?
    var keystrokes = 0
    var errors = 0

    var isFinished: Bool { endDate != nil }

    var elapsed: TimeInterval {
        guard let startDate else { return 0 }
        return (endDate ?? .now).timeIntervalSince(startDate)
    }

    var correctCharacters: Int {
        zip(typed, target).filter { $0 == $1 }.count
    }

    var wpm: Double {
        guard elapsed > 1 else { return 0 }
        return (Double(correctCharacters) / 5) / (elapsed / 60)
    }

    var accuracy: Double {
        guard keystrokes > 0 else { return 1 }
        return max(0, Double(keystrokes - errors) / Double(keystrokes))
    }

    func reset(newPassage: Bool = true) {
        if newPassage {
            var next = Passages.all.randomElement()!
            while next == target { next = Passages.all.randomElement()! }
            target = next
        }
        startDate = nil
        endDate = nil
        keystrokes = 0
        errors = 0
        typed = ""
    }

    private func handleInput(oldValue: String) {
        guard !isFinished else { return }
        if startDate == nil && !typed.isEmpty {
            startDate = .now
        }
        if typed.count > oldValue.count {
            keystrokes += 1
            let index = typed.index(before: typed.endIndex)
            let position = typed.distance(from: typed.startIndex, to: index)
            if position < target.count {
                let expected = target[target.index(target.startIndex, offsetBy: position)]
                if typed[index] != expected { errors += 1 }
            }
        }
        if typed.count >= target.count {
            endDate = .now
        }
    }
}

struct AppRoot: View {
    @State private var session = TypingSession()
    @AppStorage("typing.bestWPM") private var bestWPM: Double = 0
    @FocusState private var inputFocused: Bool
    @State private var now = Date()

    private let clock = Timer.publish(every: 0.2, on: .main, in: .common).autoconnect()

    var body: some View {
        VStack(spacing: 22) {
            HStack(spacing: 30) {
                StatView(title: "WPM", value: String(format: "%.0f", session.wpm))
                StatView(title: "Accuracy", value: session.accuracy.formatted(.percent.precision(.fractionLength(0))))
                StatView(title: "Time", value: String(format: "%.1fs", session.elapsed))
                StatView(title: "Best", value: String(format: "%.0f", bestWPM))
            }
            .id(now)

            highlightedPassage
                .font(.system(size: 22, design: .monospaced))
                .lineSpacing(8)
                .padding(20)
                .frame(maxWidth: .infinity, alignment: .leading)
                .background(.quaternary.opacity(0.4), in: RoundedRectangle(cornerRadius: 12))
                .onTapGesture { inputFocused = true }

            TextField("Start typing…", text: $session.typed, axis: .vertical)
                .textFieldStyle(.roundedBorder)
                .font(.system(size: 16, design: .monospaced))
                .focused($inputFocused)
                .disabled(session.isFinished)
                .autocorrectionDisabled()
                .lineLimit(3...5)

            if session.isFinished {
                VStack(spacing: 8) {
                    Text(session.wpm >= bestWPM ? "New personal best! 🏆" : "Finished!")
                        .font(.title2.bold())
                    Text("\(Int(session.wpm)) words per minute at \(session.accuracy.formatted(.percent.precision(.fractionLength(0)))) accuracy")
                        .foregroundStyle(.secondary)
                }
                .transition(.move(edge: .bottom).combined(with: .opacity))
            }

            HStack {
                Button("Restart") {
                    session.reset(newPassage: false)
                    inputFocused = true
                }
                Button("New Passage") {
                    session.reset()
                    inputFocused = true
                }
                .keyboardShortcut("n")
                .buttonStyle(.borderedProminent)
            }
        }
        .padding(28)
        .frame(minWidth: 640, minHeight: 460)
        .animation(.easeInOut, value: session.isFinished)
        .onAppear { inputFocused = true }
        .onReceive(clock) { date in
            if session.startDate != nil && !session.isFinished {
                now = date
            }
        }
        .onChange(of: session.isFinished) { _, finished in
            if finished && session.wpm > bestWPM {
                bestWPM = session.wpm
            }
        }
    }

    private var highlightedPassage: Text {
        let typedChars = Array(session.typed)
        var result = Text("")
        for (i, char) in session.target.enumerated() {
            let piece = Text(String(char))
            if i < typedChars.count {
                if typedChars[i] == char {
                    result = result + piece.foregroundColor(.green)
                } else {
                    result = result + Text(char == " " ? "·" : String(char))
                        .foregroundColor(.red)
                        .underline()
                }
            } else if i == typedChars.count {
                result = result + piece.foregroundColor(.primary).underline(true, color: .accentColor).bold()
            } else {
                result = result + piece.foregroundColor(.secondary)
            }
        }
        return result
    }
}

struct StatView: View {
    let title: String
    let value: String

    var body: some View {
        VStack(spacing: 2) {
            Text(value)
                .font(.system(size: 30, weight: .semibold, design: .rounded))
                .monospacedDigit()
            Text(title.uppercased())
                .font(.caption2.weight(.semibold))
                .foregroundStyle(.secondary)
        }
        .frame(minWidth: 90)
    }
}
