import Foundation

/// An outline made of lines and curves.
public struct Path: Equatable {
    enum Segment: Equatable {
        case move(CGPoint)
        case line(CGPoint)
        case quad(CGPoint, CGPoint)
        case cubic(CGPoint, CGPoint, CGPoint)
        case close
    }
    var segments: [Segment] = []
    var evenOdd = false

    public init() {}
    public init(_ build: (inout Path) -> Void) { build(&self) }
    public init(_ rect: CGRect) { addRect(rect) }
    public init(roundedRect rect: CGRect, cornerRadius: CGFloat, style: RoundedCornerStyle = .continuous) {
        addRoundedRect(in: rect, cornerSize: CGSize(width: cornerRadius, height: cornerRadius))
    }
    public init(roundedRect rect: CGRect, cornerSize: CGSize, style: RoundedCornerStyle = .continuous) {
        addRoundedRect(in: rect, cornerSize: cornerSize)
    }
    public init(ellipseIn rect: CGRect) { addEllipse(in: rect) }

    public var isEmpty: Bool { segments.isEmpty }

    private var lastPoint: CGPoint? {
        for segment in segments.reversed() {
            switch segment {
            case .move(let p), .line(let p), .quad(_, let p), .cubic(_, _, let p): return p
            case .close: continue
            }
        }
        return nil
    }
    public var currentPoint: CGPoint? { lastPoint }

    public mutating func move(to p: CGPoint) { segments.append(.move(p)) }
    public mutating func addLine(to p: CGPoint) {
        if segments.isEmpty { segments.append(.move(p)) } else { segments.append(.line(p)) }
    }
    public mutating func addQuadCurve(to p: CGPoint, control: CGPoint) { segments.append(.quad(control, p)) }
    public mutating func addCurve(to p: CGPoint, control1: CGPoint, control2: CGPoint) { segments.append(.cubic(control1, control2, p)) }
    public mutating func closeSubpath() { segments.append(.close) }
    public mutating func addLines(_ points: [CGPoint]) {
        guard let first = points.first else { return }
        move(to: first)
        for p in points.dropFirst() { addLine(to: p) }
    }
    public mutating func addRect(_ rect: CGRect) {
        addLines([
            CGPoint(x: rect.minX, y: rect.minY), CGPoint(x: rect.maxX, y: rect.minY),
            CGPoint(x: rect.maxX, y: rect.maxY), CGPoint(x: rect.minX, y: rect.maxY)
        ])
        closeSubpath()
    }
    public mutating func addRects(_ rects: [CGRect]) { rects.forEach { addRect($0) } }
    public mutating func addEllipse(in rect: CGRect) {
        let c = CGPoint(x: rect.midX, y: rect.midY)
        let rx = rect.width / 2, ry = rect.height / 2
        let k: CGFloat = 0.5522847498
        move(to: CGPoint(x: c.x + rx, y: c.y))
        addCurve(
            to: CGPoint(x: c.x, y: c.y + ry), control1: CGPoint(x: c.x + rx, y: c.y + ry * k),
            control2: CGPoint(x: c.x + rx * k, y: c.y + ry))
        addCurve(
            to: CGPoint(x: c.x - rx, y: c.y), control1: CGPoint(x: c.x - rx * k, y: c.y + ry),
            control2: CGPoint(x: c.x - rx, y: c.y + ry * k))
        addCurve(
            to: CGPoint(x: c.x, y: c.y - ry), control1: CGPoint(x: c.x - rx, y: c.y - ry * k),
            control2: CGPoint(x: c.x - rx * k, y: c.y - ry))
        addCurve(
            to: CGPoint(x: c.x + rx, y: c.y), control1: CGPoint(x: c.x + rx * k, y: c.y - ry),
            control2: CGPoint(x: c.x + rx, y: c.y - ry * k))
        closeSubpath()
    }
    public mutating func addRoundedRect(in rect: CGRect, cornerSize: CGSize, style: RoundedCornerStyle = .continuous) {
        let rx = min(cornerSize.width, rect.width / 2), ry = min(cornerSize.height, rect.height / 2)
        guard rx > 0, ry > 0 else { addRect(rect); return }
        let k: CGFloat = 0.5522847498
        move(to: CGPoint(x: rect.minX + rx, y: rect.minY))
        addLine(to: CGPoint(x: rect.maxX - rx, y: rect.minY))
        addCurve(
            to: CGPoint(x: rect.maxX, y: rect.minY + ry), control1: CGPoint(x: rect.maxX - rx + rx * k, y: rect.minY),
            control2: CGPoint(x: rect.maxX, y: rect.minY + ry - ry * k))
        addLine(to: CGPoint(x: rect.maxX, y: rect.maxY - ry))
        addCurve(
            to: CGPoint(x: rect.maxX - rx, y: rect.maxY), control1: CGPoint(x: rect.maxX, y: rect.maxY - ry + ry * k),
            control2: CGPoint(x: rect.maxX - rx + rx * k, y: rect.maxY))
        addLine(to: CGPoint(x: rect.minX + rx, y: rect.maxY))
        addCurve(
            to: CGPoint(x: rect.minX, y: rect.maxY - ry), control1: CGPoint(x: rect.minX + rx - rx * k, y: rect.maxY),
            control2: CGPoint(x: rect.minX, y: rect.maxY - ry + ry * k))
        addLine(to: CGPoint(x: rect.minX, y: rect.minY + ry))
        addCurve(
            to: CGPoint(x: rect.minX + rx, y: rect.minY), control1: CGPoint(x: rect.minX, y: rect.minY + ry - ry * k),
            control2: CGPoint(x: rect.minX + rx - rx * k, y: rect.minY))
        closeSubpath()
    }
    public mutating func addRoundedRect(in rect: CGRect, cornerRadius: CGFloat) {
        addRoundedRect(in: rect, cornerSize: CGSize(width: cornerRadius, height: cornerRadius))
    }

