import Foundation

public struct ButtonRole: Equatable, Sendable {
    let kind: Int
    public static let destructive = ButtonRole(kind: 0)
    public static let cancel = ButtonRole(kind: 1)
}

public struct Button<Label: View>: View, PrimitiveView {
    public typealias Body = Never
    let action: () -> Void
    let label: Label
    let role: ButtonRole?

    public init(action: @escaping () -> Void, @ViewBuilder label: () -> Label) {
        self.action = action; self.label = label(); role = nil
    }
    public init(role: ButtonRole?, action: @escaping () -> Void, @ViewBuilder label: () -> Label) {
        self.action = action; self.label = label(); self.role = role
    }

    func resolve(_ context: ResolveContext) -> [Element] {
        let graph = context.graph
        let enabled = context.environment.isEnabled
        let configuration = ButtonStyleConfiguration(
            label: ButtonStyleConfiguration.Label(AnyView(label)), isPressed: graph.interaction.pressedPath == context.path,
            role: role, isEnabled: enabled)
        let style = context.environment.buttonStyle ?? AnyButtonStyle(BorderedButtonStyle())
        var inner = context.child(.index(0))
        inner.environment.alertDismiss = nil
        if role == .destructive, context.environment.foregroundStyle == nil {
            inner.environment.foregroundStyle = AnyShapeStyle(Color.red)
        }
        let chrome = single(style.makeBody(configuration).resolve(inner), context: inner)
        let ownAction = self.action
        let closeAlert = context.environment.alertDismiss
        let action = {
            ownAction(); closeAlert?()
        }
        return [
            ButtonElement(
                chrome, path: context.path, graph: graph, enabled: enabled,
                shortcut: context.environment.keyboardShortcut, action: action)
        ]
    }
}

extension Button where Label == Text {
    public init(_ titleKey: LocalizedStringKey, action: @escaping () -> Void) {
        self.init(action: action) { Text(titleKey) }
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, action: @escaping () -> Void) {
        self.init(action: action) { Text(title) }
    }
    public init(_ titleKey: LocalizedStringKey, role: ButtonRole?, action: @escaping () -> Void) {
        self.init(role: role, action: action) { Text(titleKey) }
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, role: ButtonRole?, action: @escaping () -> Void) {
        self.init(role: role, action: action) { Text(title) }
    }
}

extension Button where Label == SwiftUI.Label<Text, Image> {
    public init(_ titleKey: LocalizedStringKey, systemImage: String, action: @escaping () -> Void) {
        self.init(action: action) { SwiftUI.Label(titleKey, systemImage: systemImage) }
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, systemImage: String, action: @escaping () -> Void) {
        self.init(action: action) { SwiftUI.Label(title, systemImage: systemImage) }
    }
    public init(_ titleKey: LocalizedStringKey, systemImage: String, role: ButtonRole?, action: @escaping () -> Void) {
        self.init(role: role, action: action) { SwiftUI.Label(titleKey, systemImage: systemImage) }
    }
}

final class ButtonElement: InteractiveElement {
    let enabled: Bool
    let shortcut: KeyboardShortcut?
    let action: () -> Void
    init(_ child: Element, path: ViewPath, graph: ViewGraph, enabled: Bool, shortcut: KeyboardShortcut?, action: @escaping () -> Void) {
        self.enabled = enabled; self.shortcut = shortcut; self.action = action
        super.init(child, path: path, graph: graph)
    }
    override var catchesWholeFrame: Bool { true }
    override var bleed: CGFloat? { 0 }
    override func press(at point: CGPoint) -> Bool { enabled }
    override func tap(at point: CGPoint, count: Int) -> Bool {
        guard enabled else { return true }
        if frame.contains(point) { action() }
        return true
    }
    func matches(_ press: HostKey) -> Bool {
        guard enabled, let shortcut else { return false }
        return shortcut.matches(press)
    }
}

public struct ButtonStyleConfiguration {
    public struct Label: View, PrimitiveView {
        public typealias Body = Never
        let content: AnyView
        init(_ content: AnyView) { self.content = content }
        func resolve(_ context: ResolveContext) -> [Element] { content.resolve(context) }
    }
    public let label: Label
    public let isPressed: Bool
    public let role: ButtonRole?
    let isEnabled: Bool
}

