import Foundation
internal import ZentoroHostInterface

/// One styled run of a text, resolved for drawing.
struct TextRun: Hashable {
    var string: String
    var font: ResolvedFont
    var color: RGBA
    var underline = false
    var strikethrough = false
}

struct ResolvedFont: Hashable {
    var size: CGFloat
    var weight: Int32
    var design: Int32
    var italic: Bool
    var monospacedDigits: Bool

    var hostValue: ZentoroFont {
        ZentoroFont(
            size: Double(size), weight: weight, design: design, italic: italic ? 1 : 0,
            monospacedDigits: monospacedDigits ? 1 : 0)
    }
}

/// Calls into the Qt host (or a test's double) through the C interface.
@MainActor
final class HostBridge {
    let host: UnsafePointer<ZentoroHost>
    init(_ host: UnsafePointer<ZentoroHost>) { self.host = host }
    private var context: UnsafeMutableRawPointer? { host.pointee.context }
    /// The part of the window being painted: what lies wholly outside it need not be drawn.
    var clip = CGRect.infinite

    func requestRedraw() { host.pointee.requestRedraw(context) }
    func copyText(_ text: String) { host.pointee.copyText?(context, text) }

    private func withText<R>(
        _ runs: [TextRun], alignment: TextAlignment, lineLimit: Int?,
        _ body: (UnsafePointer<ZentoroText>) -> R
    ) -> R {
        let strings = runs.map { strdup($0.string) }
        defer { strings.forEach { free($0) } }
        let cRuns = zip(runs, strings).map { run, string in
            ZentoroTextRun(
                utf8: UnsafePointer(string), font: run.font.hostValue,
                paint: ZentoroPaint(
                    kind: Int32(ZENTORO_PAINT_SOLID), color: run.color.hostValue, stops: nil, stopCount: 0,
                    start: ZentoroPoint(), end: ZentoroPoint(), startRadius: 0, endRadius: 0, angle: 0),
                underline: run.underline ? 1 : 0, strikethrough: run.strikethrough ? 1 : 0)
        }
        return cRuns.withUnsafeBufferPointer { buffer in
            var text = ZentoroText(
                runs: buffer.baseAddress, runCount: Int32(buffer.count),
                alignment: alignment.hostValue, lineLimit: Int32(lineLimit ?? 0))
            return body(&text)
        }
    }

    private struct Measurement: Hashable {
        var runs: [TextRun]
        var maxWidth: CGFloat?
        var lineLimit: Int?
    }
    /// Sizes of texts already measured: the same texts are measured again in every update.
    private var measured: [Measurement: CGSize] = [:]
    private static let measuredKept = 20_000

    /// Fonts may have changed on the host's side: measure every text afresh.
    func forgetMeasurements() { measured = [:] }

    func measure(_ runs: [TextRun], maxWidth: CGFloat?, lineLimit: Int?) -> CGSize {
        let key = Measurement(runs: runs, maxWidth: maxWidth, lineLimit: lineLimit)
        if let known = measured[key] { return known }
        if measured.count >= HostBridge.measuredKept { measured.removeAll(keepingCapacity: true) }
        let size = measureOnHost(runs, maxWidth: maxWidth, lineLimit: lineLimit)
        measured[key] = size
        return size
    }

    private func measureOnHost(_ runs: [TextRun], maxWidth: CGFloat?, lineLimit: Int?) -> CGSize {
        var width = 0.0, height = 0.0
        withText(runs, alignment: .leading, lineLimit: lineLimit) { text in
            host.pointee.measureText(context, text, maxWidth.map { Double($0) } ?? -1, &width, &height)
        }
        return CGSize(width: ceil(width), height: ceil(height))
    }

    func drawText(_ runs: [TextRun], alignment: TextAlignment, lineLimit: Int?, in rect: CGRect) {
        withText(runs, alignment: alignment, lineLimit: lineLimit) { text in
            host.pointee.drawText(context, text, rect.hostValue)
        }
    }

    func placeTextField(_ identifier: Int64, rect: CGRect, text: String, prompt: String, font: ResolvedFont, flags: Int32) {
        host.pointee.placeTextField(context, identifier, rect.hostValue, text, prompt, font.hostValue, flags)
    }

    func save() { host.pointee.save(context) }
    func restore() { host.pointee.restore(context) }
    func concat(_ t: CGAffineTransform) {
        host.pointee.concatTransform(context, Double(t.a), Double(t.b), Double(t.c), Double(t.d), Double(t.tx), Double(t.ty))
    }
    func multiplyOpacity(_ opacity: Double) { host.pointee.multiplyOpacity(context, opacity) }

