import SwiftUI

struct Question {
    let text: String
    let answers: [String]
    let correct: Int
}

struct AppRoot: View {
    let questions = [
        Question(text: "What is the capital of France?", answers: ["Berlin", "Paris", "Rome", "Madrid"], correct: 1),
        Question(text: "2 + 2 × 2 = ?", answers: ["8", "6", "4", "10"], correct: 1),
        Question(text: "Which planet is largest?", answers: ["Earth", "Mars", "Jupiter", "Venus"], correct: 2),
    ]
    @State private var current = 0
    @State private var score = 0
    @State private var selected: Int?
    @State private var finished = false

    var body: some View {
        VStack(spacing: 20) {
            if finished {
                Text("Quiz complete!").font(.largeTitle)
                Text("You scored \(score) out of \(questions.count)").font(.title2)
                Button("Restart") { current = 0; score = 0; selected = nil; finished = false }
                    .buttonStyle(.borderedProminent)
            } else {
                ProgressView(value: Double(current), total: Double(questions.count))
                Text(questions[current].text).font(.title2).multilineTextAlignment(.center)
                ForEach(0..<questions[current].answers.count, id: \.self) { index in
                    Button {
                        selected = index
                        if index == questions[current].correct { score += 1 }
                        DispatchQueue.main.asyncAfter(deadline: .now() + 0.8) {
                            selected = nil
                            if current + 1 < questions.count { current += 1 } else { finished = true }
                        }
                    } label: {
                        Text(questions[current].answers[index])
                            .frame(maxWidth: .infinity)
                            .padding()
                            .background(background(for: index))
                            .cornerRadius(10)
                    }
                    .buttonStyle(.plain)
                    .disabled(selected != nil)
                }
            }
        }
        .padding()
        .frame(maxWidth: 500)
    }

    func background(for index: Int) -> Color {
        guard let selected else { return Color.gray.opacity(0.15) }
        if index == questions[current].correct { return .green.opacity(0.6) }
        return index == selected ? .red.opacity(0.6) : Color.gray.opacity(0.15)
    }
}
