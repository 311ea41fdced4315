import Foundation

/// A modal panel over the window: a sheet, an alert or a dialog. The window behind is dimmed
/// and takes no clicks while it shows.
final class ModalElement: Element {
    let panel: Element
    let dim: RGBA
    /// How far the panel has come in: it rises from below the window as the dimming fades in.
    var appearance = 1.0
    init(panel: Element, dim: RGBA) { self.panel = panel; self.dim = dim }
    override var children: [Element] { [panel] }
    override func place(in rect: CGRect) {
        frame = rect
        let limit = ProposedViewSize(width: max(0, rect.width - 40), height: max(0, rect.height - 40))
        var s = panel.size(limit)
        s.width = min(s.width, limit.width ?? s.width); s.height = min(s.height, limit.height ?? s.height)
        let place = Alignment.center.place(s, in: rect)
        placedLift = (rect.maxY - place.minY) * CGFloat(1 - min(1, appearance))
        panel.place(in: place.offsetBy(dx: 0, dy: placedLift))
    }
    override func draw(_ renderer: HostBridge) {
        renderer.fill(Path(frame), .solid(dim.withAlpha(max(0, min(1, appearance)))))
        // A panel on its way out is drawn lower than it was last placed.
        let rest = panel.frame.minY - placedLift
        let shift = (frame.maxY - rest) * CGFloat(1 - min(1, appearance)) - placedLift
        guard shift != 0 else { return panel.draw(renderer) }
        renderer.save()
        renderer.concat(CGAffineTransform(translationX: 0, y: shift))
        panel.draw(renderer)
        renderer.restore()
    }
    private var placedLift: CGFloat = 0
    override func hits(_ point: CGPoint) -> [InteractiveElement]? { panel.hits(point) ?? [] }
}

struct PresentationModifier: ViewModifier, PrimitiveModifier {
    let isPresented: Binding<Bool>
    let panel: AnyView
    let onDismiss: (() -> Void)?
    func resolve(content: ContentResolver, context: ResolveContext) -> [Element] {
        let elements = content(context)
        guard isPresented.wrappedValue else { return elements }
        var inner = context.child(.id("presented"))
        inner.stackAxis = nil
        let binding = isPresented, onDismiss = onDismiss
        inner.environment.dismiss = DismissAction {
            binding.wrappedValue = false; onDismiss?()
        }
        inner.environment.isPresented = true
        let panel = single(panel.resolve(inner), context: inner)
        let modal = ModalElement(panel: panel, dim: RGBA(red: 0, green: 0, blue: 0, alpha: 0.3))
        context.graph.overlays.append(inner.transitioning(modal, .presentation, at: inner.path))
        return elements
    }
}

private struct SheetPanel<Content: View>: View {
    let content: Content
    var body: some View {
        content
            .frame(minWidth: 320, minHeight: 160)
            .background(
                RoundedRectangle(cornerRadius: 10).fill(Color.windowBackground).shadow(color: .black.opacity(0.3), radius: 12, y: 4))
    }
}

private struct AlertPanel<Actions: View, Message: View>: View {
    let title: Text
    let actions: Actions
    let message: Message
    let hasActions: Bool
    @Environment(\.dismiss) private var dismiss
    var body: some View {
        VStack(spacing: 12) {
            title.font(.headline).multilineTextAlignment(.center)
            message.font(.callout).multilineTextAlignment(.center)
            HStack(spacing: 8) {
                if hasActions {
                    actions
                } else {
                    Button("OK") { dismiss() }.buttonStyle(.borderedProminent)
                }
            }
            .modifier(EnvironmentModifier { [dismiss] env in env.alertDismiss = dismiss })
        }
        .padding(20)
        .frame(minWidth: 260, maxWidth: 320)
        .background(RoundedRectangle(cornerRadius: 10).fill(Color.windowBackground).shadow(color: .black.opacity(0.3), radius: 12, y: 4))
    }
}

private enum PresentedKey: EnvironmentKey { static let defaultValue = false }
private enum AlertDismissKey: EnvironmentKey { static let defaultValue: DismissAction? = nil }
extension EnvironmentValues {
    public var isPresented: Bool {
        get { self[PresentedKey.self] }
        set { self[PresentedKey.self] = newValue }
    }
    /// Inside an alert's actions every button also closes the alert.
    var alertDismiss: DismissAction? {
        get { self[AlertDismissKey.self] }
        set { self[AlertDismissKey.self] = newValue }
    }
}

