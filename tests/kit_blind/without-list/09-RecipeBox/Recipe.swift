import Foundation

enum RecipeCategory: String, Codable, CaseIterable, Identifiable {
    case breakfast = "Breakfast"
    case lunch = "Lunch"
    case dinner = "Dinner"
    case dessert = "Dessert"
    case snack = "Snack"

    var id: String { rawValue }

    var symbol: String {
        switch self {
        case .breakfast: return "sunrise"
        case .lunch: return "sun.max"
        case .dinner: return "moon.stars"
        case .dessert: return "birthday.cake"
        case .snack: return "carrot"
        }
    }
}

struct Recipe: Identifiable, Codable, Hashable {
    var id = UUID()
    var name: String
    var category: RecipeCategory
    var minutes: Int
    var servings: Int
    var ingredients: [String]
    var steps: [String]
    var isFavorite = false
}

extension Recipe {
    static let samples: [Recipe] = [
        Recipe(name: "Fluffy Pancakes", category: .breakfast, minutes: 20, servings: 4,
               ingredients: ["1 cup flour", "1 egg", "3/4 cup milk", "2 tbsp sugar", "2 tsp baking powder", "Pinch of salt"],
               steps: ["Whisk dry ingredients.", "Add egg and milk and stir until just combined.", "Cook on a hot buttered pan until bubbles form, then flip."]),
        Recipe(name: "Tomato Basil Pasta", category: .dinner, minutes: 25, servings: 2,
               ingredients: ["200g spaghetti", "2 cloves garlic", "400g canned tomatoes", "Fresh basil", "Olive oil", "Parmesan"],
               steps: ["Boil pasta in salted water.", "Sauté garlic in olive oil, add tomatoes and simmer 10 minutes.", "Toss pasta with sauce and basil, top with parmesan."]),
        Recipe(name: "Chocolate Mug Cake", category: .dessert, minutes: 5, servings: 1,
               ingredients: ["4 tbsp flour", "2 tbsp cocoa", "3 tbsp sugar", "3 tbsp milk", "2 tbsp oil"],
               steps: ["Mix everything in a large mug.", "Microwave for 70–90 seconds."],
               isFavorite: true)
    ]
}

final class RecipeStore: ObservableObject {
    @Published var recipes: [Recipe] {
        didSet { save() }
    }

    private static let key = "recipes.v1"

    init() {
        if let data = UserDefaults.standard.data(forKey: Self.key),
           let saved = try? JSONDecoder().decode([Recipe].self, from: data) {
            recipes = saved
        } else {
            recipes = Recipe.samples
        }
    }

    private func save() {
        guard let data = try? JSONEncoder().encode(recipes) else { return }
        UserDefaults.standard.set(data, forKey: Self.key)
    }
}
