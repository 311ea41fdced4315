import SwiftUI

struct RGBA: Codable, Hashable {
    var r: Double
    var g: Double
    var b: Double
    var a: Double

    static let clear = RGBA(r: 0, g: 0, b: 0, a: 0)

    var color: Color {
        Color(.sRGB, red: r, green: g, blue: b, opacity: a)
    }

    init(r: Double, g: Double, b: Double, a: Double = 1) {
        self.r = r
        self.g = g
        self.b = b
        self.a = a
    }

    init(_ color: Color) {
        let resolved = color.resolve(in: EnvironmentValues())
        r = Double(resolved.red)
        g = Double(resolved.green)
        b = Double(resolved.blue)
        a = Double(resolved.opacity)
    }
}

enum Tool: String, CaseIterable, Identifiable {
    case pencil, eraser, fill, picker

    var id: String { rawValue }

    var icon: String {
        switch self {
        case .pencil: return "pencil"
        case .eraser: return "eraser"
        case .fill: return "drop.fill"
        case .picker: return "eyedropper"
        }
    }
}

struct PixelGrid: Codable, Equatable {
    static let size = 16
    var pixels: [RGBA] = Array(repeating: .clear, count: size * size)

    subscript(x: Int, y: Int) -> RGBA {
        get { pixels[y * Self.size + x] }
        set { pixels[y * Self.size + x] = newValue }
    }

    mutating func floodFill(x: Int, y: Int, with newColor: RGBA) {
        let target = self[x, y]
        guard target != newColor else { return }
        var stack = [(x, y)]
        while let (cx, cy) = stack.popLast() {
            guard cx >= 0, cy >= 0, cx < Self.size, cy < Self.size, self[cx, cy] == target else { continue }
            self[cx, cy] = newColor
            stack.append((cx + 1, cy))
            stack.append((cx - 1, cy))
            stack.append((cx, cy + 1))
            stack.append((cx, cy - 1))
        }
    }
}
