import Foundation
internal import ZentoroHostInterface

public struct Toggle<Label: View>: View {
    @Binding var isOn: Bool
    let label: Label
    @Environment(\.toggleStyle) private var style
    @Environment(\.labelsHidden) private var labelsHidden

    public init(isOn: Binding<Bool>, @ViewBuilder label: () -> Label) { _isOn = isOn; self.label = label() }

    public var body: some View {
        Button { isOn.toggle() } label: {
            if style == .switch {
                HStack(spacing: 8) {
                    if !labelsHidden { label; Spacer(minLength: 8) }
                    SwitchKnob(isOn: isOn)
                }
            } else if style == .button {
                label.padding(.horizontal, 10).padding(.vertical, 3)
                    .background(RoundedRectangle(cornerRadius: 6).fill(isOn ? AnyShapeStyle(Color.accentColor.opacity(0.25)) : AnyShapeStyle(Color.fill)))
            } else {
                HStack(spacing: 6) {
                    CheckBox(isOn: isOn)
                    if !labelsHidden { label }
                }
            }
        }
        .buttonStyle(.plain)
    }
}

extension Toggle where Label == Text {
    public init(_ titleKey: LocalizedStringKey, isOn: Binding<Bool>) { self.init(isOn: isOn) { Text(titleKey) } }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, isOn: Binding<Bool>) { self.init(isOn: isOn) { Text(title) } }
}

struct SwitchKnob: View {
    let isOn: Bool
    var body: some View {
        ZStack(alignment: isOn ? .trailing : .leading) {
            Capsule().fill(isOn ? AnyShapeStyle(TintShapeStyle()) : AnyShapeStyle(Color.gray.opacity(0.35)))
            Circle().fill(Color.white).padding(2).shadow(color: .black.opacity(0.2), radius: 1, y: 0.5)
        }
        .frame(width: 32, height: 18)
    }
}

struct CheckBox: View {
    let isOn: Bool
    var body: some View {
        ZStack {
            RoundedRectangle(cornerRadius: 3.5).fill(isOn ? AnyShapeStyle(TintShapeStyle()) : AnyShapeStyle(Color.controlBackground))
            RoundedRectangle(cornerRadius: 3.5).strokeBorder(isOn ? Color.clear : Color.controlBorder, lineWidth: 1)
            if isOn {
                Image(systemName: "checkmark").font(.system(size: 9, weight: .bold)).foregroundStyle(Color.white)
            }
        }
        .frame(width: 14, height: 14)
    }
}

public struct ToggleStyleKind: Equatable, Sendable {
    let kind: Int
    public static let automatic = ToggleStyleKind(kind: 0)
    public static let checkbox = ToggleStyleKind(kind: 0)
    public static let `switch` = ToggleStyleKind(kind: 1)
    public static let button = ToggleStyleKind(kind: 2)
}
private enum ToggleStyleKey: EnvironmentKey { static let defaultValue = ToggleStyleKind.automatic }
extension EnvironmentValues {
    var toggleStyle: ToggleStyleKind { get { self[ToggleStyleKey.self] } set { self[ToggleStyleKey.self] = newValue } }
}
extension View {
    public func toggleStyle(_ style: ToggleStyleKind) -> some View { modifier(EnvironmentModifier { $0.toggleStyle = style }) }
}

/// One line of text entry, shown by the host as a native text field.
public struct TextField<Label: View>: View, PrimitiveView {
    public typealias Body = Never
    let text: Binding<String>
    let prompt: String
    let secure: Bool

    public init(text: Binding<String>, prompt: Text? = nil, @ViewBuilder label: () -> Label) {
        self.text = text; self.prompt = prompt?.plainText ?? ""; secure = false
    }
    init(text: Binding<String>, prompt: String, secure: Bool) { self.text = text; self.prompt = prompt; self.secure = secure }

