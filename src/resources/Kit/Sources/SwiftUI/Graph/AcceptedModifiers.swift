import Foundation

/// A key the user pressed, as `.onKeyPress` hands it over.
public struct KeyPress: Sendable {
    public let key: KeyEquivalent
    public let characters: String
    public let modifiers: EventModifiers
    public let phase: Phases
    public enum Result: Sendable { case handled, ignored }
    public struct Phases: OptionSet, Sendable {
        public let rawValue: Int
        public init(rawValue: Int) { self.rawValue = rawValue }
        public static let down = Phases(rawValue: 1), `repeat` = Phases(rawValue: 2), up = Phases(rawValue: 4)
        public static let all: Phases = [.down, .repeat, .up]
    }

    init(_ press: HostKey) {
        characters = press.characters
        modifiers = EventModifiers(rawValue: press.modifiers & 7)
        phase = .down
        key = press.code != 0 ? KeyEquivalent(code: press.code) : KeyEquivalent(press.characters.first ?? " ")
    }
}

extension KeyEquivalent {
    public var character: Character {
        switch code {
        case 1: return "\r"
        case 2: return "\u{1B}"
        case 3: return "\t"
        case 4: return "\u{7F}"
        case 10: return " "
        default: return storedCharacter
        }
    }
    public static let home = KeyEquivalent(code: 11), end = KeyEquivalent(code: 12)
    public static let pageUp = KeyEquivalent(code: 13), pageDown = KeyEquivalent(code: 14), clear = KeyEquivalent(code: 15)
}

/// Registers a key handler for this update: keys the app's buttons don't take go to it.
struct KeyHandlerModifier: ViewModifier, PrimitiveModifier {
    let handle: (KeyPress) -> KeyPress.Result
    func resolve(content: ContentResolver, context: ResolveContext) -> [Element] {
        let handle = self.handle
        context.graph.keyHandlers.append { press in handle(KeyPress(press)) == .handled }
        return content(context)
    }
}

extension View {
    public func onKeyPress(_ key: KeyEquivalent, action: @escaping () -> KeyPress.Result) -> some View {
        modifier(KeyHandlerModifier { $0.key == key ? action() : .ignored })
    }
    public func onKeyPress(_ key: KeyEquivalent, phases: KeyPress.Phases, action: @escaping (KeyPress) -> KeyPress.Result) -> some View {
        modifier(KeyHandlerModifier { $0.key == key ? action($0) : .ignored })
    }
    public func onKeyPress(
        keys: Set<KeyEquivalent>, phases: KeyPress.Phases = [.down, .repeat], action: @escaping (KeyPress) -> KeyPress.Result
    )
        -> some View
    {
        modifier(KeyHandlerModifier { keys.contains($0.key) ? action($0) : .ignored })
    }
    public func onKeyPress(
        characters: CharacterSet, phases: KeyPress.Phases = [.down, .repeat], action: @escaping (KeyPress) -> KeyPress.Result
    )
        -> some View
    {
        modifier(
            KeyHandlerModifier { press in
                guard let scalar = press.characters.unicodeScalars.first, characters.contains(scalar) else { return .ignored }
                return action(press)
            })
    }
    public func onKeyPress(phases: KeyPress.Phases = [.down, .repeat], action: @escaping (KeyPress) -> KeyPress.Result) -> some View {
        modifier(KeyHandlerModifier(handle: action))
    }
    public func onExitCommand(perform action: (() -> Void)?) -> some View {
        modifier(
            KeyHandlerModifier { press in
                guard press.key == .escape, let action else { return .ignored }
                action()
                return .handled
            })
    }
    public func onDeleteCommand(perform action: (() -> Void)?) -> some View {
        modifier(
            KeyHandlerModifier { press in
                guard press.key == .delete || press.key == .deleteForward, let action else { return .ignored }
                action()
                return .handled
            })
    }
    public func focusable(_ isFocusable: Bool = true) -> some View { self }
    public func focusable(_ isFocusable: Bool = true, interactions: FocusInteractions) -> some View { self }
    public func focusEffectDisabled(_ disabled: Bool = true) -> some View { self }
    public func focusSection() -> some View { self }
    public func defaultFocus<V: Hashable>(
        _ binding: FocusState<V>.Binding, _ value: V, priority: DefaultFocusEvaluationPriority = .automatic
    )
        -> some View
    { self }
    public func prefersDefaultFocus(_ prefersDefaultFocus: Bool = true, in namespace: Namespace.ID) -> some View { self }
    public func onCommand(_ selector: Any, perform action: (() -> Void)?) -> some View { self }
    public func onCopyCommand(perform payloadAction: (() -> [Any])?) -> some View { self }
}