    private func withPath<R>(_ path: Path, _ body: (UnsafePointer<ZentoroPath>) -> R) -> R {
        let elements = path.segments.map { segment -> ZentoroPathElement in
            switch segment {
            case .move(let p):
                return ZentoroPathElement(op: Int32(ZENTORO_PATH_MOVE), points: (p.hostValue, ZentoroPoint(), ZentoroPoint()))
            case .line(let p):
                return ZentoroPathElement(op: Int32(ZENTORO_PATH_LINE), points: (p.hostValue, ZentoroPoint(), ZentoroPoint()))
            case let .quad(c, p):
                return ZentoroPathElement(op: Int32(ZENTORO_PATH_QUAD), points: (c.hostValue, p.hostValue, ZentoroPoint()))
            case let .cubic(a, b, p):
                return ZentoroPathElement(op: Int32(ZENTORO_PATH_CUBIC), points: (a.hostValue, b.hostValue, p.hostValue))
            case .close: return ZentoroPathElement(op: Int32(ZENTORO_PATH_CLOSE), points: (ZentoroPoint(), ZentoroPoint(), ZentoroPoint()))
            }
        }
        return elements.withUnsafeBufferPointer { buffer in
            var hostPath = ZentoroPath(elements: buffer.baseAddress, count: Int32(buffer.count), evenOdd: path.evenOdd ? 1 : 0)
            return body(&hostPath)
        }
    }

    private func withPaint<R>(_ paint: Paint, _ body: (UnsafePointer<ZentoroPaint>) -> R) -> R {
        var hostPaint = ZentoroPaint(
            kind: Int32(ZENTORO_PAINT_SOLID), color: ZentoroColor(), stops: nil, stopCount: 0,
            start: ZentoroPoint(), end: ZentoroPoint(), startRadius: 0, endRadius: 0, angle: 0)
        let stops: [(Double, RGBA)]
        switch paint {
        case .solid(let color):
            hostPaint.color = color.hostValue
            stops = []
        case let .linear(s, start, end):
            hostPaint.kind = Int32(ZENTORO_PAINT_LINEAR); hostPaint.start = start.hostValue; hostPaint.end = end.hostValue; stops = s
        case let .radial(s, center, r0, r1):
            hostPaint.kind = Int32(ZENTORO_PAINT_RADIAL); hostPaint.start = center.hostValue; hostPaint.startRadius = Double(r0);
            hostPaint.endRadius = Double(r1); stops = s
        case let .angular(s, center, angle):
            hostPaint.kind = Int32(ZENTORO_PAINT_ANGULAR); hostPaint.start = center.hostValue; hostPaint.angle = angle; stops = s
        }
        let hostStops = stops.map { ZentoroGradientStop(location: $0.0, color: $0.1.hostValue) }
        return hostStops.withUnsafeBufferPointer { buffer in
            hostPaint.stops = buffer.baseAddress
            hostPaint.stopCount = Int32(buffer.count)
            return body(&hostPaint)
        }
    }

    func clip(_ path: Path) { withPath(path) { host.pointee.clipPath(context, $0) } }
    func fill(_ path: Path, _ paint: Paint) {
        withPath(path) { p in withPaint(paint) { host.pointee.fillPath(context, p, $0) } }
    }
    func stroke(_ path: Path, _ paint: Paint, _ style: StrokeStyle) {
        withPath(path) { p in
            withPaint(paint) { paint in
                style.dash.map(Double.init).withUnsafeBufferPointer { dashes in
                    var stroke = ZentoroStroke(
                        lineWidth: Double(style.lineWidth), cap: style.lineCap.rawValue,
                        join: style.lineJoin.rawValue, miterLimit: Double(style.miterLimit),
                        dashes: dashes.baseAddress, dashCount: Int32(dashes.count),
                        dashPhase: Double(style.dashPhase))
                    host.pointee.strokePath(context, p, paint, &stroke)
                }
            }
        }
    }
    func shadow(_ path: Path, color: RGBA, radius: CGFloat, offset: CGSize) {
        withPath(path) {
            host.pointee.shadowPath(context, $0, color.hostValue, Double(radius), Double(offset.width), Double(offset.height))
        }
    }
    func drawSymbol(_ name: String, in rect: CGRect, paint: Paint) {
        withPaint(paint) { host.pointee.drawSymbol(context, name, rect.hostValue, $0) }
    }
}