/// How a button looks: `.buttonStyle(.borderedProminent)` or a style of the app's own.
@MainActor @preconcurrency
public protocol ButtonStyle {
    associatedtype Body: View
    typealias Configuration = ButtonStyleConfiguration
    @ViewBuilder func makeBody(configuration: Configuration) -> Body
}

public typealias PrimitiveButtonStyle = ButtonStyle

struct AnyButtonStyle {
    let make: @MainActor (ButtonStyleConfiguration) -> AnyView
    init<S: ButtonStyle>(_ style: S) { make = { AnyView(style.makeBody(configuration: $0)) } }
    @MainActor func makeBody(_ configuration: ButtonStyleConfiguration) -> AnyView { make(configuration) }
}

private enum ButtonStyleKey: EnvironmentKey { static let defaultValue: AnyButtonStyle? = nil }
extension EnvironmentValues {
    var buttonStyle: AnyButtonStyle? {
        get { self[ButtonStyleKey.self] }
        set { self[ButtonStyleKey.self] = newValue }
    }
}

extension View {
    public func buttonStyle<S: ButtonStyle>(_ style: S) -> some View {
        modifier(EnvironmentModifier { $0.buttonStyle = AnyButtonStyle(style) })
    }
    public func buttonBorderShape(_ shape: ButtonBorderShape) -> some View { self }
}

public struct ButtonBorderShape: Sendable {
    public static let automatic = ButtonBorderShape(), capsule = ButtonBorderShape(), roundedRectangle = ButtonBorderShape(),
        circle = ButtonBorderShape()
    public static func roundedRectangle(radius: CGFloat) -> ButtonBorderShape { ButtonBorderShape() }
}

/// The push button: a light rounded surface with a thin border.
public struct BorderedButtonStyle: ButtonStyle {
    public init() {}
    public func makeBody(configuration: Configuration) -> some View {
        ButtonChrome(configuration: configuration, prominent: false)
    }
}

public struct BorderedProminentButtonStyle: ButtonStyle {
    public init() {}
    public func makeBody(configuration: Configuration) -> some View {
        ButtonChrome(configuration: configuration, prominent: true)
    }
}

/// The label alone in the accent colour.
public struct BorderlessButtonStyle: ButtonStyle {
    public init() {}
    public func makeBody(configuration: Configuration) -> some View {
        configuration.label
            .foregroundStyle(.tint)
            .opacity(configuration.isPressed ? 0.55 : (configuration.isEnabled ? 1 : 0.4))
    }
}

/// The label as it is.
public struct PlainButtonStyle: ButtonStyle {
    public init() {}
    public func makeBody(configuration: Configuration) -> some View {
        configuration.label.opacity(configuration.isPressed ? 0.6 : 1)
    }
}

public typealias DefaultButtonStyle = BorderedButtonStyle
public typealias LinkButtonStyle = BorderlessButtonStyle

extension ButtonStyle where Self == BorderedButtonStyle {
    public static var bordered: BorderedButtonStyle { BorderedButtonStyle() }
    public static var automatic: BorderedButtonStyle { BorderedButtonStyle() }
}
extension ButtonStyle where Self == BorderedProminentButtonStyle {
    public static var borderedProminent: BorderedProminentButtonStyle { BorderedProminentButtonStyle() }
}
extension ButtonStyle where Self == BorderlessButtonStyle {
    public static var borderless: BorderlessButtonStyle { BorderlessButtonStyle() }
    public static var link: BorderlessButtonStyle { BorderlessButtonStyle() }
}
extension ButtonStyle where Self == PlainButtonStyle {
    public static var plain: PlainButtonStyle { PlainButtonStyle() }
}

struct ButtonChrome: View {
    let configuration: ButtonStyleConfiguration
    let prominent: Bool
    @Environment(\.controlSize) var controlSize
    @Environment(\.tint) var tint