public struct FocusInteractions: OptionSet, Sendable {
    public let rawValue: Int
    public init(rawValue: Int) { self.rawValue = rawValue }
    public static let activate = FocusInteractions(rawValue: 1), edit = FocusInteractions(rawValue: 2)
    public static let automatic: FocusInteractions = [.activate, .edit]
}
public struct DefaultFocusEvaluationPriority: Sendable {
    public static let automatic = DefaultFocusEvaluationPriority(), userInitiated = DefaultFocusEvaluationPriority()
}

/// A small count or word at the trailing end of a row.
struct BadgeModifier: ViewModifier {
    let text: Text?
    func body(content: Content) -> some View {
        if let text {
            HStack(spacing: 6) {
                content
                Spacer(minLength: 4)
                text.font(.caption.weight(.semibold)).monospacedDigit().foregroundStyle(.secondary)
                    .padding(.horizontal, 6).padding(.vertical, 1)
                    .background(Capsule().fill(Color.fill))
            }
        } else {
            content
        }
    }
}

public struct RedactionReasons: OptionSet, Sendable {
    public let rawValue: Int
    public init(rawValue: Int) { self.rawValue = rawValue }
    public static let placeholder = RedactionReasons(rawValue: 1), privacy = RedactionReasons(rawValue: 2)
    public static let invalidated = RedactionReasons(rawValue: 4)
}

public struct SensoryFeedback: Sendable {
    public static let success = SensoryFeedback(), warning = SensoryFeedback(), error = SensoryFeedback()
    public static let selection = SensoryFeedback(), increase = SensoryFeedback(), decrease = SensoryFeedback()
    public static let start = SensoryFeedback(), stop = SensoryFeedback(), alignment = SensoryFeedback()
    public static let levelChange = SensoryFeedback(), pathComplete = SensoryFeedback()
    public static func impact(weight: Weight = .medium, intensity: Double = 1) -> SensoryFeedback { SensoryFeedback() }
    public static func impact(flexibility: Flexibility, intensity: Double = 1) -> SensoryFeedback { SensoryFeedback() }
    public static let impact = SensoryFeedback()
    public struct Weight: Sendable {
        public static let light = Weight(), medium = Weight(), heavy = Weight()
    }
    public struct Flexibility: Sendable {
        public static let rigid = Flexibility(), solid = Flexibility(), soft = Flexibility()
    }
}

public struct ScrollIndicatorVisibility: Sendable {
    public static let automatic = ScrollIndicatorVisibility(), visible = ScrollIndicatorVisibility()
    public static let hidden = ScrollIndicatorVisibility(), never = ScrollIndicatorVisibility()
}

public struct ScrollBounceBehavior: Sendable {
    public static let automatic = ScrollBounceBehavior(), always = ScrollBounceBehavior(), basedOnSize = ScrollBounceBehavior()
}

public struct ScrollTargetBehaviorKind: Sendable {
    public static let paging = ScrollTargetBehaviorKind(), viewAligned = ScrollTargetBehaviorKind()
    public static func viewAligned(limitBehavior: Any) -> ScrollTargetBehaviorKind { ScrollTargetBehaviorKind() }
}

public struct BlendMode: Sendable {
    public static let normal = BlendMode(), multiply = BlendMode(), screen = BlendMode(), overlay = BlendMode()
    public static let darken = BlendMode(), lighten = BlendMode(), colorDodge = BlendMode(), colorBurn = BlendMode()
    public static let softLight = BlendMode(), hardLight = BlendMode(), difference = BlendMode(), exclusion = BlendMode()
    public static let hue = BlendMode(), saturation = BlendMode(), color = BlendMode(), luminosity = BlendMode()
    public static let sourceAtop = BlendMode(), destinationOver = BlendMode(), destinationOut = BlendMode()
    public static let plusDarker = BlendMode(), plusLighter = BlendMode()
}

