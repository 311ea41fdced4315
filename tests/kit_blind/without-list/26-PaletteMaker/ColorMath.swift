import SwiftUI

struct HSB: Codable, Hashable {
    var hue: Double
    var saturation: Double
    var brightness: Double

    var color: Color {
        Color(hue: hue, saturation: saturation, brightness: brightness)
    }

    var hex: String {
        let (r, g, b) = rgb
        return String(format: "#%02X%02X%02X", Int(r * 255), Int(g * 255), Int(b * 255))
    }

    var rgb: (Double, Double, Double) {
        let h = (hue.truncatingRemainder(dividingBy: 1) + 1).truncatingRemainder(dividingBy: 1) * 6
        let c = brightness * saturation
        let x = c * (1 - abs(h.truncatingRemainder(dividingBy: 2) - 1))
        let m = brightness - c
        let (r1, g1, b1): (Double, Double, Double)
        switch h {
        case 0..<1: (r1, g1, b1) = (c, x, 0)
        case 1..<2: (r1, g1, b1) = (x, c, 0)
        case 2..<3: (r1, g1, b1) = (0, c, x)
        case 3..<4: (r1, g1, b1) = (0, x, c)
        case 4..<5: (r1, g1, b1) = (x, 0, c)
        default: (r1, g1, b1) = (c, 0, x)
        }
        return (r1 + m, g1 + m, b1 + m)
    }

    var isLight: Bool {
        let (r, g, b) = rgb
        return (0.299 * r + 0.587 * g + 0.114 * b) > 0.6
    }

    func rotated(by degrees: Double) -> HSB {
        var copy = self
        copy.hue = (hue + degrees / 360).truncatingRemainder(dividingBy: 1)
        if copy.hue < 0 { copy.hue += 1 }
        return copy
    }

    static func random() -> HSB {
        HSB(hue: .random(in: 0...1), saturation: .random(in: 0.4...0.9), brightness: .random(in: 0.5...0.95))
    }
}

enum Harmony: String, CaseIterable, Identifiable {
    case complementary = "Complementary"
    case analogous = "Analogous"
    case triadic = "Triadic"
    case monochrome = "Monochrome"
    case random = "Random"

    var id: String { rawValue }

    func palette(from base: HSB, count: Int = 5) -> [HSB] {
        switch self {
        case .complementary:
            let comp = base.rotated(by: 180)
            return [
                base,
                HSB(hue: base.hue, saturation: base.saturation * 0.5, brightness: min(1, base.brightness + 0.15)),
                HSB(hue: base.hue, saturation: base.saturation, brightness: base.brightness * 0.6),
                comp,
                HSB(hue: comp.hue, saturation: comp.saturation * 0.5, brightness: min(1, comp.brightness + 0.15))
            ]
        case .analogous:
            return [-40, -20, 0, 20, 40].map { base.rotated(by: $0) }
        case .triadic:
            return [
                base,
                base.rotated(by: 120),
                base.rotated(by: 240),
                HSB(hue: base.hue, saturation: base.saturation * 0.4, brightness: 0.95),
                HSB(hue: base.rotated(by: 120).hue, saturation: base.saturation, brightness: base.brightness * 0.55)
            ]
        case .monochrome:
            return (0..<count).map { i in
                let t = Double(i) / Double(count - 1)
                return HSB(hue: base.hue, saturation: 0.25 + 0.65 * t, brightness: 0.98 - 0.6 * t)
            }
        case .random:
            return (0..<count).map { _ in HSB.random() }
        }
    }
}

struct SavedPalette: Identifiable, Codable, Hashable {
    var id = UUID()
    var name: String
    var colors: [HSB]
}
