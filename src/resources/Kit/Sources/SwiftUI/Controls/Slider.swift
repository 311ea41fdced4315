import Foundation
internal import ZentoroHostInterface

/// A value picked along a track by dragging its knob.
public struct Slider<Label: View>: View, PrimitiveView {
    public typealias Body = Never
    let value: Binding<Double>
    let bounds: ClosedRange<Double>
    let step: Double?
    let onEditingChanged: (Bool) -> Void
    /// The title before the track and the values at its ends, when given.
    var labels: (title: AnyView?, low: AnyView?, high: AnyView?) = (nil, nil, nil)

    func resolve(_ context: ResolveContext) -> [Element] {
        let slider = SliderElement(
            EmptyElement(), path: context.path, graph: context.graph, value: value, bounds: bounds, step: step,
            enabled: context.environment.isEnabled, environment: context.environment, onEditingChanged: onEditingChanged)
        let title = context.environment.labelsHidden || context.environment.inList ? nil : labels.title
        guard title != nil || labels.low != nil || labels.high != nil else { return [slider] }
        let row = HStack(spacing: 8) {
            title
            labels.low
            Elements(elements: [slider])
            labels.high
        }
        return resolveView(row, context.child(.id("labelled")))
    }
}

extension Slider where Label == EmptyView {
    public init<V: BinaryFloatingPoint>(
        value: Binding<V>, in bounds: ClosedRange<V> = 0...1,
        onEditingChanged: @escaping (Bool) -> Void = { _ in }
    ) where V.Stride: BinaryFloatingPoint {
        self.value = Binding(get: { Double(value.wrappedValue) }, set: { value.wrappedValue = V($0) })
        self.bounds = Double(bounds.lowerBound)...Double(bounds.upperBound)
        step = nil
        self.onEditingChanged = onEditingChanged
    }
    public init<V: BinaryFloatingPoint>(
        value: Binding<V>, in bounds: ClosedRange<V>, step: V.Stride,
        onEditingChanged: @escaping (Bool) -> Void = { _ in }
    ) where V.Stride: BinaryFloatingPoint {
        self.value = Binding(get: { Double(value.wrappedValue) }, set: { value.wrappedValue = V($0) })
        self.bounds = Double(bounds.lowerBound)...Double(bounds.upperBound)
        self.step = Double(step)
        self.onEditingChanged = onEditingChanged
    }
}

extension Slider {
    public init<V: BinaryFloatingPoint>(
        value: Binding<V>, in bounds: ClosedRange<V> = 0...1, @ViewBuilder label: () -> Label,
        onEditingChanged: @escaping (Bool) -> Void = { _ in }
    ) where V.Stride: BinaryFloatingPoint {
        self.value = Binding(get: { Double(value.wrappedValue) }, set: { value.wrappedValue = V($0) })
        self.bounds = Double(bounds.lowerBound)...Double(bounds.upperBound)
        step = nil
        self.onEditingChanged = onEditingChanged
        labels.title = AnyView(label())
    }
    public init<V: BinaryFloatingPoint>(
        value: Binding<V>, in bounds: ClosedRange<V>, step: V.Stride, @ViewBuilder label: () -> Label,
        onEditingChanged: @escaping (Bool) -> Void = { _ in }
    ) where V.Stride: BinaryFloatingPoint {
        self.value = Binding(get: { Double(value.wrappedValue) }, set: { value.wrappedValue = V($0) })
        self.bounds = Double(bounds.lowerBound)...Double(bounds.upperBound)
        self.step = Double(step)
        self.onEditingChanged = onEditingChanged
    }
    public init<V: BinaryFloatingPoint, Low: View, High: View>(
        value: Binding<V>, in bounds: ClosedRange<V>, step: V.Stride,
        @ViewBuilder label: () -> Label, @ViewBuilder minimumValueLabel: () -> Low, @ViewBuilder maximumValueLabel: () -> High,
        onEditingChanged: @escaping (Bool) -> Void = { _ in }
    ) where V.Stride: BinaryFloatingPoint {
        self.value = Binding(get: { Double(value.wrappedValue) }, set: { value.wrappedValue = V($0) })
        self.bounds = Double(bounds.lowerBound)...Double(bounds.upperBound)
        self.step = Double(step)
        self.onEditingChanged = onEditingChanged
        labels = (AnyView(label()), AnyView(minimumValueLabel()), AnyView(maximumValueLabel()))
    }
    public init<V: BinaryFloatingPoint, Low: View, High: View>(
        value: Binding<V>, in bounds: ClosedRange<V> = 0...1,
        @ViewBuilder label: () -> Label, @ViewBuilder minimumValueLabel: () -> Low, @ViewBuilder maximumValueLabel: () -> High,
        onEditingChanged: @escaping (Bool) -> Void = { _ in }
    ) where V.Stride: BinaryFloatingPoint {
        self.value = Binding(get: { Double(value.wrappedValue) }, set: { value.wrappedValue = V($0) })
        self.bounds = Double(bounds.lowerBound)...Double(bounds.upperBound)
        step = nil
        self.onEditingChanged = onEditingChanged
        labels = (AnyView(label()), AnyView(minimumValueLabel()), AnyView(maximumValueLabel()))
    }
}