public struct SymbolEffectKind: Sendable {
    public static let bounce = SymbolEffectKind(), pulse = SymbolEffectKind(), variableColor = SymbolEffectKind()
    public static let scale = SymbolEffectKind(), appear = SymbolEffectKind(), disappear = SymbolEffectKind()
    public static let replace = SymbolEffectKind(), wiggle = SymbolEffectKind(), breathe = SymbolEffectKind(), rotate = SymbolEffectKind()
    public var up: SymbolEffectKind { self }
    public var down: SymbolEffectKind { self }
    public var byLayer: SymbolEffectKind { self }
    public var wholeSymbol: SymbolEffectKind { self }
    public var iterative: SymbolEffectKind { self }
    public var cumulative: SymbolEffectKind { self }
    public var reversing: SymbolEffectKind { self }
    public var downUp: SymbolEffectKind { self }
}
public struct SymbolEffectOptions: Sendable {
    public static let `default` = SymbolEffectOptions(), repeating = SymbolEffectOptions(), nonRepeating = SymbolEffectOptions()
    public static func `repeat`(_ count: Int) -> SymbolEffectOptions { SymbolEffectOptions() }
    public static func speed(_ speed: Double) -> SymbolEffectOptions { SymbolEffectOptions() }
    public func `repeat`(_ count: Int) -> SymbolEffectOptions { self }
    public func speed(_ speed: Double) -> SymbolEffectOptions { self }
}

public enum ScrollTransitionPhase: Sendable {
    case topLeading, identity, bottomTrailing
    public var isIdentity: Bool { self == .identity }
    public var value: Double { self == .identity ? 0 : (self == .topLeading ? -1 : 1) }
}
public struct ScrollTransitionConfiguration: Sendable {
    public static let interactive = ScrollTransitionConfiguration(), animated = ScrollTransitionConfiguration()
    public static func animated(_ animation: Animation) -> ScrollTransitionConfiguration { ScrollTransitionConfiguration() }
    public func threshold(_ threshold: Any) -> ScrollTransitionConfiguration { self }
}

/// The proxy `.visualEffect` hands its closure: the effect is applied as if nothing had moved.
public struct GeometryProxyStandIn {}

extension View {
    public func badge(_ count: Int) -> some View { modifier(BadgeModifier(text: count == 0 ? nil : Text("\(count)"))) }
    public func badge(_ label: Text?) -> some View { modifier(BadgeModifier(text: label)) }
    public func badge(_ key: LocalizedStringKey?) -> some View { modifier(BadgeModifier(text: key.map { Text($0) })) }
    @_disfavoredOverload
    public func badge<S: StringProtocol>(_ label: S?) -> some View { modifier(BadgeModifier(text: label.map { Text($0) })) }
    public func badgeProminence(_ prominence: BadgeProminence) -> some View { self }

    public func safeAreaInset<V: View>(
        edge: VerticalEdge, alignment: HorizontalAlignment = .center, spacing: CGFloat? = nil, @ViewBuilder content: () -> V
    ) -> some View {
        let inset = content()
        return VStack(spacing: spacing ?? 0) {
            if edge == .top { inset }
            self.frame(maxHeight: .infinity)
            if edge == .bottom { inset }
        }
    }
    public func safeAreaInset<V: View>(
        edge: HorizontalEdge, alignment: VerticalAlignment = .center, spacing: CGFloat? = nil, @ViewBuilder content: () -> V
    ) -> some View {
        let inset = content()
        return HStack(spacing: spacing ?? 0) {
            if edge == .leading { inset }
            self.frame(maxWidth: .infinity)
            if edge == .trailing { inset }
        }
    }
    public func safeAreaPadding(_ edges: Edge.Set = .all, _ length: CGFloat? = nil) -> some View { padding(edges, length) }
    public func safeAreaPadding(_ length: CGFloat) -> some View { padding(length) }
    public func contentMargins(_ edges: Edge.Set = .all, _ length: CGFloat?, for placement: ContentMarginPlacement = .automatic)
        -> some View
    {
        self
    }
    public func contentMargins(_ length: CGFloat, for placement: ContentMarginPlacement = .automatic) -> some View { self }
    public func containerRelativeFrame(_ axes: Axis.Set, alignment: Alignment = .center) -> some View {
        frame(
            maxWidth: axes.contains(.horizontal) ? .infinity : nil, maxHeight: axes.contains(.vertical) ? .infinity : nil,
            alignment: alignment)
    }
    public func containerRelativeFrame(
        _ axes: Axis.Set, count: Int, span: Int = 1, spacing: CGFloat, alignment: Alignment = .center
    ) -> some View {
        containerRelativeFrame(axes, alignment: alignment)
    }