    func resolve(_ context: ResolveContext) -> [Element] {
        let environment = context.environment
        let graph = context.graph
        let identifier = Int64(truncatingIfNeeded: context.path.hashValue)
        let text = self.text
        let submit = environment.submitAction
        let focus = environment.focusBinding
        graph.textFields[identifier] = TextFieldHandlers(
            setText: { if text.wrappedValue != $0 { text.wrappedValue = $0 } },
            submit: { submit?() },
            focus: { focused in focus?.set(focused) })
        let font = (environment.font ?? .body).resolved(environment.textTraits)
        var flags: Int32 = secure ? Int32(ZENTORO_FIELD_SECURE) : 0
        if focus?.get() == true { flags |= Int32(ZENTORO_FIELD_FOCUS) }
        if !environment.isEnabled { flags |= Int32(ZENTORO_FIELD_DISABLED) }
        if environment.textFieldStyle == .plain { flags |= Int32(ZENTORO_FIELD_PLAIN) }
        return [TextFieldElement(identifier: identifier, text: text.wrappedValue, prompt: prompt, font: font, flags: flags, graph: graph)]
    }
}

extension TextField where Label == Text {
    public init(_ titleKey: LocalizedStringKey, text: Binding<String>) {
        self.init(text: text, prompt: titleKey.string, secure: false)
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, text: Binding<String>) {
        self.init(text: text, prompt: String(title), secure: false)
    }
    public init(_ titleKey: LocalizedStringKey, text: Binding<String>, prompt: Text?) {
        self.init(text: text, prompt: prompt?.plainText ?? titleKey.string, secure: false)
    }
    public init(_ titleKey: LocalizedStringKey, text: Binding<String>, axis: Axis) {
        self.init(text: text, prompt: titleKey.string, secure: false)
    }
    public init(_ titleKey: LocalizedStringKey, text: Binding<String>, prompt: Text? = nil, axis: Axis) {
        self.init(text: text, prompt: prompt?.plainText ?? titleKey.string, secure: false)
    }
    /// Edits a value through a format: the text is parsed back when it is valid.
    public init<F: ParseableFormatStyle>(_ titleKey: LocalizedStringKey, value: Binding<F.FormatInput>, format: F, prompt: Text? = nil)
        where F.FormatOutput == String {
        let binding = Binding<String>(get: { format.format(value.wrappedValue) },
                                      set: { if let parsed = try? format.parseStrategy.parse($0) { value.wrappedValue = parsed } })
        self.init(text: binding, prompt: prompt?.plainText ?? titleKey.string, secure: false)
    }
}

public struct SecureField<Label: View>: View {
    let field: TextField<Text>
    public var body: some View { field }
}

extension SecureField where Label == Text {
    public init(_ titleKey: LocalizedStringKey, text: Binding<String>) {
        field = TextField(text: text, prompt: titleKey.string, secure: true)
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, text: Binding<String>) {
        field = TextField(text: text, prompt: String(title), secure: true)
    }
    public init(_ titleKey: LocalizedStringKey, text: Binding<String>, prompt: Text?) {
        field = TextField(text: text, prompt: prompt?.plainText ?? titleKey.string, secure: true)
    }
}

final class TextFieldElement: Element {
    let identifier: Int64
    let text: String
    let prompt: String
    let font: ResolvedFont
    let flags: Int32
    weak var graph: ViewGraph?
    init(identifier: Int64, text: String, prompt: String, font: ResolvedFont, flags: Int32, graph: ViewGraph) {
        self.identifier = identifier; self.text = text; self.prompt = prompt; self.font = font; self.flags = flags; self.graph = graph
    }
    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        CGSize(width: proposal.width.map { $0.isFinite ? $0 : 200 } ?? 200, height: ceil(font.size * 1.3) + 10)
    }
    override func draw(_ renderer: Renderer) {
        renderer.placeTextField(identifier, rect: frame, text: text, prompt: prompt, font: font, flags: flags)
    }
    override func contains(_ point: CGPoint) -> Bool { frame.contains(point) }
}

