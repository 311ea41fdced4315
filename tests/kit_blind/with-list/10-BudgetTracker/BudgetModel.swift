import Foundation
import SwiftUI

struct BudgetCategory: Identifiable, Codable, Hashable {
    var id = UUID()
    var name: String
    var icon: String
    var limit: Double
}

struct Expense: Identifiable, Codable, Hashable {
    var id = UUID()
    var categoryID: UUID
    var amount: Double
    var note: String
    var date: Date
}

@MainActor
final class BudgetModel: ObservableObject {
    @Published var categories: [BudgetCategory] = [] { didSet { save() } }
    @Published var expenses: [Expense] = [] { didSet { save() } }
    @Published var month: Date = Date()

    private let defaults = UserDefaults.app

    init() {
        let decoder = JSONDecoder()
        if let data = defaults.data(forKey: "categories"),
           let c = try? decoder.decode([BudgetCategory].self, from: data) {
            categories = c
        } else {
            categories = [
                BudgetCategory(name: "Rent", icon: "house.fill", limit: 1200),
                BudgetCategory(name: "Groceries", icon: "cart.fill", limit: 400),
                BudgetCategory(name: "Transport", icon: "tram.fill", limit: 120),
                BudgetCategory(name: "Fun", icon: "gamecontroller.fill", limit: 150),
                BudgetCategory(name: "Eating out", icon: "fork.knife", limit: 200)
            ]
        }
        if let data = defaults.data(forKey: "expenses"),
           let e = try? decoder.decode([Expense].self, from: data) {
            expenses = e
        }
    }

    var monthExpenses: [Expense] {
        expenses
            .filter { Calendar.current.isDate($0.date, equalTo: month, toGranularity: .month) }
            .sorted { $0.date > $1.date }
    }

    func spent(in category: BudgetCategory) -> Double {
        monthExpenses.filter { $0.categoryID == category.id }.reduce(0) { $0 + $1.amount }
    }

    var totalLimit: Double { categories.reduce(0) { $0 + $1.limit } }
    var totalSpent: Double { monthExpenses.reduce(0) { $0 + $1.amount } }

    func category(for id: UUID) -> BudgetCategory? {
        categories.first { $0.id == id }
    }

    func shiftMonth(by value: Int) {
        if let next = Calendar.current.date(byAdding: .month, value: value, to: month) {
            month = next
        }
    }

    func deleteExpense(_ expense: Expense) {
        expenses.removeAll { $0.id == expense.id }
    }

    private func save() {
        let encoder = JSONEncoder()
        if let data = try? encoder.encode(categories) { defaults.set(data, forKey: "categories") }
        if let data = try? encoder.encode(expenses) { defaults.set(data, forKey: "expenses") }
    }
}