    public func redacted(reason: RedactionReasons) -> some View { self }
    public func unredacted() -> some View { self }
    public func privacySensitive(_ sensitive: Bool = true) -> some View { self }
    public func rotation3DEffect(
        _ angle: Angle, axis: (x: CGFloat, y: CGFloat, z: CGFloat), anchor: UnitPoint = .center, anchorZ: CGFloat = 0,
        perspective: CGFloat = 1
    ) -> some View {
        // Only a turn about the axis out of the screen shows on a flat window.
        rotationEffect(axis.x == 0 && axis.y == 0 ? angle : .zero, anchor: anchor)
    }
    public func projectionEffect(_ transform: Any) -> some View { self }
    public func transformEffect(_ transform: CGAffineTransform) -> some View { self }
    public func symbolEffect(_ effect: SymbolEffectKind, options: SymbolEffectOptions = .default, isActive: Bool = true) -> some View {
        self
    }
    public func symbolEffect<U: Equatable>(_ effect: SymbolEffectKind, options: SymbolEffectOptions = .default, value: U) -> some View {
        self
    }
    public func symbolEffectsRemoved(_ isEnabled: Bool = true) -> some View { self }
    public func sensoryFeedback<T: Equatable>(_ feedback: SensoryFeedback, trigger: T) -> some View { self }
    public func sensoryFeedback<T: Equatable>(_ feedback: SensoryFeedback, trigger: T, condition: @escaping (T, T) -> Bool) -> some View {
        self
    }
    public func sensoryFeedback<T: Equatable>(trigger: T, _ feedback: @escaping (T, T) -> SensoryFeedback?) -> some View { self }
    public func colorMultiply(_ color: Color) -> some View { self }
    public func colorInvert() -> some View { self }
    public func hueRotation(_ angle: Angle) -> some View { self }
    public func contrast(_ amount: Double) -> some View { self }
    public func blendMode(_ blendMode: BlendMode) -> some View { self }
    public func luminanceToAlpha() -> some View { self }
    public func allowsTightening(_ flag: Bool) -> some View { self }
    public func flipsForRightToLeftLayoutDirection(_ enabled: Bool) -> some View { self }
    public func fontWidth(_ width: Font.Width?) -> some View { self }
    public func headerProminence(_ prominence: Prominence) -> some View { self }
    public func listSectionSeparator(_ visibility: Visibility, edges: Edge.Set = .all) -> some View { self }
    public func listItemTint(_ tint: Color?) -> some View { self }
    public func alignmentGuide(_ g: HorizontalAlignment, computeValue: @escaping (ViewDimensions) -> CGFloat) -> some View { self }
    public func alignmentGuide(_ g: VerticalAlignment, computeValue: @escaping (ViewDimensions) -> CGFloat) -> some View { self }
    public func coordinateSpace(name: AnyHashable) -> some View { self }
    public func coordinateSpace(_ name: NamedCoordinateSpace) -> some View { self }

