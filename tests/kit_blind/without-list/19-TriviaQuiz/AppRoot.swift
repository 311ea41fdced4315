import SwiftUI
import Combine

enum QuizPhase {
    case start, playing, finished
}

struct AppRoot: View {
    @AppStorage("trivia.highScore") private var highScore = 0

    @State private var phase: QuizPhase = .start
    @State private var questions: [Question] = []
    @State private var current = 0
    @State private var score = 0
    @State private var selected: Int?
    @State private var timeLeft: Double = 15
    @State private var questionCount = 8

    private let timeLimit: Double = 15
    private let timer = Timer.publish(every: 0.1, on: .main, in: .common).autoconnect()

    var body: some View {
        ZStack {
            LinearGradient(colors: [.indigo.opacity(0.6), .purple.opacity(0.4)], startPoint: .top, endPoint: .bottom)
                .ignoresSafeArea()

            Group {
                switch phase {
                case .start:
                    startScreen
                case .playing:
                    questionScreen
                case .finished:
                    resultsScreen
                }
            }
            .padding(32)
            .frame(maxWidth: 560)
            .transition(.push(from: .trailing))
        }
        .frame(minWidth: 560, minHeight: 520)
        .onReceive(timer) { _ in
            guard phase == .playing, selected == nil else { return }
            timeLeft -= 0.1
            if timeLeft <= 0 {
                timeLeft = 0
                choose(-1)
            }
        }
    }

    private var startScreen: some View {
        VStack(spacing: 20) {
            Image(systemName: "questionmark.bubble.fill")
                .font(.system(size: 70))
                .foregroundStyle(.white)
            Text("Trivia Time")
                .font(.system(size: 44, weight: .heavy, design: .rounded))
                .foregroundStyle(.white)
            Text("High score: \(highScore)")
                .font(.title3)
                .foregroundStyle(.white.opacity(0.8))
            Stepper("Questions: \(questionCount)", value: $questionCount, in: 4...QuestionBank.all.count)
                .frame(width: 200)
                .foregroundStyle(.white)
            Button("Start Quiz", action: start)
                .buttonStyle(.borderedProminent)
                .controlSize(.large)
                .keyboardShortcut(.defaultAction)
        }
    }

    private var questionScreen: some View {
        let question = questions[current]
        return VStack(alignment: .leading, spacing: 18) {
            HStack {
                Text("Question \(current + 1)/\(questions.count)")
                Spacer()
                Text(question.category)
                    .padding(.horizontal, 10)
                    .padding(.vertical, 4)
                    .background(.white.opacity(0.2), in: Capsule())
                Spacer()
                Text("Score: \(score)")
            }
            .font(.headline)
            .foregroundStyle(.white)

            ProgressView(value: max(timeLeft, 0), total: timeLimit)
                .tint(timeLeft < 5 ? .red : .green)
                .animation(.linear(duration: 0.1), value: timeLeft)

            Text(question.prompt)
                .font(.title.bold())
                .foregroundStyle(.white)
                .fixedSize(horizontal: false, vertical: true)
                .id(question.id)

            VStack(spacing: 10) {
                ForEach(question.answers.indices, id: \.self) { index in
                    AnswerButton(text: question.answers[index],
                                 state: state(for: index, in: question)) {
                        choose(index)
                    }
                    .disabled(selected != nil)
                }
            }

            if selected != nil {
                HStack {
                    Text(selected == question.correctIndex ? "Correct! 🎉" : (selected == -1 ? "Out of time ⏰" : "Not quite."))
                        .font(.title3.bold())
                        .foregroundStyle(.white)
                    Spacer()
                    Button(current + 1 < questions.count ? "Next" : "See Results", action: next)
                        .buttonStyle(.borderedProminent)
                        .keyboardShortcut(.defaultAction)
                }
                .transition(.move(edge: .bottom).combined(with: .opacity))
            }
        }
        .animation(.easeInOut, value: selected)
    }

    private var resultsScreen: some View {
        VStack(spacing: 18) {
            Text(score == highScore && score > 0 ? "New High Score!" : "Quiz Complete")
                .font(.largeTitle.bold())
                .foregroundStyle(.white)
            ZStack {
                Circle()
                    .stroke(.white.opacity(0.25), lineWidth: 14)
                Circle()
                    .trim(from: 0, to: Double(score) / Double(max(questions.count, 1)))
                    .stroke(.white, style: StrokeStyle(lineWidth: 14, lineCap: .round))
                    .rotationEffect(.degrees(-90))
                Text("\(score)/\(questions.count)")
                    .font(.system(size: 40, weight: .bold, design: .rounded))
                    .foregroundStyle(.white)
            }
            .frame(width: 160, height: 160)
            Text("Best: \(highScore)")
                .foregroundStyle(.white.opacity(0.8))
            HStack {
                Button("Play Again", action: start)
                    .buttonStyle(.borderedProminent)
                Button("Main Menu") {
                    withAnimation { phase = .start }
                }
                .buttonStyle(.bordered)
            }
            .controlSize(.large)
        }
    }

    private func state(for index: Int, in question: Question) -> AnswerButton.AnswerState {
        guard let selected else { return .normal }
        if index == question.correctIndex { return .correct }
        if index == selected { return .wrong }
        return .dimmed
    }

    private func start() {
        questions = Array(QuestionBank.all.shuffled().prefix(questionCount))
        current = 0
        score = 0
        selected = nil
        timeLeft = timeLimit
        withAnimation { phase = .playing }
    }

    private func choose(_ index: Int) {
        guard selected == nil else { return }
        selected = index
        if index == questions[current].correctIndex {
            score += 1
        }
    }

    private func next() {
        if current + 1 < questions.count {
            withAnimation {
                current += 1
                selected = nil
                timeLeft = timeLimit
            }
        } else {
            highScore = max(highScore, score)
            withAnimation { phase = .finished }
        }
    }
}

struct AnswerButton: View {
    enum AnswerState { case normal, correct, wrong, dimmed }

    let text: String
    let state: AnswerState
    let action: () -> Void

    @State private var hovering = false

    private var fill: Color {
        switch state {
        case .normal: return hovering ? .white.opacity(0.3) : .white.opacity(0.18)
        case .correct: return .green
        case .wrong: return .red
        case .dimmed: return .white.opacity(0.08)
        }
    }

    var body: some View {
        Button(action: action) {
            HStack {
                Text(text)
                    .font(.title3)
                Spacer()
                if state == .correct {
                    Image(systemName: "checkmark.circle.fill")
                } else if state == .wrong {
                    Image(systemName: "xmark.circle.fill")
                }
            }
            .foregroundStyle(.white)
            .padding()
            .frame(maxWidth: .infinity)
            .background(fill, in: RoundedRectangle(cornerRadius: 12))
            .contentShape(RoundedRectangle(cornerRadius: 12))
        }
        .buttonStyle(.plain)
        .onHover { hovering = $0 }
        .scaleEffect(state == .wrong ? 0.97 : 1)
        .animation(.spring(response: 0.3, dampingFraction: 0.5), value: state)
    }
}
