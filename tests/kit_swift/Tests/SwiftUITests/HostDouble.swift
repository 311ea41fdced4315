import Testing
import ZentoroHostInterface

@testable import SwiftUI

/// A host with deterministic text metrics that records what the kit draws. Every character
/// is 0.6 em wide, every line 1.25 em high, and lines break between words.
final class HostDouble {
    struct DrawnText { var string: String; var rect: CGRect; var color: ZentoroColor; var weight: Int32 }
    struct Fill { var bounds: CGRect; var paint: ZentoroPaint }
    struct Field { var identifier: Int64; var text: String; var prompt: String; var flags: Int32 }

    var texts: [DrawnText] = []
    var fills: [Fill] = []
    var strokes: [CGRect] = []
    var fields: [Field] = []
    /// Every text the kit asked the double to measure, and a factor for widths that stands in
    /// for the host's fonts changing.
    var measuredStrings: [String] = []
    var widthScale = 1.0
    private var offsets: [CGPoint] = [.zero]
    private(set) var host = ZentoroHost()

    static func width(_ string: String, size: Double) -> Double { Double(string.count) * size * 0.6 }

    /// Lines of a paragraph broken at spaces to fit `maxWidth`.
    static func lines(_ string: String, size: Double, maxWidth: Double) -> [String] {
        string.components(separatedBy: "\n").flatMap { paragraph -> [String] in
            guard maxWidth >= 0 else { return [paragraph] }
            var lines = [""]
            for word in paragraph.split(separator: " ", omittingEmptySubsequences: false).map(String.init) {
                let line = lines.removeLast(), candidate = line.isEmpty ? word : line + " " + word
                lines += !line.isEmpty && width(candidate, size: size) > maxWidth ? [line, word] : [candidate]
            }
            return lines
        }
    }

    static func runs(_ text: UnsafePointer<ZentoroText>) -> UnsafeBufferPointer<ZentoroTextRun> {
        UnsafeBufferPointer(start: text.pointee.runs, count: Int(text.pointee.runCount))
    }
    static func string(_ text: UnsafePointer<ZentoroText>) -> String { runs(text).map { String(cString: $0.utf8) }.joined() }

    static func measure(_ text: UnsafePointer<ZentoroText>, maxWidth: Double) -> CGSize {
        let string = Self.string(text), size = runs(text).map(\.font.size).max() ?? 13
        var lines = Self.lines(string, size: size, maxWidth: maxWidth)
        if text.pointee.lineLimit > 0 { lines = Array(lines.prefix(Int(text.pointee.lineLimit))) }
        let width = lines.map { Self.width($0, size: size) }.max() ?? 0
        return CGSize(width: width, height: Double(lines.count) * (size * 1.25).rounded())
    }

    init() {
        host.version = Int32(ZENTORO_HOST_INTERFACE_VERSION)
        host.context = Unmanaged.passUnretained(self).toOpaque()
        host.measureText = { context, text, maxWidth, width, height in
            let double = HostDouble.of(context)
            double.measuredStrings.append(HostDouble.string(text!))
            let size = HostDouble.measure(text!, maxWidth: maxWidth / double.widthScale)
            width!.pointee = size.width * double.widthScale
            height!.pointee = size.height
        }
        host.save = { HostDouble.of($0).offsets.append(HostDouble.of($0).offsets.last!) }
        host.restore = { HostDouble.of($0).offsets.removeLast() }
        host.concatTransform = { context, _, _, _, _, tx, ty in
            let double = HostDouble.of(context)
            let last = double.offsets.removeLast()
            double.offsets.append(CGPoint(x: last.x + tx, y: last.y + ty))
        }
        host.multiplyOpacity = { _, _ in }
        host.clipPath = { _, _ in }
        host.fillPath = { context, path, paint in
            HostDouble.of(context).fills.append(Fill(bounds: HostDouble.of(context).bounds(path!), paint: paint!.pointee))
        }
        host.strokePath = { context, path, _, _ in HostDouble.of(context).strokes.append(HostDouble.of(context).bounds(path!)) }
        host.shadowPath = { _, _, _, _, _, _ in }
        host.drawText = { context, text, rect in
            let double = HostDouble.of(context), runs = HostDouble.runs(text!)
            double.texts.append(
                DrawnText(
                    string: HostDouble.string(text!), rect: double.shifted(rect),
                    color: runs.first?.paint.color ?? ZentoroColor(), weight: runs.first?.font.weight ?? 0))
        }
        host.drawSymbol = { _, _, _, _ in }
        host.placeTextField = { context, identifier, _, text, prompt, _, flags in
            HostDouble.of(context).fields.append(
                Field(
                    identifier: identifier, text: String(cString: text!),
                    prompt: String(cString: prompt!), flags: flags))
        }
        host.requestRedraw = { _ in }
    }