public struct TextFieldStyleKind: Equatable, Sendable {
    let kind: Int
    public static let automatic = TextFieldStyleKind(kind: 0)
    public static let roundedBorder = TextFieldStyleKind(kind: 0)
    public static let squareBorder = TextFieldStyleKind(kind: 0)
    public static let plain = TextFieldStyleKind(kind: 1)
}
private enum TextFieldStyleKey: EnvironmentKey { static let defaultValue = TextFieldStyleKind.automatic }
private enum SubmitKey: EnvironmentKey { static let defaultValue: (() -> Void)? = nil }
struct FocusBinding {
    let get: () -> Bool
    let set: (Bool) -> Void
}
private enum FocusKey: EnvironmentKey { static let defaultValue: FocusBinding? = nil }
extension EnvironmentValues {
    var textFieldStyle: TextFieldStyleKind { get { self[TextFieldStyleKey.self] } set { self[TextFieldStyleKey.self] = newValue } }
    var submitAction: (() -> Void)? { get { self[SubmitKey.self] } set { self[SubmitKey.self] = newValue } }
    var focusBinding: FocusBinding? { get { self[FocusKey.self] } set { self[FocusKey.self] = newValue } }
}

public struct SubmitTriggers: OptionSet, Sendable {
    public let rawValue: Int
    public init(rawValue: Int) { self.rawValue = rawValue }
    public static let text = SubmitTriggers(rawValue: 1)
    public static let search = SubmitTriggers(rawValue: 2)
}

extension View {
    public func textFieldStyle(_ style: TextFieldStyleKind) -> some View { modifier(EnvironmentModifier { $0.textFieldStyle = style }) }
    public func onSubmit(of triggers: SubmitTriggers = .text, _ action: @escaping () -> Void) -> some View {
        modifier(EnvironmentModifier { $0.submitAction = action })
    }
    public func focused(_ condition: FocusState<Bool>.Binding) -> some View {
        modifier(EnvironmentModifier { $0.focusBinding = FocusBinding(get: { condition.wrappedValue }, set: { condition.wrappedValue = $0 }) })
    }
    public func focused<Value: Hashable>(_ binding: FocusState<Value?>.Binding, equals value: Value) -> some View {
        modifier(EnvironmentModifier {
            $0.focusBinding = FocusBinding(get: { binding.wrappedValue == value },
                                           set: { focused in
                                               if focused { binding.wrappedValue = value } else if binding.wrappedValue == value { binding.wrappedValue = nil }
                                           })
        })
    }
    public func autocorrectionDisabled(_ disable: Bool = true) -> some View { self }
    public func submitLabel(_ label: SubmitLabel) -> some View { self }
}

public struct SubmitLabel: Sendable {
    public static let done = SubmitLabel(), go = SubmitLabel(), send = SubmitLabel(), join = SubmitLabel()
    public static let route = SubmitLabel(), search = SubmitLabel(), `return` = SubmitLabel(), next = SubmitLabel(), `continue` = SubmitLabel()
}

/// A value picked along a track by dragging its knob.
public struct Slider<Label: View>: View, PrimitiveView {
    public typealias Body = Never
    let value: Binding<Double>
    let bounds: ClosedRange<Double>
    let step: Double?
    let onEditingChanged: (Bool) -> Void

    func resolve(_ context: ResolveContext) -> [Element] {
        [SliderElement(EmptyElement(), path: context.path, graph: context.graph, value: value, bounds: bounds, step: step,
                       enabled: context.environment.isEnabled, environment: context.environment, onEditingChanged: onEditingChanged)]
    }
}

extension Slider where Label == EmptyView {
    public init<V: BinaryFloatingPoint>(value: Binding<V>, in bounds: ClosedRange<V> = 0...1,
                                        onEditingChanged: @escaping (Bool) -> Void = { _ in }) where V.Stride: BinaryFloatingPoint {
        self.value = Binding(get: { Double(value.wrappedValue) }, set: { value.wrappedValue = V($0) })
        self.bounds = Double(bounds.lowerBound)...Double(bounds.upperBound)
        step = nil
        self.onEditingChanged = onEditingChanged
    }
    public init<V: BinaryFloatingPoint>(value: Binding<V>, in bounds: ClosedRange<V>, step: V.Stride,
                                        onEditingChanged: @escaping (Bool) -> Void = { _ in }) where V.Stride: BinaryFloatingPoint {
        self.value = Binding(get: { Double(value.wrappedValue) }, set: { value.wrappedValue = V($0) })
        self.bounds = Double(bounds.lowerBound)...Double(bounds.upperBound)
        self.step = Double(step)
        self.onEditingChanged = onEditingChanged
    }
}

