import SwiftUI
import Observation

struct PaletteColor: Codable, Hashable {
    var r: Double
    var g: Double
    var b: Double

    var color: Color { Color(red: r, green: g, blue: b) }

    static let defaults: [PaletteColor] = [
        PaletteColor(r: 0, g: 0, b: 0),
        PaletteColor(r: 1, g: 1, b: 1),
        PaletteColor(r: 0.5, g: 0.5, b: 0.5),
        PaletteColor(r: 0.9, g: 0.2, b: 0.2),
        PaletteColor(r: 1, g: 0.6, b: 0.1),
        PaletteColor(r: 1, g: 0.9, b: 0.2),
        PaletteColor(r: 0.3, g: 0.8, b: 0.3),
        PaletteColor(r: 0.1, g: 0.5, b: 0.2),
        PaletteColor(r: 0.2, g: 0.6, b: 1),
        PaletteColor(r: 0.2, g: 0.2, b: 0.7),
        PaletteColor(r: 0.6, g: 0.3, b: 0.8),
        PaletteColor(r: 1, g: 0.5, b: 0.7),
        PaletteColor(r: 0.55, g: 0.35, b: 0.2),
        PaletteColor(r: 0.95, g: 0.8, b: 0.65)
    ]
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

struct PixelDocument: Codable {
    var size: Int
    var pixels: [PaletteColor?]
}

@Observable
final class PixelCanvas {
    var size: Int
    var pixels: [PaletteColor?]
    private var undoStack: [[PaletteColor?]] = []

    private static let storageKey = "pixelDocument"

    init() {
        if let data = UserDefaults.app.data(forKey: Self.storageKey),
           let doc = try? JSONDecoder().decode(PixelDocument.self, from: data),
           doc.pixels.count == doc.size * doc.size {
            size = doc.size
            pixels = doc.pixels
        } else {
            size = 16
            pixels = Array(repeating: nil, count: 16 * 16)
        }
    }

    var canUndo: Bool { !undoStack.isEmpty }

    func pixel(x: Int, y: Int) -> PaletteColor? {
        guard x >= 0, y >= 0, x < size, y < size else { return nil }
        return pixels[y * size + x]
    }

    func beginStroke() {
        undoStack.append(pixels)
        if undoStack.count > 50 { undoStack.removeFirst() }
    }

    func set(x: Int, y: Int, to color: PaletteColor?) {
        guard x >= 0, y >= 0, x < size, y < size else { return }
        let i = y * size + x
        if pixels[i] != color { pixels[i] = color }
    }

    func floodFill(x: Int, y: Int, with color: PaletteColor?) {
        guard x >= 0, y >= 0, x < size, y < size else { return }
        let target = pixels[y * size + x]
        guard target != color else { return }
        var stack = [(x, y)]
        var visited = Set<Int>()
        while let (cx, cy) = stack.popLast() {
            guard cx >= 0, cy >= 0, cx < size, cy < size else { continue }
            let i = cy * size + cx
            guard !visited.contains(i), pixels[i] == target else { continue }
            visited.insert(i)
            pixels[i] = color
            stack.append(contentsOf: [(cx + 1, cy), (cx - 1, cy), (cx, cy + 1), (cx, cy - 1)])
        }
    }

    func undo() {
        if let last = undoStack.popLast(), last.count == size * size {
            pixels = last
            save()
        }
    }

    func clear() {
        beginStroke()
        pixels = Array(repeating: nil, count: size * size)
        save()
    }

    func resize(to newSize: Int) {
        guard newSize != size else { return }
        var newPixels = [PaletteColor?](repeating: nil, count: newSize * newSize)
        for y in 0..<min(size, newSize) {
            for x in 0..<min(size, newSize) {
                newPixels[y * newSize + x] = pixels[y * size + x]
            }
        }
        undoStack.removeAll()
        size = newSize
        pixels = newPixels
        save()
    }

    func save() {
        let doc = PixelDocument(size: size, pixels: pixels)
        if let data = try? JSONEncoder().encode(doc) {
            UserDefaults.app.set(data, forKey: Self.storageKey)
        }
    }
}