    /// An arc of the circle around `center`; with y pointing down, increasing angles turn
    /// clockwise on screen, and `clockwise: false` follows increasing angles.
    public mutating func addArc(center: CGPoint, radius: CGFloat, startAngle: Angle, endAngle: Angle, clockwise: Bool) {
        var start = startAngle.radians, end = endAngle.radians
        if clockwise {
            while end > start { end -= 2 * .pi }
        } else {
            while end < start { end += 2 * .pi }
        }
        let sweep = end - start
        let first = CGPoint(x: center.x + radius * cos(start), y: center.y + radius * sin(start))
        if segments.isEmpty || lastPoint == nil { move(to: first) } else { addLine(to: first) }
        let pieces = max(1, Int(ceil(abs(sweep) / (.pi / 2) - 1e-9)))
        let step = sweep / Double(pieces)
        let k = 4.0 / 3.0 * tan(step / 4)
        var angle = start
        for _ in 0..<pieces {
            let next = angle + step
            let p0 = CGPoint(x: center.x + radius * cos(angle), y: center.y + radius * sin(angle))
            let p3 = CGPoint(x: center.x + radius * cos(next), y: center.y + radius * sin(next))
            let c1 = CGPoint(x: p0.x - k * radius * sin(angle), y: p0.y + k * radius * cos(angle))
            let c2 = CGPoint(x: p3.x + k * radius * sin(next), y: p3.y - k * radius * cos(next))
            addCurve(to: p3, control1: c1, control2: c2)
            angle = next
        }
    }
    public mutating func addArc(center: CGPoint, radius: CGFloat, startAngle: Angle, delta: Angle) {
        addArc(center: center, radius: radius, startAngle: startAngle, endAngle: startAngle + delta, clockwise: delta.radians < 0)
    }
    public mutating func addPath(_ path: Path, transform: CGAffineTransform = .identity) {
        segments += path.applying(transform).segments
    }

    public func applying(_ t: CGAffineTransform) -> Path {
        if t.isIdentity { return self }
        var copy = self
        copy.segments = segments.map {
            switch $0 {
            case .move(let p): return .move(p.applying(t))
            case .line(let p): return .line(p.applying(t))
            case let .quad(c, p): return .quad(c.applying(t), p.applying(t))
            case let .cubic(a, b, p): return .cubic(a.applying(t), b.applying(t), p.applying(t))
            case .close: return .close
            }
        }
        return copy
    }
    public func offsetBy(dx: CGFloat, dy: CGFloat) -> Path { applying(CGAffineTransform(translationX: dx, y: dy)) }

    public var boundingRect: CGRect {
        var points: [CGPoint] = []
        for segment in segments {
            switch segment {
            case .move(let p), .line(let p): points.append(p)
            case let .quad(c, p): points += [c, p]
            case let .cubic(a, b, p): points += [a, b, p]
            case .close: break
            }
        }
        guard let first = points.first else { return .zero }
        var minX = first.x, maxX = first.x, minY = first.y, maxY = first.y
        for p in points { minX = min(minX, p.x); maxX = max(maxX, p.x); minY = min(minY, p.y); maxY = max(maxY, p.y) }
        return CGRect(x: minX, y: minY, width: maxX - minX, height: maxY - minY)
    }

