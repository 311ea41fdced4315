import Foundation
import Observation

enum RecipeCategory: String, Codable, CaseIterable, Identifiable {
    case breakfast = "Breakfast"
    case main = "Main"
    case dessert = "Dessert"
    case snack = "Snack"
    var id: String { rawValue }

    var symbol: String {
        switch self {
        case .breakfast: return "sunrise"
        case .main: return "fork.knife"
        case .dessert: return "birthday.cake"
        case .snack: return "carrot"
        }
    }
}

struct Ingredient: Identifiable, Codable, Hashable {
    var id = UUID()
    var amount: Double
    var unit: String
    var name: String
}

struct Recipe: Identifiable, Codable, Hashable {
    var id = UUID()
    var title: String
    var category: RecipeCategory
    var servings: Int
    var minutes: Int
    var ingredients: [Ingredient]
    var steps: [String]
    var isFavorite = false

    static let samples: [Recipe] = [
        Recipe(title: "Fluffy Pancakes", category: .breakfast, servings: 4, minutes: 20,
               ingredients: [
                Ingredient(amount: 200, unit: "g", name: "flour"),
                Ingredient(amount: 2, unit: "", name: "eggs"),
                Ingredient(amount: 300, unit: "ml", name: "milk"),
                Ingredient(amount: 1, unit: "tbsp", name: "sugar"),
                Ingredient(amount: 2, unit: "tsp", name: "baking powder")
               ],
               steps: ["Whisk the dry ingredients.", "Beat in eggs and milk until smooth.", "Cook ladlefuls in a hot buttered pan, 2 minutes per side."]),
        Recipe(title: "Tomato Pasta", category: .main, servings: 2, minutes: 25,
               ingredients: [
                Ingredient(amount: 200, unit: "g", name: "spaghetti"),
                Ingredient(amount: 400, unit: "g", name: "canned tomatoes"),
                Ingredient(amount: 2, unit: "cloves", name: "garlic"),
                Ingredient(amount: 2, unit: "tbsp", name: "olive oil")
               ],
               steps: ["Boil the pasta in salted water.", "Fry sliced garlic in oil, add tomatoes and simmer 10 minutes.", "Toss pasta with the sauce."]),
        Recipe(title: "Chocolate Mug Cake", category: .dessert, servings: 1, minutes: 5,
               ingredients: [
                Ingredient(amount: 4, unit: "tbsp", name: "flour"),
                Ingredient(amount: 2, unit: "tbsp", name: "cocoa"),
                Ingredient(amount: 3, unit: "tbsp", name: "milk"),
                Ingredient(amount: 2, unit: "tbsp", name: "sugar")
               ],
               steps: ["Mix everything in a mug.", "Microwave for 70 seconds."])
    ]
}

@Observable
final class RecipeStore {
    var recipes: [Recipe] {
        didSet {
            if let data = try? JSONEncoder().encode(recipes) {
                UserDefaults.app.set(data, forKey: "recipes")
            }
        }
    }

    init() {
        if let data = UserDefaults.app.data(forKey: "recipes"),
           let saved = try? JSONDecoder().decode([Recipe].self, from: data) {
            recipes = saved
        } else {
            recipes = Recipe.samples
        }
    }
}
