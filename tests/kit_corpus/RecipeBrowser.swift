import SwiftUI

struct Recipe: Identifiable, Hashable {
    let id = UUID()
    let name: String
    let minutes: Int
    let ingredients: [String]
}

struct AppRoot: View {
    let recipes = [
        Recipe(name: "Pancakes", minutes: 20, ingredients: ["Flour", "Milk", "Eggs", "Butter"]),
        Recipe(name: "Omelette", minutes: 10, ingredients: ["Eggs", "Cheese", "Salt"]),
        Recipe(name: "Salad", minutes: 15, ingredients: ["Lettuce", "Tomato", "Olive oil"]),
    ]

    var body: some View {
        NavigationStack {
            List(recipes) { recipe in
                NavigationLink(value: recipe) {
                    Label("\(recipe.name) — \(recipe.minutes) min", systemImage: "fork.knife")
                }
            }
            .navigationTitle("Recipes")
            .navigationDestination(for: Recipe.self) { recipe in
                List {
                    Section("Ingredients") {
                        ForEach(recipe.ingredients, id: \.self) { Text($0) }
                    }
                }
                .navigationTitle(recipe.name)
            }
        }
    }
}