extension RGBA { var hostValue: ZentoroColor { ZentoroColor(red: red, green: green, blue: blue, alpha: alpha) } }
extension CGPoint { var hostValue: ZentoroPoint { ZentoroPoint(x: Double(x), y: Double(y)) } }
extension CGRect {
    var hostValue: ZentoroRect { ZentoroRect(x: Double(minX), y: Double(minY), width: Double(width), height: Double(height)) }
}
extension TextAlignment {
    var hostValue: Int32 {
        switch self {
        case .leading: return Int32(ZENTORO_ALIGN_LEADING)
        case .center: return Int32(ZENTORO_ALIGN_CENTER)
        case .trailing: return Int32(ZENTORO_ALIGN_TRAILING)
        }
    }
}

/// Hosting: how the generated entry file hands a root view to Zentoro's window.
public enum ZentoroHosting {
    /// A hosted root view, retained once for the host, which releases it with
    /// `zentoro_view_release`. The host calls the factory on the main thread. `appName`,
    /// the copy's name, is `AppInfo.name` from before the view is made.
    public static func makeRootView<V: View>(_ view: @autoclosure () -> V, appName: String) -> UnsafeMutableRawPointer {
        AppInfo.copyName = appName
        return MainActor.assumeIsolated {
            Unmanaged.passRetained(RootView(ViewGraph(view()))).toOpaque()
        }
    }
}

@MainActor
final class RootView {
    let graph: ViewGraph
    init(_ graph: ViewGraph) { self.graph = graph }
}

@MainActor
private func root(_ pointer: UnsafeMutableRawPointer?) -> ViewGraph? {
    guard let pointer else { return nil }
    return Unmanaged<RootView>.fromOpaque(pointer).takeUnretainedValue().graph
}

@_cdecl("zentoro_kit_interface_version")
public func _zentoroKitInterfaceVersion() -> Int32 { Int32(ZENTORO_HOST_INTERFACE_VERSION) }

@_cdecl("zentoro_view_attach")
public func _zentoroViewAttach(_ view: UnsafeMutableRawPointer?, _ host: UnsafeRawPointer?) {
    MainActor.assumeIsolated {
        guard let graph = root(view), let host else { return }
        graph.host = HostBridge(host.assumingMemoryBound(to: ZentoroHost.self))
        graph.invalidate()
    }
}

@_cdecl("zentoro_view_release")
public func _zentoroViewRelease(_ view: UnsafeMutableRawPointer?) {
    MainActor.assumeIsolated {
        guard let view else { return }
        root(view)?.tearDown()
        Unmanaged<RootView>.fromOpaque(view).release()
    }
}

@_cdecl("zentoro_view_set_size")
public func _zentoroViewSetSize(_ view: UnsafeMutableRawPointer?, _ width: Double, _ height: Double) {
    MainActor.assumeIsolated { root(view)?.size = CGSize(width: width, height: height) }
}

@_cdecl("zentoro_view_set_appearance")
public func _zentoroViewSetAppearance(_ view: UnsafeMutableRawPointer?, _ dark: Int32, _ accentPointer: UnsafeRawPointer?) {
    MainActor.assumeIsolated {
        guard let graph = root(view), let accentPointer else { return }
        let accent = accentPointer.assumingMemoryBound(to: ZentoroColor.self).pointee
        let scheme: ColorScheme = dark != 0 ? .dark : .light
        let rgba = RGBA(red: accent.red, green: accent.green, blue: accent.blue, alpha: accent.alpha)
        // The host sends its appearance again when its palette, style or fonts change, and
        // text measured before may no longer fit.
        graph.host?.forgetMeasurements()
        graph.forgetPreviousTree()
        graph.colorScheme = scheme
        graph.accent = rgba
        graph.invalidate()
    }
}

@_cdecl("zentoro_view_update")
public func _zentoroViewUpdate(_ view: UnsafeMutableRawPointer?, _ damaged: UnsafeMutableRawPointer?) -> Int32 {
    MainActor.assumeIsolated {
        guard let graph = root(view) else { return 0 }
        graph.update()
        switch graph.takeDamage() {
        case nil: return Int32(ZENTORO_DAMAGE_NONE)
        case .whole: return Int32(ZENTORO_DAMAGE_WHOLE)
        case .rect(let r):
            if r.isNull { return Int32(ZENTORO_DAMAGE_NONE) }
            damaged?.assumingMemoryBound(to: ZentoroRect.self).pointee = r.hostValue
            return Int32(ZENTORO_DAMAGE_RECT)
        }
    }
}