    public func scrollDisabled(_ disabled: Bool) -> some View { self }
    public func scrollIndicators(_ visibility: ScrollIndicatorVisibility, axes: Axis.Set = [.vertical, .horizontal]) -> some View { self }
    public func scrollBounceBehavior(_ behavior: ScrollBounceBehavior, axes: Axis.Set = [.vertical]) -> some View { self }
    public func scrollTargetBehavior(_ behavior: ScrollTargetBehaviorKind) -> some View { self }
    public func scrollTargetLayout(isEnabled: Bool = true) -> some View { self }
    public func scrollPosition<ID: Hashable>(id: Binding<ID?>, anchor: UnitPoint? = nil) -> some View { self }
    public func defaultScrollAnchor(_ anchor: UnitPoint?) -> some View { self }
    public func scrollClipDisabled(_ disabled: Bool = true) -> some View { self }
    public func scrollDismissesKeyboard(_ mode: ScrollDismissesKeyboardMode) -> some View { self }
    public func scrollTransition(
        _ configuration: ScrollTransitionConfiguration = .interactive, axis: Axis? = nil,
        transition: @escaping (EmptyVisualEffect, ScrollTransitionPhase) -> EmptyVisualEffect
    ) -> some View { self }
    public func visualEffect(_ effect: @escaping (EmptyVisualEffect, GeometryProxy) -> EmptyVisualEffect) -> some View { self }
    public func refreshable(action: @escaping @Sendable () async -> Void) -> some View { self }
    public func onContinuousHover(coordinateSpace: CoordinateSpace = .local, perform action: @escaping (HoverPhase) -> Void) -> some View {
        onHover { inside in action(inside ? .active(.zero) : .ended) }
    }
    public func hoverEffect(_ effect: HoverEffect = .automatic, isEnabled: Bool = true) -> some View { self }
    public func onOpenURL(perform action: @escaping (URL) -> Void) -> some View { self }
    public func draggable<T>(_ payload: @autoclosure @escaping () -> T) -> some View { self }
    public func draggable<T, V: View>(_ payload: @autoclosure @escaping () -> T, @ViewBuilder preview: () -> V) -> some View { self }
    public func dropDestination<T>(
        for payloadType: T.Type = T.self, action: @escaping ([T], CGPoint) -> Bool, isTargeted: @escaping (Bool) -> Void = { _ in }
    ) -> some View { self }
    public func copyable<T>(_ items: @autoclosure @escaping () -> [T]) -> some View { self }
    public func presentationBackground<S: ShapeStyle>(_ style: S) -> some View { self }
    public func presentationCornerRadius(_ cornerRadius: CGFloat?) -> some View { self }
    public func presentationSizing(_ sizing: PresentationSizing) -> some View { self }
    public func presentationCompactAdaptation(_ adaptation: PresentationAdaptation) -> some View { self }
    public func menuStyle(_ style: MenuStyleKind) -> some View { self }
    public func menuIndicator(_ visibility: Visibility) -> some View { self }
    public func menuOrder(_ order: MenuOrder) -> some View { self }
    public func groupBoxStyle(_ style: GroupBoxStyleKind) -> some View { self }
    public func controlGroupStyle(_ style: ControlGroupStyleKind) -> some View { self }
    public func buttonRepeatBehavior(_ behavior: ButtonRepeatBehavior) -> some View { self }
    public func textContentType(_ type: TextContentType?) -> some View { self }
    public func textInputAutocapitalization(_ autocapitalization: TextInputAutocapitalization?) -> some View { self }
    public func keyboardType(_ type: UIKeyboardType) -> some View { self }
    public func accessibilityElement(children: AccessibilityChildBehavior = .ignore) -> some View { self }
    public func accessibilityAddTraits(_ traits: AccessibilityTraits) -> some View { self }
    public func accessibilityRemoveTraits(_ traits: AccessibilityTraits) -> some View { self }
    public func accessibilityValue<S: StringProtocol>(_ value: S) -> some View { self }
    public func accessibilityValue(_ value: Text) -> some View { self }
    public func accessibilityAction(named name: LocalizedStringKey, _ handler: @escaping () -> Void) -> some View { self }
    public func accessibilityAction(_ kind: AccessibilityActionKind = .default, _ handler: @escaping () -> Void) -> some View { self }
    public func accessibilitySortPriority(_ priority: Double) -> some View { self }
    public func accessibilityShowsLargeContentViewer() -> some View { self }
    public func navigationBarHidden(_ hidden: Bool) -> some View { self }
    public func statusBarHidden(_ hidden: Bool = true) -> some View { self }
    public func persistentSystemOverlays(_ visibility: Visibility) -> some View { self }
    public func toolbarTitleMenu<C: View>(@ViewBuilder content: () -> C) -> some View { self }
    public func onGeometryChange<T: Equatable>(
        for type: T.Type, of transform: @escaping (GeometryProxy) -> T, action: @escaping (T) -> Void
    ) -> some View { self }
    public func phaseAnimator<Phase: Equatable, V: View>(
        _ phases: some Sequence<Phase>, trigger: some Equatable = true,
        @ViewBuilder content: @escaping (PlaceholderContentView<Self>, Phase) -> V,
        animation: @escaping (Phase) -> Animation? = { _ in .default }
    ) -> some View {
        // Shown in the last phase, where an animation through the phases ends.
        let last = Array(phases).last
        return Group { if let last { content(PlaceholderContentView(content: self), last) } else { self } }
    }
    public func keyframeAnimator<Value, V: View>(
        initialValue: Value, repeating: Bool = true, @ViewBuilder content: @escaping (PlaceholderContentView<Self>, Value) -> V,
        keyframes: @escaping (Value) -> Any
    ) -> some View {
        content(PlaceholderContentView(content: self), initialValue)
    }
    public func keyframeAnimator<Value, V: View>(
        initialValue: Value, trigger: some Equatable, @ViewBuilder content: @escaping (PlaceholderContentView<Self>, Value) -> V,
        keyframes: @escaping (Value) -> Any
    ) -> some View {
        content(PlaceholderContentView(content: self), initialValue)
    }
    public func fileImporter(
        isPresented: Binding<Bool>, allowedContentTypes: [UTType], onCompletion: @escaping (Result<URL, Error>) -> Void
    ) -> some View { self }
    public func fileImporter(
        isPresented: Binding<Bool>, allowedContentTypes: [UTType], allowsMultipleSelection: Bool,
        onCompletion: @escaping (Result<[URL], Error>) -> Void
    ) -> some View { self }
}