    /// The path as polylines, one per subpath, with curves cut into short straight pieces.
    func polylines() -> [(points: [CGPoint], closed: Bool)] {
        var result: [(points: [CGPoint], closed: Bool)] = []
        var current: [CGPoint] = []
        func finish(_ closed: Bool) {
            if current.count > 1 { result.append((current, closed)) }
            current = []
        }
        for segment in segments {
            let from = current.last ?? .zero
            switch segment {
            case .move(let p): finish(false); current = [p]
            case .line(let p): current.append(p)
            case let .quad(c, p):
                for i in 1...12 {
                    let t = CGFloat(i) / 12, u = 1 - t
                    current.append(
                        CGPoint(x: u * u * from.x + 2 * u * t * c.x + t * t * p.x, y: u * u * from.y + 2 * u * t * c.y + t * t * p.y))
                }
            case let .cubic(a, b, p):
                for i in 1...16 {
                    let t = CGFloat(i) / 16, u = 1 - t
                    let x = u * u * u * from.x + 3 * u * u * t * a.x + 3 * u * t * t * b.x + t * t * t * p.x
                    let y = u * u * u * from.y + 3 * u * u * t * a.y + 3 * u * t * t * b.y + t * t * t * p.y
                    current.append(CGPoint(x: x, y: y))
                }
            case .close:
                if let first = current.first { current.append(first) }
                finish(true)
            }
        }
        finish(false)
        return result
    }

    /// The part of the path between two fractions of its length.
    public func trimmedPath(from start: CGFloat, to end: CGFloat) -> Path {
        let lo = clamp(start, 0, 1), hi = clamp(end, 0, 1)
        guard hi > lo else { return Path() }
        let lines = polylines()
        func length(_ a: CGPoint, _ b: CGPoint) -> CGFloat { hypot(b.x - a.x, b.y - a.y) }
        let total = lines.reduce(0) { sum, line in sum + zip(line.points, line.points.dropFirst()).reduce(0) { $0 + length($1.0, $1.1) } }
        guard total > 0 else { return Path() }
        let from = lo * total, to = hi * total
        var result = Path()
        var walked: CGFloat = 0
        for line in lines {
            var started = false
            for (a, b) in zip(line.points, line.points.dropFirst()) {
                let l = length(a, b)
                let segStart = walked, segEnd = walked + l
                walked = segEnd
                if segEnd < from || segStart > to || l == 0 { started = false; continue }
                let t0 = max(0, (from - segStart) / l), t1 = min(1, (to - segStart) / l)
                let p0 = CGPoint(x: a.x + (b.x - a.x) * t0, y: a.y + (b.y - a.y) * t0)
                let p1 = CGPoint(x: a.x + (b.x - a.x) * t1, y: a.y + (b.y - a.y) * t1)
                if !started { result.move(to: p0); started = true }
                result.addLine(to: p1)
            }
        }
        return result
    }

    public func contains(_ point: CGPoint, eoFill: Bool = false) -> Bool {
        var winding = 0
        var crossings = 0
        for line in polylines() {
            var points = line.points
            if let first = points.first, points.last != first { points.append(first) }
            for (a, b) in zip(points, points.dropFirst()) {
                if (a.y <= point.y) != (b.y <= point.y) {
                    let x = a.x + (point.y - a.y) / (b.y - a.y) * (b.x - a.x)
                    if x > point.x { crossings += 1; winding += b.y > a.y ? 1 : -1 }
                }
            }
        }
        return eoFill || evenOdd ? crossings % 2 == 1 : winding != 0
    }
}

public enum RoundedCornerStyle: Sendable { case circular, continuous }

public enum CGLineCap: Int32, Sendable { case butt = 0, round = 1, square = 2 }
public enum CGLineJoin: Int32, Sendable { case miter = 0, round = 1, bevel = 2 }

public struct StrokeStyle: Equatable {
    public var lineWidth: CGFloat
    public var lineCap: CGLineCap
    public var lineJoin: CGLineJoin
    public var miterLimit: CGFloat
    public var dash: [CGFloat]
    public var dashPhase: CGFloat
    public init(
        lineWidth: CGFloat = 1, lineCap: CGLineCap = .butt, lineJoin: CGLineJoin = .miter,
        miterLimit: CGFloat = 10, dash: [CGFloat] = [], dashPhase: CGFloat = 0
    ) {
        self.lineWidth = lineWidth; self.lineCap = lineCap; self.lineJoin = lineJoin
        self.miterLimit = miterLimit; self.dash = dash; self.dashPhase = dashPhase
    }
}

public struct FillStyle: Equatable {
    public var isEOFilled: Bool
    public var isAntialiased: Bool
    public init(eoFill: Bool = false, antialiased: Bool = true) { isEOFilled = eoFill; isAntialiased = antialiased }
}
