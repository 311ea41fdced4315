import Foundation

struct Question: Identifiable {
    let id = UUID()
    let prompt: String
    let answers: [String]
    let correctIndex: Int
    let category: String
}

enum QuestionBank {
    static let all: [Question] = [
        Question(prompt: "What is the largest planet in our solar system?", answers: ["Earth", "Jupiter", "Saturn", "Neptune"], correctIndex: 1, category: "Science"),
        Question(prompt: "Which element has the chemical symbol 'O'?", answers: ["Gold", "Osmium", "Oxygen", "Iron"], correctIndex: 2, category: "Science"),
        Question(prompt: "In which year did the first person walk on the Moon?", answers: ["1965", "1969", "1972", "1959"], correctIndex: 1, category: "History"),
        Question(prompt: "Who painted the Mona Lisa?", answers: ["Michelangelo", "Raphael", "Leonardo da Vinci", "Donatello"], correctIndex: 2, category: "Art"),
        Question(prompt: "What is the capital of Australia?", answers: ["Sydney", "Melbourne", "Perth", "Canberra"], correctIndex: 3, category: "Geography"),
        Question(prompt: "How many sides does a hexagon have?", answers: ["5", "6", "7", "8"], correctIndex: 1, category: "Maths"),
        Question(prompt: "Which ocean is the largest?", answers: ["Atlantic", "Indian", "Pacific", "Arctic"], correctIndex: 2, category: "Geography"),
        Question(prompt: "What is the square root of 144?", answers: ["10", "12", "14", "16"], correctIndex: 1, category: "Maths"),
        Question(prompt: "Which language has the most native speakers?", answers: ["English", "Spanish", "Hindi", "Mandarin Chinese"], correctIndex: 3, category: "Culture"),
        Question(prompt: "What gas do plants absorb from the air?", answers: ["Oxygen", "Nitrogen", "Carbon dioxide", "Helium"], correctIndex: 2, category: "Science"),
        Question(prompt: "Which country gifted the Statue of Liberty to the USA?", answers: ["France", "Spain", "England", "Italy"], correctIndex: 0, category: "History"),
        Question(prompt: "How many keys are on a standard piano?", answers: ["76", "88", "92", "64"], correctIndex: 1, category: "Music")
    ]
}
