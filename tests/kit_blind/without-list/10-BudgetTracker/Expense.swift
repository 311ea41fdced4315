import Foundation
import SwiftUI

enum ExpenseCategory: String, Codable, CaseIterable, Identifiable, Comparable {
    case groceries = "Groceries"
    case rent = "Rent"
    case transport = "Transport"
    case entertainment = "Entertainment"
    case utilities = "Utilities"
    case other = "Other"

    var id: String { rawValue }

    var color: Color {
        switch self {
        case .groceries: return .green
        case .rent: return .purple
        case .transport: return .blue
        case .entertainment: return .pink
        case .utilities: return .orange
        case .other: return .gray
        }
    }

    static func < (lhs: Self, rhs: Self) -> Bool { lhs.rawValue < rhs.rawValue }
}

struct Expense: Identifiable, Codable, Hashable {
    var id = UUID()
    var date: Date
    var title: String
    var category: ExpenseCategory
    var amount: Double
}

@Observable
class BudgetModel {
    var expenses: [Expense] = [] { didSet { save() } }
    var monthlyBudget: Double = UserDefaults.standard.object(forKey: "budget.limit") as? Double ?? 2000 {
        didSet { UserDefaults.standard.set(monthlyBudget, forKey: "budget.limit") }
    }

    init() {
        if let data = UserDefaults.standard.data(forKey: "budget.expenses"),
           let list = try? JSONDecoder().decode([Expense].self, from: data) {
            expenses = list
        }
    }

    var thisMonth: [Expense] {
        expenses.filter { Calendar.current.isDate($0.date, equalTo: .now, toGranularity: .month) }
    }

    var spentThisMonth: Double {
        thisMonth.reduce(0) { $0 + $1.amount }
    }

    var remaining: Double { monthlyBudget - spentThisMonth }

    func totals() -> [(ExpenseCategory, Double)] {
        Dictionary(grouping: thisMonth, by: \.category)
            .map { ($0.key, $0.value.reduce(0) { $0 + $1.amount }) }
            .sorted { $0.1 > $1.1 }
    }

    private func save() {
        if let data = try? JSONEncoder().encode(expenses) {
            UserDefaults.standard.set(data, forKey: "budget.expenses")
        }
    }
}