/// The view an animator's content closure modifies.
public struct PlaceholderContentView<Content: View>: View {
    let content: Content
    public var body: some View { content }
}

/// The effects `.visualEffect` and `.scrollTransition` apply, which a flat window leaves as they are.
public struct EmptyVisualEffect: Sendable {
    public init() {}
    public func opacity(_ opacity: Double) -> EmptyVisualEffect { self }
    public func scaleEffect(_ scale: CGFloat, anchor: UnitPoint = .center) -> EmptyVisualEffect { self }
    public func scaleEffect(x: CGFloat = 1, y: CGFloat = 1, anchor: UnitPoint = .center) -> EmptyVisualEffect { self }
    public func offset(x: CGFloat = 0, y: CGFloat = 0) -> EmptyVisualEffect { self }
    public func offset(_ offset: CGSize) -> EmptyVisualEffect { self }
    public func rotationEffect(_ angle: Angle, anchor: UnitPoint = .center) -> EmptyVisualEffect { self }
    public func blur(radius: CGFloat, opaque: Bool = false) -> EmptyVisualEffect { self }
    public func brightness(_ amount: Double) -> EmptyVisualEffect { self }
    public func saturation(_ amount: Double) -> EmptyVisualEffect { self }
    public func grayscale(_ amount: Double) -> EmptyVisualEffect { self }
    public func hueRotation(_ angle: Angle) -> EmptyVisualEffect { self }
    public func rotation3DEffect(_ angle: Angle, axis: (x: CGFloat, y: CGFloat, z: CGFloat)) -> EmptyVisualEffect { self }
}