    var body: some View {
        let large = controlSize == .large || controlSize == .extraLarge
        let destructive = configuration.role == .destructive
        let fill: AnyShapeStyle =
            prominent
            ? (destructive ? AnyShapeStyle(Color.red) : (tint ?? AnyShapeStyle(Color.accentColor)))
            : AnyShapeStyle(Color.controlBackground)
        return configuration.label
            .foregroundStyle(
                prominent
                    ? AnyShapeStyle(Color.white) : (destructive ? AnyShapeStyle(Color.red) : AnyShapeStyle(HierarchicalShapeStyle.primary))
            )
            .padding(.horizontal, large ? 14 : 10)
            .padding(.vertical, large ? 7 : 3)
            .frame(minHeight: large ? 30 : 22)
            .background(RoundedRectangle(cornerRadius: 6).fill(fill))
            .overlay(RoundedRectangle(cornerRadius: 6).strokeBorder(prominent ? Color.clear : Color.controlBorder, lineWidth: 1))
            .overlay(RoundedRectangle(cornerRadius: 6).fill(Color.black.opacity(configuration.isPressed ? 0.12 : 0)))
            .opacity(configuration.isEnabled ? 1 : 0.45)
    }
}

public struct KeyEquivalent: Hashable, ExpressibleByExtendedGraphemeClusterLiteral, Sendable {
    let storedCharacter: Character
    let code: Int32
    public init(_ character: Character) { storedCharacter = character; code = 0 }
    init(code: Int32) { storedCharacter = " "; self.code = code }
    public init(extendedGraphemeClusterLiteral value: Character) { self.init(value) }
    public static let `return` = KeyEquivalent(code: 1)
    public static let escape = KeyEquivalent(code: 2)
    public static let tab = KeyEquivalent(code: 3)
    public static let delete = KeyEquivalent(code: 4)
    public static let deleteForward = KeyEquivalent(code: 5)
    public static let leftArrow = KeyEquivalent(code: 6)
    public static let rightArrow = KeyEquivalent(code: 7)
    public static let upArrow = KeyEquivalent(code: 8)
    public static let downArrow = KeyEquivalent(code: 9)
    public static let space = KeyEquivalent(code: 10)
}

public struct EventModifiers: OptionSet, Sendable {
    public let rawValue: Int32
    public init(rawValue: Int32) { self.rawValue = rawValue }
    public static let shift = EventModifiers(rawValue: 1)
    public static let control = EventModifiers(rawValue: 2)
    public static let option = EventModifiers(rawValue: 4)
    /// The command key is Control on Linux.
    public static let command = EventModifiers(rawValue: 2)
    public static let all: EventModifiers = [.shift, .control, .option]
}

public struct KeyboardShortcut: Equatable, Sendable {
    public let key: KeyEquivalent
    public let modifiers: EventModifiers
    public init(_ key: KeyEquivalent, modifiers: EventModifiers = .command) { self.key = key; self.modifiers = modifiers }
    public static let defaultAction = KeyboardShortcut(.return, modifiers: [])
    public static let cancelAction = KeyboardShortcut(.escape, modifiers: [])
    func matches(_ press: HostKey) -> Bool {
        let pressed = EventModifiers(rawValue: press.modifiers & 7)
        if key.code != 0 { return press.code == key.code && pressed == modifiers }
        return press.characters.lowercased() == String(key.storedCharacter).lowercased() && pressed == modifiers
    }
}

private enum ShortcutKey: EnvironmentKey { static let defaultValue: KeyboardShortcut? = nil }
extension EnvironmentValues {
    var keyboardShortcut: KeyboardShortcut? {
        get { self[ShortcutKey.self] }
        set { self[ShortcutKey.self] = newValue }
    }
}

extension View {
    public func keyboardShortcut(_ key: KeyEquivalent, modifiers: EventModifiers = .command) -> some View {
        modifier(EnvironmentModifier { $0.keyboardShortcut = KeyboardShortcut(key, modifiers: modifiers) })
    }
    public func keyboardShortcut(_ shortcut: KeyboardShortcut) -> some View {
        modifier(EnvironmentModifier { $0.keyboardShortcut = shortcut })
    }
}