@_cdecl("zentoro_view_render")
public func _zentoroViewRender(_ view: UnsafeMutableRawPointer?, _ clipPointer: UnsafeRawPointer?) {
    MainActor.assumeIsolated {
        guard let clip = clipPointer?.assumingMemoryBound(to: ZentoroRect.self).pointee else { root(view)?.render(); return }
        root(view)?.render(clip: CGRect(x: clip.x, y: clip.y, width: clip.width, height: clip.height))
    }
}

@_cdecl("zentoro_view_next_frame")
public func _zentoroViewNextFrame(_ view: UnsafeMutableRawPointer?) -> Double {
    MainActor.assumeIsolated { root(view)?.motion.nextFrame ?? -1 }
}

@_cdecl("zentoro_view_pointer")
public func _zentoroViewPointer(
    _ view: UnsafeMutableRawPointer?, _ kind: Int32, _ x: Double, _ y: Double,
    _ modifiers: Int32, _ clickCount: Int32
) -> Int32 {
    MainActor.assumeIsolated {
        guard let graph = root(view), let event = PointerEvent.Kind(rawValue: kind) else { return 0 }
        let secondary = modifiers & Int32(ZENTORO_POINTER_SECONDARY) != 0
        return graph.pointer(event, at: CGPoint(x: x, y: y), clickCount: Int(clickCount), secondary: secondary) ? 1 : 0
    }
}

@_cdecl("zentoro_view_scroll")
public func _zentoroViewScroll(_ view: UnsafeMutableRawPointer?, _ x: Double, _ y: Double, _ dx: Double, _ dy: Double) -> Int32 {
    MainActor.assumeIsolated { root(view)?.scroll(at: CGPoint(x: x, y: y), by: CGSize(width: dx, height: dy)) == true ? 1 : 0 }
}

@_cdecl("zentoro_view_key")
public func _zentoroViewKey(_ view: UnsafeMutableRawPointer?, _ key: Int32, _ text: UnsafePointer<CChar>?, _ modifiers: Int32) -> Int32 {
    MainActor.assumeIsolated {
        let typed = text.map { String(cString: $0) } ?? ""
        return root(view)?.key(HostKey(code: key, characters: typed, modifiers: modifiers)) == true ? 1 : 0
    }
}

@_cdecl("zentoro_view_text_changed")
public func _zentoroViewTextChanged(_ view: UnsafeMutableRawPointer?, _ identifier: Int64, _ utf8: UnsafePointer<CChar>?) {
    MainActor.assumeIsolated { root(view)?.textChanged(identifier, utf8.map { String(cString: $0) } ?? "") }
}

@_cdecl("zentoro_view_text_submitted")
public func _zentoroViewTextSubmitted(_ view: UnsafeMutableRawPointer?, _ identifier: Int64) {
    MainActor.assumeIsolated { root(view)?.textSubmitted(identifier) }
}

@_cdecl("zentoro_view_text_focus")
public func _zentoroViewTextFocus(_ view: UnsafeMutableRawPointer?, _ identifier: Int64, _ focused: Int32) {
    MainActor.assumeIsolated { root(view)?.textFocus(identifier, focused != 0) }
}

@_silgen_name("_dispatch_get_main_queue_handle_4CF")
private func dispatchMainQueueHandle() -> Int32
@_silgen_name("_dispatch_main_queue_callback_4CF")
private func dispatchMainQueueCallback(_ message: UnsafeMutableRawPointer?)

@_cdecl("zentoro_kit_main_queue_fd")
public func _zentoroKitMainQueueFD() -> Int32 { dispatchMainQueueHandle() }

@_cdecl("zentoro_kit_service_main")
public func _zentoroKitServiceMain() -> Double {
    // Dispatch signals the main queue through an eventfd; reading it re-arms the signal.
    var descriptor = pollfd(fd: dispatchMainQueueHandle(), events: Int16(POLLIN), revents: 0)
    if poll(&descriptor, 1, 0) > 0 {
        var counter: UInt64 = 0
        _ = read(descriptor.fd, &counter, 8)
    }
    dispatchMainQueueCallback(nil)
    guard let next = RunLoop.main.limitDate(forMode: .default) else { return -1 }
    return max(0, next.timeIntervalSinceNow)
}
