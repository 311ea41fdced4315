import Foundation
internal import ZentoroHostInterface

/// One line of text entry, shown by the host as a native text field.
public struct TextField<Label: View>: View, PrimitiveView {
    public typealias Body = Never
    let text: Binding<String>
    let prompt: String
    let secure: Bool
    var multiline = false

    public init(text: Binding<String>, prompt: Text? = nil, @ViewBuilder label: () -> Label) {
        self.text = text; self.prompt = prompt?.plainText ?? ""; secure = false
    }
    public init(text: Binding<String>, prompt: Text? = nil, axis: Axis, @ViewBuilder label: () -> Label) {
        self.text = text; self.prompt = prompt?.plainText ?? ""; secure = false
    }
    init(text: Binding<String>, prompt: String, secure: Bool, multiline: Bool = false) {
        self.text = text; self.prompt = prompt; self.secure = secure; self.multiline = multiline
    }

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
        if multiline { flags |= Int32(ZENTORO_FIELD_MULTILINE) }
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
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, text: Binding<String>, prompt: Text?) {
        self.init(text: text, prompt: prompt?.plainText ?? String(title), secure: false)
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, text: Binding<String>, axis: Axis) {
        self.init(text: text, prompt: String(title), secure: false)
    }
    public init(
        _ titleKey: LocalizedStringKey, text: Binding<String>, onEditingChanged: @escaping (Bool) -> Void,
        onCommit: @escaping () -> Void = {}
    ) {
        self.init(text: text, prompt: titleKey.string, secure: false)
    }
    public init<V>(_ titleKey: LocalizedStringKey, value: Binding<V>, formatter: Formatter) {
        let binding = Binding<String>(
            get: { formatter.string(for: value.wrappedValue) ?? "" },
            set: { text in
                guard let number = (formatter as? NumberFormatter)?.number(from: text) else { return }
                switch value.wrappedValue {
                case is Int: if let v = number.intValue as? V { value.wrappedValue = v }
                case is Double: if let v = number.doubleValue as? V { value.wrappedValue = v }
                default: break
                }
            })
        self.init(text: binding, prompt: titleKey.string, secure: false)
    }
    /// Edits a number or other value through a format style given as `.number` and the like.
    public init<F: ParseableFormatStyle>(_ titleKey: LocalizedStringKey, value: Binding<F.FormatInput?>, format: F, prompt: Text? = nil)
    where F.FormatOutput == String {
        let binding = Binding<String>(
            get: { value.wrappedValue.map { format.format($0) } ?? "" },
            set: { value.wrappedValue = $0.isEmpty ? nil : try? format.parseStrategy.parse($0) })
        self.init(text: binding, prompt: prompt?.plainText ?? titleKey.string, secure: false)
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
        let binding = Binding<String>(
            get: { format.format(value.wrappedValue) },
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
    var multiline: Bool { flags & Int32(ZENTORO_FIELD_MULTILINE) != 0 }
    init(identifier: Int64, text: String, prompt: String, font: ResolvedFont, flags: Int32, graph: ViewGraph) {
        self.identifier = identifier; self.text = text; self.prompt = prompt; self.font = font; self.flags = flags; self.graph = graph
    }
    override func measure(_ proposal: ProposedViewSize) -> CGSize {
        let width = proposal.width.map { $0.isFinite ? $0 : 200 } ?? 200
        guard multiline else { return CGSize(width: width, height: ceil(font.size * 1.3) + 10) }
        return CGSize(width: width, height: proposal.height.map { $0.isFinite ? max($0, 40) : 120 } ?? 120)
    }
    override func draw(_ renderer: HostBridge) {
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
    var textFieldStyle: TextFieldStyleKind {
        get { self[TextFieldStyleKey.self] }
        set { self[TextFieldStyleKey.self] = newValue }
    }
    var submitAction: (() -> Void)? {
        get { self[SubmitKey.self] }
        set { self[SubmitKey.self] = newValue }
    }
    var focusBinding: FocusBinding? {
        get { self[FocusKey.self] }
        set { self[FocusKey.self] = newValue }
    }
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
        modifier(
            EnvironmentModifier { $0.focusBinding = FocusBinding(get: { condition.wrappedValue }, set: { condition.wrappedValue = $0 }) })
    }
    public func focused<Value: Hashable>(_ binding: FocusState<Value?>.Binding, equals value: Value) -> some View {
        modifier(
            EnvironmentModifier {
                $0.focusBinding = FocusBinding(
                    get: { binding.wrappedValue == value },
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
    public static let route = SubmitLabel(), search = SubmitLabel(), `return` = SubmitLabel(), next = SubmitLabel(),
        `continue` = SubmitLabel()
}

/// Text of several lines, edited in a native editor that takes the space it is offered.
public struct TextEditor: View {
    let text: Binding<String>
    public init(text: Binding<String>) { self.text = text }
    public var body: some View { TextField<Text>(text: text, prompt: "", secure: false, multiline: true) }
}
