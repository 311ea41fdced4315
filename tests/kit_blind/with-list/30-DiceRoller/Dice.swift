import Foundation
import SwiftUI

enum DieType: Int, CaseIterable, Identifiable, Codable {
    case d4 = 4, d6 = 6, d8 = 8, d10 = 10, d12 = 12, d20 = 20, d100 = 100

    var id: Int { rawValue }
    var name: String { "d\(rawValue)" }

    var color: Color {
        switch self {
        case .d4: return .red
        case .d6: return .orange
        case .d8: return .yellow
        case .d10: return .green
        case .d12: return .teal
        case .d20: return .purple
        case .d100: return .gray
        }
    }
}

enum RollMode: String, CaseIterable, Identifiable, Codable {
    case normal = "Normal"
    case advantage = "Advantage"
    case disadvantage = "Disadvantage"
    var id: String { rawValue }
}

struct DicePool: Codable, Equatable, Hashable {
    var counts: [Int: Int] = [:]   // sides -> count
    var modifier: Int = 0

    var isEmpty: Bool { counts.values.allSatisfy { $0 == 0 } }

    var description: String {
        var parts = DieType.allCases.compactMap { die -> String? in
            guard let n = counts[die.rawValue], n > 0 else { return nil }
            return "\(n)\(die.name)"
        }
        if modifier != 0 || parts.isEmpty {
            parts.append(modifier >= 0 ? "+ \(modifier)" : "− \(abs(modifier))")
        }
        return parts.joined(separator: " + ").replacingOccurrences(of: "+ + ", with: "+ ").replacingOccurrences(of: "+ −", with: "−")
    }
}

struct DieResult: Identifiable, Codable, Hashable {
    var id = UUID()
    let sides: Int
    let value: Int
    var dropped: Bool = false
}

struct RollRecord: Identifiable, Codable, Hashable {
    var id = UUID()
    let label: String
    let results: [DieResult]
    let modifier: Int
    let mode: RollMode
    let date: Date

    var total: Int {
        results.filter { !$0.dropped }.reduce(0) { $0 + $1.value } + modifier
    }

    var isNat20: Bool { results.contains { $0.sides == 20 && $0.value == 20 && !$0.dropped } }
    var isNat1: Bool { results.contains { $0.sides == 20 && $0.value == 1 && !$0.dropped } }
}

struct SavedRoll: Identifiable, Codable, Hashable {
    var id = UUID()
    var name: String
    var pool: DicePool
}

enum Roller {
    static func roll(_ pool: DicePool, mode: RollMode, label: String) -> RollRecord {
        var results: [DieResult] = []
        for die in DieType.allCases {
            let n = pool.counts[die.rawValue] ?? 0
            for _ in 0..<n {
                if die == .d20 && mode != .normal {
                    let a = Int.random(in: 1...20)
                    let b = Int.random(in: 1...20)
                    let keepFirst = mode == .advantage ? a >= b : a <= b
                    results.append(DieResult(sides: 20, value: a, dropped: !keepFirst))
                    results.append(DieResult(sides: 20, value: b, dropped: keepFirst))
                } else {
                    results.append(DieResult(sides: die.rawValue, value: Int.random(in: 1...die.rawValue)))
                }
            }
        }
        return RollRecord(label: label, results: results, modifier: pool.modifier, mode: mode, date: Date())
    }
}