public enum HoverPhase: Equatable, Sendable {
    case active(CGPoint)
    case ended
}
public struct HoverEffect: Sendable {
    public static let automatic = HoverEffect(), highlight = HoverEffect(), lift = HoverEffect()
}
public struct BadgeProminence: Sendable {
    public static let standard = BadgeProminence(), increased = BadgeProminence(), decreased = BadgeProminence()
}
public enum Prominence: Sendable { case standard, increased }
public struct ContentMarginPlacement: Sendable {
    public static let automatic = ContentMarginPlacement(), scrollContent = ContentMarginPlacement()
    public static let scrollIndicators = ContentMarginPlacement()
}
public struct NamedCoordinateSpace: Sendable {
    public static func named(_ name: some Hashable) -> NamedCoordinateSpace { NamedCoordinateSpace() }
}
public struct ScrollDismissesKeyboardMode: Sendable {
    public static let automatic = ScrollDismissesKeyboardMode(), immediately = ScrollDismissesKeyboardMode()
    public static let interactively = ScrollDismissesKeyboardMode(), never = ScrollDismissesKeyboardMode()
}
public struct PresentationSizing: Sendable {
    public static let automatic = PresentationSizing(), form = PresentationSizing(), page = PresentationSizing()
    public static let fitted = PresentationSizing()
}
public struct PresentationAdaptation: Sendable {
    public static let automatic = PresentationAdaptation(), none = PresentationAdaptation(), popover = PresentationAdaptation()
    public static let sheet = PresentationAdaptation(), fullScreenCover = PresentationAdaptation()
}
public struct MenuStyleKind: Sendable {
    public static let automatic = MenuStyleKind(), button = MenuStyleKind(), borderlessButton = MenuStyleKind()
}
public struct MenuOrder: Sendable {
    public static let automatic = MenuOrder(), fixed = MenuOrder(), priority = MenuOrder()
}
public struct GroupBoxStyleKind: Sendable {
    public static let automatic = GroupBoxStyleKind()
}
public struct ControlGroupStyleKind: Sendable {
    public static let automatic = ControlGroupStyleKind(), navigation = ControlGroupStyleKind(), palette = ControlGroupStyleKind()
}
public struct ButtonRepeatBehavior: Sendable {
    public static let automatic = ButtonRepeatBehavior(), enabled = ButtonRepeatBehavior(), disabled = ButtonRepeatBehavior()
}
public struct TextContentType: Sendable {
    public static let username = TextContentType(), password = TextContentType(), newPassword = TextContentType()
    public static let emailAddress = TextContentType(), name = TextContentType(), URL = TextContentType()
    public static let telephoneNumber = TextContentType(), oneTimeCode = TextContentType(), fullStreetAddress = TextContentType()
}
public struct TextInputAutocapitalization: Sendable {
    public static let never = TextInputAutocapitalization(), words = TextInputAutocapitalization()
    public static let sentences = TextInputAutocapitalization(), characters = TextInputAutocapitalization()
}
public enum UIKeyboardType: Sendable {
    case `default`, numberPad, decimalPad, emailAddress, URL, phonePad, asciiCapable, numbersAndPunctuation
}
public struct AccessibilityChildBehavior: Sendable {
    public static let ignore = AccessibilityChildBehavior(), combine = AccessibilityChildBehavior(), contain = AccessibilityChildBehavior()
}
public struct AccessibilityTraits: OptionSet, Sendable {
    public let rawValue: Int
    public init(rawValue: Int) { self.rawValue = rawValue }
    public static let isButton = AccessibilityTraits(rawValue: 1), isHeader = AccessibilityTraits(rawValue: 2)
    public static let isSelected = AccessibilityTraits(rawValue: 4), isImage = AccessibilityTraits(rawValue: 8)
    public static let isStaticText = AccessibilityTraits(rawValue: 16), isLink = AccessibilityTraits(rawValue: 32)
}
public struct AccessibilityActionKind: Sendable {
    public static let `default` = AccessibilityActionKind(), escape = AccessibilityActionKind(), magicTap = AccessibilityActionKind()
}
/// A type of file content, by its extension; the kit's panels for files don't open on Linux.
public struct UTType: Hashable, Sendable {
    public let identifier: String
    public init?(filenameExtension: String) { identifier = filenameExtension }
    public init(_ identifier: String) { self.identifier = identifier }
    public static let plainText = UTType("public.plain-text"), text = UTType("public.text"), json = UTType("public.json")
    public static let image = UTType("public.image"), png = UTType("public.png"), jpeg = UTType("public.jpeg")
    public static let pdf = UTType("com.adobe.pdf"), data = UTType("public.data"), item = UTType("public.item")
    public static let commaSeparatedText = UTType("public.comma-separated-values-text"), url = UTType("public.url")
    public static let fileURL = UTType("public.file-url"), content = UTType("public.content"), folder = UTType("public.folder")
    public static let audio = UTType("public.audio"), movie = UTType("public.movie"), utf8PlainText = UTType("public.utf8-plain-text")
}
extension Color {
    /// A colour's components in the palette of `environment`.
    public struct Resolved: Hashable, Sendable {
        public var red: Float, green: Float, blue: Float, opacity: Float
        public init(red: Float, green: Float, blue: Float, opacity: Float = 1) {
            self.red = red; self.green = green; self.blue = blue; self.opacity = opacity
        }
    }
    public func resolve(in environment: EnvironmentValues) -> Resolved {
        let c = rgba(in: environment)
        return Resolved(red: Float(c.red), green: Float(c.green), blue: Float(c.blue), opacity: Float(c.alpha))
    }
    public init(_ resolved: Resolved) {
        self.init(
            .sRGB, red: Double(resolved.red), green: Double(resolved.green), blue: Double(resolved.blue), opacity: Double(resolved.opacity))
    }
}

/// A view's size as `.alignmentGuide` sees it.
public struct ViewDimensions {
    public let width: CGFloat
    public let height: CGFloat
    public subscript(guide: HorizontalAlignment) -> CGFloat { 0 }
    public subscript(guide: VerticalAlignment) -> CGFloat { 0 }
}
