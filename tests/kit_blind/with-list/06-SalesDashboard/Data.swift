import SwiftUI

struct ProductShare: Identifiable {
    let id = UUID()
    let name: String
    let amount: Double
    let color: Color
}

struct DaySales: Identifiable {
    let id = UUID()
    let label: String
    let revenue: Double
}

enum Period: String, CaseIterable, Identifiable {
    case thisWeek = "This Week"
    case lastWeek = "Last Week"
    var id: String { rawValue }
}

struct SalesData {
    static func weekdays(for period: Period) -> [DaySales] {
        let labels = ["Mon", "Tue", "Wed", "Thu", "Fri", "Sat", "Sun"]
        let values: [Double] = period == .thisWeek
            ? [812, 745, 903, 880, 1120, 1430, 1210]
            : [760, 790, 850, 910, 1045, 1380, 1150]
        return zip(labels, values).map { DaySales(label: $0.0, revenue: $0.1) }
    }

    static let lastThirtyDays: [Double] = (0..<30).map { day in
        let base = 900.0 + Double(day) * 6
        let weekly = sin(Double(day) / 7 * 2 * .pi) * 180
        let noise = Double((day * 37) % 11) * 12 - 60
        return base + weekly + noise
    }

    static func products(for period: Period) -> [ProductShare] {
        let scale = period == .thisWeek ? 1.0 : 0.93
        return [
            ProductShare(name: "Espresso drinks", amount: 3120 * scale, color: .brown),
            ProductShare(name: "Filter coffee", amount: 1280 * scale, color: .orange),
            ProductShare(name: "Pastries", amount: 1650 * scale, color: .pink),
            ProductShare(name: "Tea", amount: 540 * scale, color: .green),
            ProductShare(name: "Beans", amount: 510 * scale, color: .indigo)
        ]
    }
}