extension View {
    public func sheet<Content: View>(
        isPresented: Binding<Bool>, onDismiss: (() -> Void)? = nil, @ViewBuilder content: @escaping () -> Content
    ) -> some View {
        modifier(PresentationModifier(isPresented: isPresented, panel: AnyView(SheetPanel(content: content())), onDismiss: onDismiss))
    }
    public func sheet<Item: Identifiable, Content: View>(
        item: Binding<Item?>, onDismiss: (() -> Void)? = nil,
        @ViewBuilder content: @escaping (Item) -> Content
    ) -> some View {
        let shown = Binding<Bool>(get: { item.wrappedValue != nil }, set: { if !$0 { item.wrappedValue = nil } })
        return modifier(
            PresentationModifier(
                isPresented: shown, panel: AnyView(item.wrappedValue.map { SheetPanel(content: content($0)) }),
                onDismiss: onDismiss))
    }
    public func fullScreenCover<Content: View>(
        isPresented: Binding<Bool>, onDismiss: (() -> Void)? = nil,
        @ViewBuilder content: @escaping () -> Content
    ) -> some View {
        sheet(isPresented: isPresented, onDismiss: onDismiss, content: content)
    }
    public func presentationDetents(_ detents: Set<PresentationDetent>) -> some View { self }
    public func presentationDragIndicator(_ visibility: Visibility) -> some View { self }
    public func interactiveDismissDisabled(_ disabled: Bool = true) -> some View { self }

    public func alert<A: View, M: View>(
        _ title: Text, isPresented: Binding<Bool>, @ViewBuilder actions: () -> A,
        @ViewBuilder message: () -> M
    ) -> some View {
        modifier(
            PresentationModifier(
                isPresented: isPresented,
                panel: AnyView(AlertPanel(title: title, actions: actions(), message: message(), hasActions: !(A.self == EmptyView.self))),
                onDismiss: nil))
    }
    public func alert<A: View>(_ title: Text, isPresented: Binding<Bool>, @ViewBuilder actions: () -> A) -> some View {
        alert(title, isPresented: isPresented, actions: actions, message: { EmptyView() })
    }
    public func alert<A: View, M: View>(
        _ titleKey: LocalizedStringKey, isPresented: Binding<Bool>, @ViewBuilder actions: () -> A,
        @ViewBuilder message: () -> M
    ) -> some View {
        alert(Text(titleKey), isPresented: isPresented, actions: actions, message: message)
    }
    public func alert<A: View>(_ titleKey: LocalizedStringKey, isPresented: Binding<Bool>, @ViewBuilder actions: () -> A) -> some View {
        alert(Text(titleKey), isPresented: isPresented, actions: actions, message: { EmptyView() })
    }
    @_disfavoredOverload
    public func alert<S: StringProtocol, A: View, M: View>(
        _ title: S, isPresented: Binding<Bool>, @ViewBuilder actions: () -> A,
        @ViewBuilder message: () -> M
    ) -> some View {
        alert(Text(title), isPresented: isPresented, actions: actions, message: message)
    }
    @_disfavoredOverload
    public func alert<S: StringProtocol, A: View>(_ title: S, isPresented: Binding<Bool>, @ViewBuilder actions: () -> A) -> some View {
        alert(Text(title), isPresented: isPresented, actions: actions, message: { EmptyView() })
    }
    public func alert<T, A: View, M: View>(
        _ titleKey: LocalizedStringKey, isPresented: Binding<Bool>, presenting data: T?,
        @ViewBuilder actions: (T) -> A, @ViewBuilder message: (T) -> M
    ) -> some View {
        alert(
            Text(titleKey), isPresented: isPresented, actions: { if let data { actions(data) } }, message: { if let data { message(data) } }
        )
    }
    public func confirmationDialog<A: View>(
        _ titleKey: LocalizedStringKey, isPresented: Binding<Bool>,
        titleVisibility: Visibility = .automatic, @ViewBuilder actions: () -> A
    ) -> some View {
        alert(Text(titleKey), isPresented: isPresented, actions: actions, message: { EmptyView() })
    }
    public func confirmationDialog<A: View, M: View>(
        _ titleKey: LocalizedStringKey, isPresented: Binding<Bool>,
        titleVisibility: Visibility = .automatic, @ViewBuilder actions: () -> A,
        @ViewBuilder message: () -> M
    ) -> some View {
        alert(Text(titleKey), isPresented: isPresented, actions: actions, message: message)
    }
}

public struct PresentationDetent: Hashable, Sendable {
    let value: Double
    public static let medium = PresentationDetent(value: 0.5), large = PresentationDetent(value: 1)
    public static func height(_ height: CGFloat) -> PresentationDetent { PresentationDetent(value: Double(height)) }
    public static func fraction(_ fraction: CGFloat) -> PresentationDetent { PresentationDetent(value: Double(fraction)) }
}
public enum PopoverAttachmentAnchor { case rect(Anchor<CGRect>.Source), point(UnitPoint) }
public struct Anchor<Value> {
    public struct Source { public static var bounds: Source { Source() } }
}
