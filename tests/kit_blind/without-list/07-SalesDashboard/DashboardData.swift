import Foundation

struct MonthlyRevenue: Identifiable {
    let id = UUID()
    let month: String
    let amount: Double
}

struct DailyVisitors: Identifiable {
    let id = UUID()
    let day: Int
    let count: Int
}

enum DashboardRange: String, CaseIterable, Identifiable {
    case quarter = "3 Months"
    case half = "6 Months"
    case year = "12 Months"

    var id: Self { self }

    var months: Int {
        switch self {
        case .quarter: return 3
        case .half: return 6
        case .year: return 12
        }
    }
}

enum SampleData {
    static let months = ["Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"]

    static func revenue() -> [MonthlyRevenue] {
        months.map { MonthlyRevenue(month: $0, amount: Double.random(in: 4_000...18_000).rounded()) }
    }

    static func visitors() -> [DailyVisitors] {
        var value = 120
        return (1...30).map { day in
            value = max(40, value + Int.random(in: -25...30))
            return DailyVisitors(day: day, count: value)
        }
    }
}