extension Slider {
    public init<V: BinaryFloatingPoint>(value: Binding<V>, in bounds: ClosedRange<V> = 0...1, @ViewBuilder label: () -> Label,
                                        onEditingChanged: @escaping (Bool) -> Void = { _ in }) where V.Stride: BinaryFloatingPoint {
        self.value = Binding(get: { Double(value.wrappedValue) }, set: { value.wrappedValue = V($0) })
        self.bounds = Double(bounds.lowerBound)...Double(bounds.upperBound)
        step = nil
        self.onEditingChanged = onEditingChanged
    }
    public init<V: BinaryFloatingPoint, Low: View, High: View>(value: Binding<V>, in bounds: ClosedRange<V> = 0...1,
        @ViewBuilder label: () -> Label, @ViewBuilder minimumValueLabel: () -> Low, @ViewBuilder maximumValueLabel: () -> High,
        onEditingChanged: @escaping (Bool) -> Void = { _ in }) where V.Stride: BinaryFloatingPoint {
        self.value = Binding(get: { Double(value.wrappedValue) }, set: { value.wrappedValue = V($0) })
        self.bounds = Double(bounds.lowerBound)...Double(bounds.upperBound)
        step = nil
        self.onEditingChanged = onEditingChanged
    }
}

final class SliderElement: InteractiveElement {
    let value: Binding<Double>
    let bounds: ClosedRange<Double>
    let step: Double?
    let enabled: Bool
    let environment: EnvironmentValues
    let onEditingChanged: (Bool) -> Void
    init(_ child: Element, path: ViewPath, graph: ViewGraph, value: Binding<Double>, bounds: ClosedRange<Double>, step: Double?,
         enabled: Bool, environment: EnvironmentValues, onEditingChanged: @escaping (Bool) -> Void) {
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
    override func draw(_ renderer: Renderer) {
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
        renderer.shadow(Path(ellipseIn: knobRect), color: RGBA(red: 0, green: 0, blue: 0, alpha: 0.3), radius: 1.5, offset: CGSize(width: 0, height: 0.5))
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

public struct Stepper<Label: View>: View {
    let label: Label
    let increment: (() -> Void)?
    let decrement: (() -> Void)?
    @Environment(\.labelsHidden) private var labelsHidden

    public init(@ViewBuilder label: () -> Label, onIncrement: (() -> Void)?, onDecrement: (() -> Void)?,
                onEditingChanged: @escaping (Bool) -> Void = { _ in }) {
        self.label = label(); increment = onIncrement; decrement = onDecrement
    }
    public init<V: Strideable>(value: Binding<V>, in bounds: ClosedRange<V>, step: V.Stride = 1,
                               onEditingChanged: @escaping (Bool) -> Void = { _ in }, @ViewBuilder label: () -> Label) {
        self.label = label()
        increment = { value.wrappedValue = min(value.wrappedValue.advanced(by: step), bounds.upperBound) }
        decrement = { value.wrappedValue = max(value.wrappedValue.advanced(by: -step), bounds.lowerBound) }
    }
    public init<V: Strideable>(value: Binding<V>, step: V.Stride = 1, onEditingChanged: @escaping (Bool) -> Void = { _ in },
                               @ViewBuilder label: () -> Label) {
        self.label = label()
        increment = { value.wrappedValue = value.wrappedValue.advanced(by: step) }
        decrement = { value.wrappedValue = value.wrappedValue.advanced(by: -step) }
    }

    public var body: some View {
        HStack(spacing: 8) {
            if !labelsHidden { label }
            HStack(spacing: 0) {
                Button { decrement?() } label: { Image(systemName: "minus").frame(width: 22, height: 20).contentShape(Rectangle()) }
                Divider().frame(height: 14)
                Button { increment?() } label: { Image(systemName: "plus").frame(width: 22, height: 20).contentShape(Rectangle()) }
            }
            .buttonStyle(.plain)
            .font(.system(size: 10, weight: .semibold))
            .background(RoundedRectangle(cornerRadius: 5).fill(Color.controlBackground))
            .overlay(RoundedRectangle(cornerRadius: 5).strokeBorder(Color.controlBorder, lineWidth: 1))
        }
    }
}

extension Stepper where Label == Text {
    public init<V: Strideable>(_ titleKey: LocalizedStringKey, value: Binding<V>, in bounds: ClosedRange<V>, step: V.Stride = 1) {
        self.init(value: value, in: bounds, step: step) { Text(titleKey) }
    }
    @_disfavoredOverload
    public init<S: StringProtocol, V: Strideable>(_ title: S, value: Binding<V>, in bounds: ClosedRange<V>, step: V.Stride = 1) {
        self.init(value: value, in: bounds, step: step) { Text(title) }
    }
    public init<V: Strideable>(_ titleKey: LocalizedStringKey, value: Binding<V>, step: V.Stride = 1) {
        self.init(value: value, step: step) { Text(titleKey) }
    }
    public init(_ titleKey: LocalizedStringKey, onIncrement: (() -> Void)?, onDecrement: (() -> Void)?) {
        self.init(label: { Text(titleKey) }, onIncrement: onIncrement, onDecrement: onDecrement)
    }
}

/// Progress as a bar, or as a ring with `.progressViewStyle(.circular)`; without a value, a spinner.
public struct ProgressView<Label: View>: View {
    let fraction: Double?
    let label: Label?
    @Environment(\.progressStyle) private var style

    public var body: some View {
        VStack(alignment: .leading, spacing: 4) {
            if let label { label }
            if let fraction, style != .circular {
                GeometryReader { proxy in
                    ZStack(alignment: .leading) {
                        Capsule().fill(Color.fill)
                        Capsule().fill(.tint).frame(width: proxy.size.width * fraction)
                    }
                }
                .frame(height: 6)
            } else {
                ZStack {
                    Circle().stroke(Color.fill, lineWidth: 3)
                    Circle().trim(from: 0, to: fraction ?? 0.3).stroke(.tint, style: StrokeStyle(lineWidth: 3, lineCap: .round))
                        .rotationEffect(.degrees(-90))
                }
                .frame(width: 20, height: 20)
            }
        }
    }
}

extension ProgressView where Label == EmptyView {
    public init() { fraction = nil; label = nil }
    public init<V: BinaryFloatingPoint>(value: V?, total: V = 1.0) {
        fraction = value.map { total > 0 ? clamp(Double($0 / total), 0, 1) : 0 }
        label = nil
    }
}

extension ProgressView where Label == Text {
    public init(_ titleKey: LocalizedStringKey) { fraction = nil; label = Text(titleKey) }
    public init<V: BinaryFloatingPoint>(_ titleKey: LocalizedStringKey, value: V?, total: V = 1.0) {
        fraction = value.map { total > 0 ? clamp(Double($0 / total), 0, 1) : 0 }
        label = Text(titleKey)
    }
}

extension ProgressView {
    public init<V: BinaryFloatingPoint>(value: V?, total: V = 1.0, @ViewBuilder label: () -> Label) {
        fraction = value.map { total > 0 ? clamp(Double($0 / total), 0, 1) : 0 }
        self.label = label()
    }
}

public struct ProgressStyleKind: Equatable, Sendable {
    let kind: Int
    public static let automatic = ProgressStyleKind(kind: 0)
    public static let linear = ProgressStyleKind(kind: 0)
    public static let circular = ProgressStyleKind(kind: 1)
}
private enum ProgressStyleKey: EnvironmentKey { static let defaultValue = ProgressStyleKind.automatic }
extension EnvironmentValues {
    var progressStyle: ProgressStyleKind { get { self[ProgressStyleKey.self] } set { self[ProgressStyleKey.self] = newValue } }
}
extension View {
    public func progressViewStyle(_ style: ProgressStyleKind) -> some View { modifier(EnvironmentModifier { $0.progressStyle = style }) }
}

/// Content larger than its frame, moved with the wheel or the touchpad.
public struct ScrollView<Content: View>: View, PrimitiveView {
    public typealias Body = Never
    let axes: Axis.Set
    let showsIndicators: Bool
    let content: Content
    public init(_ axes: Axis.Set = .vertical, showsIndicators: Bool = true, @ViewBuilder content: () -> Content) {
        self.axes = axes; self.showsIndicators = showsIndicators; self.content = content()
    }
    func resolve(_ context: ResolveContext) -> [Element] {
        let axis: Axis = axes.contains(.vertical) ? .vertical : .horizontal
        var inner = context
        inner.stackAxis = axis
        let children = resolveView(content, inner)
        let body = children.count == 1 ? children[0] : StackElement(axis: axis, crossFraction: 0.5, spacing: nil, children: children)
        let state = context.graph.storage(at: context.child(.id("scroll")).path).0.slot(0) { ScrollState() }
        return [ScrollElement(body, axis: axis, state: state, graph: context.graph,
                              indicator: showsIndicators ? Color.secondary.rgba(in: context.environment).withAlpha(0.6) : nil)]
    }
}

@MainActor
final class ScrollState {
    var offset: CGFloat = 0
}

final class ScrollElement: WrapperElement {
    let axis: Axis
    let state: ScrollState
    weak var graph: ViewGraph?
    let indicator: RGBA?
    private var contentLength: CGFloat = 0
    init(_ child: Element, axis: Axis, state: ScrollState, graph: ViewGraph, indicator: RGBA?) {
        self.axis = axis; self.state = state; self.graph = graph; self.indicator = indicator
        super.init(child)
    }
    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        var inner = proposal
        inner[axis] = nil
        // A scroll view takes all the room it is offered, in both directions.
        var s = child.size(inner)
        if let offered = proposal.width, offered.isFinite { s.width = offered }
        if let offered = proposal.height, offered.isFinite { s.height = offered }
        return s
    }
    override func place(in rect: CGRect) {
        frame = rect
        var inner = ProposedViewSize(rect.size)
        inner[axis] = nil
        var s = child.size(inner)
        s[axis.other] = max(s[axis.other], rect.size[axis.other])
        contentLength = s[axis]
        state.offset = clamp(state.offset, 0, max(0, contentLength - rect.size[axis]))
        let origin = axis == .vertical ? CGPoint(x: rect.minX, y: rect.minY - state.offset) : CGPoint(x: rect.minX - state.offset, y: rect.minY)
        var contentRect = CGRect(origin: origin, size: s)
        if axis == .vertical { contentRect.size.width = min(s.width, rect.width) }
        graph?.viewports.append(rect)
        child.place(in: contentRect)
        graph?.viewports.removeLast()
    }
    override func draw(_ renderer: Renderer) {
        renderer.save()
        renderer.clip(Path(frame))
        child.draw(renderer)
        renderer.restore()
        let visible = frame.size[axis]
        if let indicator, contentLength > visible + 0.5 {
            let length = max(24, visible * visible / contentLength)
            let position = (visible - length) * state.offset / (contentLength - visible)
            let bar = axis == .vertical
                ? CGRect(x: frame.maxX - 6, y: frame.minY + position, width: 4, height: length)
                : CGRect(x: frame.minX + position, y: frame.maxY - 6, width: length, height: 4)
            renderer.fill(Path(roundedRect: bar, cornerRadius: 2), .solid(indicator))
        }
    }
    override func hits(_ point: CGPoint) -> [InteractiveElement]? { frame.contains(point) ? child.hits(point) : nil }
    func scroll(by delta: CGSize) -> Bool {
        let change = axis == .vertical ? delta.height : delta.width
        let limit = max(0, contentLength - frame.size[axis])
        let new = clamp(state.offset + change, 0, limit)
        guard new != state.offset else { return false }
        state.offset = new
        graph?.relayout()
        return true
    }
    /// Brings `rect` (in the content's coordinates as laid out now) into view.
    func reveal(_ rect: CGRect, anchor: UnitPoint?) {
        let start = (axis == .vertical ? rect.minY - frame.minY : rect.minX - frame.minX) + state.offset
        let length = rect.size[axis]
        let visible = frame.size[axis]
        if let anchor {
            state.offset = start - (visible - length) * (axis == .vertical ? anchor.y : anchor.x)
        } else if start < state.offset {
            state.offset = start
        } else if start + length > state.offset + visible {
            state.offset = start + length - visible
        }
        state.offset = clamp(state.offset, 0, max(0, contentLength - visible))
    }
}