    static func of(_ context: UnsafeMutableRawPointer?) -> HostDouble {
        Unmanaged<HostDouble>.fromOpaque(context!).takeUnretainedValue()
    }
    private func shifted(_ rect: ZentoroRect) -> CGRect {
        let o = offsets.last!
        return CGRect(x: rect.x + o.x, y: rect.y + o.y, width: rect.width, height: rect.height)
    }
    private func bounds(_ path: UnsafePointer<ZentoroPath>) -> CGRect {
        let elements = UnsafeBufferPointer(start: path.pointee.elements, count: Int(path.pointee.count))
        let points = elements.compactMap { e -> ZentoroPoint? in
            switch Int(e.op) {
            case Int(ZENTORO_PATH_MOVE), Int(ZENTORO_PATH_LINE): return e.points.0
            case Int(ZENTORO_PATH_QUAD): return e.points.1
            case Int(ZENTORO_PATH_CUBIC): return e.points.2
            default: return nil
            }
        }
        guard !points.isEmpty else { return .zero }
        let xs = points.map(\.x), ys = points.map(\.y)
        let o = offsets.last!
        return CGRect(x: xs.min()! + o.x, y: ys.min()! + o.y, width: xs.max()! - xs.min()!, height: ys.max()! - ys.min()!)
    }
}

/// A root view hosted through the C interface, the way Zentoro's window hosts one.
@MainActor
final class Hosted {
    let double = HostDouble()
    let view: UnsafeMutableRawPointer
    private var hostStorage: UnsafeMutablePointer<ZentoroHost>

    init<V: View>(_ root: V, width: Double = 400, height: Double = 300) {
        view = ZentoroHosting.makeRootView(root, appName: "Kit Double")
        hostStorage = .allocate(capacity: 1)
        hostStorage.initialize(to: double.host)
        _zentoroViewAttach(view, UnsafeRawPointer(hostStorage))
        _zentoroViewSetSize(view, width, height)
        render()
    }
    deinit {
        _zentoroViewRelease(view)
        hostStorage.deallocate()
    }

    /// Draws the view, or only what meets `clip` as a host repainting part of its window does.
    func render(clip: CGRect? = nil) {
        double.texts = []; double.fills = []; double.strokes = []; double.fields = []
        // As the window does, take what changed before painting.
        _ = update()
        if let clip {
            var hostClip = clip.hostValue
            _zentoroViewRender(view, &hostClip)
        } else {
            _zentoroViewRender(view, nil)
        }
    }
    /// Brings the view up to date; what it says changed on screen (nil: the whole view).
    func update() -> CGRect? {
        var damaged = ZentoroRect()
        switch Int(_zentoroViewUpdate(view, &damaged)) {
        case Int(ZENTORO_DAMAGE_NONE): return .null
        case Int(ZENTORO_DAMAGE_RECT): return CGRect(x: damaged.x, y: damaged.y, width: damaged.width, height: damaged.height)
        default: return nil
        }
    }
    var graph: ViewGraph { Unmanaged<RootView>.fromOpaque(view).takeUnretainedValue().graph }
    func text(_ string: String) -> HostDouble.DrawnText? { double.texts.first { $0.string == string } }
    var strings: [String] { double.texts.map(\.string) }

    /// A click at `point` or on a text, that the view has not yet been redrawn for.
    func press(_ point: CGPoint, count: Int = 1) {
        _ = _zentoroViewPointer(view, 0, point.x, point.y, 0, Int32(count))
        _ = _zentoroViewPointer(view, 2, point.x, point.y, 0, Int32(count))
    }
    func press(_ string: String, count: Int = 1) {
        guard let rect = text(string)?.rect else { Issue.record("no text \(string) among \(strings)"); return }
        press(CGPoint(x: rect.midX, y: rect.midY), count: count)
    }
    func click(_ point: CGPoint, count: Int = 1) { press(point, count: count); render() }
    func click(_ string: String, count: Int = 1) { press(string, count: count); render() }
    func expectShown(_ wanted: String..., sourceLocation: SourceLocation = #_sourceLocation) {
        let missing = wanted.filter { !strings.contains($0) }
        #expect(missing.isEmpty, "no \(missing) among \(strings)", sourceLocation: sourceLocation)
    }
    func drag(from a: CGPoint, to b: CGPoint, steps: Int = 4) {
        _ = _zentoroViewPointer(view, 0, a.x, a.y, 0, 1)
        for i in 1...steps {
            let t = Double(i) / Double(steps)
            _ = _zentoroViewPointer(view, 1, a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, 0, 1)
        }
        _ = _zentoroViewPointer(view, 2, b.x, b.y, 0, 1)
        render()
    }
    func type(_ text: String, into identifier: Int64) {
        _zentoroViewTextChanged(view, identifier, text)
        render()
    }
}

func checkEqual(_ a: CGFloat, _ b: CGFloat, accuracy: CGFloat, _ comment: String = "", sourceLocation: SourceLocation = #_sourceLocation) {
    #expect(abs(a - b) <= accuracy, "\(a) is not \(b) \(comment)", sourceLocation: sourceLocation)
}
