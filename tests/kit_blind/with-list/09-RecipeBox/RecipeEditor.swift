import SwiftUI

struct RecipeEditor: View {
    var onSave: (Recipe) -> Void
    @Environment(\.dismiss) private var dismiss

    @State private var title = ""
    @State private var category: RecipeCategory = .main
    @State private var servings = 2
    @State private var minutes = 30
    @State private var ingredientsText = ""
    @State private var stepsText = ""

    var body: some View {
        VStack(spacing: 0) {
            Form {
                TextField("Title", text: $title)
                Picker("Category", selection: $category) {
                    ForEach(RecipeCategory.allCases) { Text($0.rawValue).tag($0) }
                }
                Stepper("Serves \(servings)", value: $servings, in: 1...20)
                Stepper("\(minutes) minutes", value: $minutes, in: 5...300, step: 5)

                Section {
                    TextField("e.g. 200 g flour", text: $ingredientsText, axis: .vertical)
                        .lineLimit(4...8)
                } header: {
                    Text("Ingredients (one per line: amount unit name)")
                }

                Section("Steps (one per line)") {
                    TextField("Steps", text: $stepsText, axis: .vertical)
                        .lineLimit(4...8)
                }
            }
            .padding()

            HStack {
                Button("Cancel") { dismiss() }
                    .keyboardShortcut(.cancelAction)
                Spacer()
                Button("Save") {
                    onSave(Recipe(title: title, category: category, servings: servings, minutes: minutes,
                                  ingredients: parseIngredients(), steps: parseSteps()))
                    dismiss()
                }
                .buttonStyle(.borderedProminent)
                .disabled(title.isEmpty)
            }
            .padding()
        }
        .frame(width: 460, height: 520)
    }

    private func parseIngredients() -> [Ingredient] {
        ingredientsText.split(separator: "\n").compactMap { line in
            let parts = line.split(separator: " ", maxSplits: 2).map(String.init)
            guard !parts.isEmpty else { return nil }
            if let amount = Double(parts[0]) {
                if parts.count == 3 {
                    return Ingredient(amount: amount, unit: parts[1], name: parts[2])
                } else if parts.count == 2 {
                    return Ingredient(amount: amount, unit: "", name: parts[1])
                }
            }
            return Ingredient(amount: 1, unit: "", name: String(line))
        }
    }

    private func parseSteps() -> [String] {
        stepsText.split(separator: "\n")
            .map { $0.trimmingCharacters(in: .whitespaces) }
            .filter { !$0.isEmpty }
    }
}
