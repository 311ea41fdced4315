import SwiftUI

enum QuizPhase {
    case start, playing, finished
}

struct AppRoot: View {
    @AppStorage("bestScore") private var bestScore = 0
    @State private var phase: QuizPhase = .start
    @State private var questions: [Question] = []
    @State private var current = 0
    @State private var score = 0
    @State private var selected: String?
    @State private var timeLeft = 15
    @State private var streak = 0

    private let secondsPerQuestion = 15
    private let timer = Timer.publish(every: 1, on: .main, in: .common).autoconnect()

    var body: some View {
        ZStack {
            LinearGradient(colors: [.teal.opacity(0.3), .blue.opacity(0.2)], startPoint: .top, endPoint: .bottom)
                .ignoresSafeArea()

            switch phase {
            case .start:
                startView
            case .playing:
                if current < questions.count {
                    questionView(questions[current])
                }
            case .finished:
                resultView
            }
        }
        .onReceive(timer) { _ in
            guard phase == .playing, selected == nil else { return }
            if timeLeft > 0 {
                timeLeft -= 1
            } else {
                answer(nil)
            }
        }
    }

    private var startView: some View {
        VStack(spacing: 20) {
            Image(systemName: "globe.europe.africa.fill")
                .font(.system(size: 80))
                .foregroundStyle(.teal)
            Text("Capitals Quiz")
                .font(.largeTitle.bold())
            Text("10 questions · \(secondsPerQuestion) seconds each")
                .foregroundStyle(.secondary)
            if bestScore > 0 {
                Label("Best: \(bestScore)/10", systemImage: "trophy.fill")
                    .foregroundStyle(.orange)
            }
            Button("Start", action: startRound)
                .buttonStyle(.borderedProminent)
                .controlSize(.large)
                .keyboardShortcut(.defaultAction)
        }
    }

    private func questionView(_ q: Question) -> some View {
        VStack(spacing: 24) {
            HStack {
                Text("Question \(current + 1)/\(questions.count)")
                    .font(.headline)
                Spacer()
                if streak >= 3 {
                    Label("\(streak) in a row", systemImage: "flame.fill")
                        .foregroundStyle(.orange)
                }
                Spacer()
                Text("Score: \(score)")
                    .font(.headline)
            }

            ProgressView(value: Double(timeLeft), total: Double(secondsPerQuestion))
                .tint(timeLeft <= 5 ? .red : .teal)

            Text(q.country.flag)
                .font(.system(size: 72))
            Text("What is the capital of \(q.country.name)?")
                .font(.title2.weight(.semibold))
                .multilineTextAlignment(.center)

            LazyVGrid(columns: [GridItem(.flexible()), GridItem(.flexible())], spacing: 12) {
                ForEach(Array(q.options.enumerated()), id: \.element) { index, option in
                    Button {
                        answer(option)
                    } label: {
                        HStack {
                            Text("\(index + 1)")
                                .font(.caption.bold())
                                .foregroundStyle(.secondary)
                            Text(option)
                                .font(.title3)
                            Spacer()
                            if selected != nil && option == q.country.capital {
                                Image(systemName: "checkmark.circle.fill").foregroundStyle(.green)
                            } else if selected == option {
                                Image(systemName: "xmark.circle.fill").foregroundStyle(.red)
                            }
                        }
                        .padding()
                        .frame(maxWidth: .infinity)
                        .background(
                            RoundedRectangle(cornerRadius: 10)
                                .fill(color(for: option, in: q))
                        )
                    }
                    .buttonStyle(.plain)
                    .disabled(selected != nil)
                    .keyboardShortcut(KeyEquivalent(Character("\(index + 1)")), modifiers: [])
                }
            }

            if selected != nil {
                HStack {
                    Text(selected == q.country.capital ? "Correct! 🎉" : (selected == "" ? "Time's up!" : "Not quite — it's \(q.country.capital)."))
                        .font(.headline)
                    Spacer()
                    Button(current + 1 < questions.count ? "Next" : "See results", action: next)
                        .buttonStyle(.borderedProminent)
                        .keyboardShortcut(.return, modifiers: [])
                }
            }
        }
        .padding(32)
        .frame(maxWidth: 600)
    }

    private var resultView: some View {
        VStack(spacing: 16) {
            Text(score >= 8 ? "🏆" : score >= 5 ? "👍" : "📚")
                .font(.system(size: 72))
            Text("You scored \(score) out of \(questions.count)")
                .font(.title.bold())
            if score == bestScore && score > 0 {
                Text("New best score!")
                    .foregroundStyle(.orange)
                    .font(.headline)
            } else {
                Text("Best: \(bestScore)")
                    .foregroundStyle(.secondary)
            }
            Button("Play again", action: startRound)
                .buttonStyle(.borderedProminent)
                .controlSize(.large)
        }
    }

    private func color(for option: String, in q: Question) -> Color {
        guard let selected else { return Color(nsColor: .controlBackgroundColor) }
        if option == q.country.capital { return .green.opacity(0.25) }
        if option == selected { return .red.opacity(0.25) }
        return Color(nsColor: .controlBackgroundColor).opacity(0.6)
    }

    private func startRound() {
        questions = Question.makeRound(count: 10)
        current = 0
        score = 0
        streak = 0
        selected = nil
        timeLeft = secondsPerQuestion
        phase = .playing
    }

    private func answer(_ option: String?) {
        guard selected == nil, current < questions.count else { return }
        selected = option ?? ""
        if option == questions[current].country.capital {
            score += 1
            streak += 1
        } else {
            streak = 0
        }
    }

    private func next() {
        if current + 1 < questions.count {
            current += 1
            selected = nil
            timeLeft = secondsPerQuestion
        } else {
            bestScore = max(bestScore, score)
            phase = .finished
        }
    }
}