final class SliderElement: InteractiveElement {
    let value: Binding<Double>
    let bounds: ClosedRange<Double>
    let step: Double?
    let enabled: Bool
    let environment: EnvironmentValues
    let onEditingChanged: (Bool) -> Void
    init(
        _ child: Element, path: ViewPath, graph: ViewGraph, value: Binding<Double>, bounds: ClosedRange<Double>, step: Double?,
        enabled: Bool, environment: EnvironmentValues, onEditingChanged: @escaping (Bool) -> Void
    ) {
        self.value = value; self.bounds = bounds; self.step = step; self.enabled = enabled
        self.environment = environment; self.onEditingChanged = onEditingChanged
        super.init(child, path: path, graph: graph)
    }
    private let knob: CGFloat = 16
    override var catchesWholeFrame: Bool { true }
    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        CGSize(width: proposal.width.map { $0.isFinite ? max($0, knob * 2) : 200 } ?? 200, height: 20)
    }
    private var fraction: Double {
        let span = bounds.upperBound - bounds.lowerBound
        return span > 0 ? clamp((value.wrappedValue - bounds.lowerBound) / span, 0, 1) : 0
    }
    override func draw(_ renderer: HostBridge) {
        let trackY = frame.midY - 2
        let usable = frame.width - knob
        let track = CGRect(x: frame.minX + knob / 2, y: trackY, width: usable, height: 4)
        renderer.fill(Path(roundedRect: track, cornerRadius: 2), .solid(Color.fill.rgba(in: environment).withAlpha(2)))
        var filled = track
        filled.size.width = usable * fraction
        let tint = (environment.tint ?? AnyShapeStyle(Color.accentColor)).paint(in: filled, environment: environment)
        renderer.fill(Path(roundedRect: filled, cornerRadius: 2), tint)
        let center = CGPoint(x: frame.minX + knob / 2 + usable * fraction, y: frame.midY)
        let knobRect = CGRect(x: center.x - knob / 2, y: center.y - knob / 2, width: knob, height: knob)
        renderer.shadow(
            Path(ellipseIn: knobRect), color: RGBA(red: 0, green: 0, blue: 0, alpha: 0.3), radius: 1.5,
            offset: CGSize(width: 0, height: 0.5))
        renderer.fill(Path(ellipseIn: knobRect), .solid(RGBA(red: 1, green: 1, blue: 1, alpha: 1)))
    }
    private func set(from point: CGPoint) {
        guard enabled else { return }
        let usable = max(1, frame.width - knob)
        var new = bounds.lowerBound + clamp((point.x - frame.minX - knob / 2) / usable, 0, 1) * (bounds.upperBound - bounds.lowerBound)
        if let step, step > 0 { new = bounds.lowerBound + ((new - bounds.lowerBound) / step).rounded() * step }
        new = min(max(new, bounds.lowerBound), bounds.upperBound)
        if new != value.wrappedValue { value.wrappedValue = new }
    }
    override var minimumDragDistance: CGFloat? { 0 }
    override func press(at point: CGPoint) -> Bool { onEditingChanged(true); set(from: point); return false }
    override func tap(at point: CGPoint, count: Int) -> Bool { set(from: point); onEditingChanged(false); return true }
    override func drag(from start: CGPoint, to point: CGPoint) { set(from: point) }
    override func endDrag(from start: CGPoint, to point: CGPoint) { set(from: point); onEditingChanged(false) }
}

extension Slider where Label == Text {
    public init<V: BinaryFloatingPoint>(_ titleKey: LocalizedStringKey, value: Binding<V>, in bounds: ClosedRange<V> = 0...1)
    where V.Stride: BinaryFloatingPoint {
        self.init(value: value, in: bounds) { Text(titleKey) }
    }
}
