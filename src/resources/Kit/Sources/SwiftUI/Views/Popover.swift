import Foundation
internal import ZentoroHostInterface

/// A control that opens a panel under itself: the panel stays open while the user works in
/// it and closes on a click outside, or when its content calls `dismiss`.
struct PopupButton<Label: View, Panel: View>: View, PrimitiveView {
    typealias Body = Never
    let label: Label
    let panel: (@escaping () -> Void) -> Panel
    var closesOnInsideClick = false

    func resolve(_ context: ResolveContext) -> [Element] {
        let graph = context.graph
        let state = graph.storage(at: context.child(.id("popup")).path).0.slot(0) { PopupState() }
        let buttonContext = context.child(.id("button"))
        let toggle = {
            state.open.toggle(); graph.invalidate()
        }
        let button = single(resolveView(Button(action: toggle) { label }.buttonStyle(.plain), buttonContext), context: buttonContext)
        if state.open {
            let close = {
                state.open = false; graph.invalidate()
            }
            graph.overlays.append(
                popupPanel(panel(close), anchor: button, context: context, closesOnInsideClick: closesOnInsideClick, close: close))
        }
        return [button]
    }
}

/// The panel of a pop-up, in the window's colours with a shadow and a thin border.
@MainActor
func popupPanel<Panel: View>(
    _ panel: Panel, anchor: Element, context: ResolveContext, closesOnInsideClick: Bool, close: @escaping () -> Void
)
    -> Element
{
    var inner = context.child(.id("panel"))
    inner.stackAxis = nil
    inner.environment.dismiss = DismissAction(action: close)
    inner.environment.isPresented = true
    let framed =
        panel
        .fixedSize()
        .background(RoundedRectangle(cornerRadius: 8).fill(Color.controlBackground).shadow(color: .black.opacity(0.25), radius: 8, y: 3))
        .overlay(RoundedRectangle(cornerRadius: 8).strokeBorder(Color.separator, lineWidth: 1).allowsHitTesting(false))
    let element = single(resolveView(framed, inner), context: inner)
    return PopupElement(anchor: anchor, panel: element, graph: context.graph, closesOnInsideClick: closesOnInsideClick, dismiss: close)
}

/// `.popover`: a panel under the view it is attached to while `isPresented` holds.
struct PopoverModifier<Panel: View>: ViewModifier, PrimitiveModifier {
    let isPresented: Binding<Bool>
    let panel: Panel
    func resolve(content: ContentResolver, context: ResolveContext) -> [Element] {
        let elements = content(context)
        guard isPresented.wrappedValue else { return elements }
        let anchor = single(elements, context: context)
        let binding = isPresented
        let close = { binding.wrappedValue = false }
        context.graph.overlays.append(
            popupPanel(panel.padding(12), anchor: anchor, context: context, closesOnInsideClick: false, close: close))
        return [anchor]
    }
}

/// Where the secondary button was pressed: a context menu opens there.
final class PointAnchor: Element {
    init(_ point: CGPoint) {
        super.init()
        frame = CGRect(origin: point, size: .zero)
    }
    override func place(in rect: CGRect) {}
}

/// The menu a secondary click on the view opens, at the pointer.
@MainActor
final class ContextMenuState {
    var openAt: CGPoint?
}

struct ContextMenuModifier<MenuItems: View>: ViewModifier, PrimitiveModifier {
    let items: MenuItems
    func resolve(content: ContentResolver, context: ResolveContext) -> [Element] {
        let graph = context.graph
        let path = context.child(.id("context menu")).path
        let state = graph.storage(at: path).0.slot(0) { ContextMenuState() }
        let element = ContextMenuElement(single(content(context), context: context), path: path, graph: graph) { point in
            state.openAt = point; graph.invalidate()
        }
        if let point = state.openAt {
            let close = {
                state.openAt = nil; graph.invalidate()
            }
            var itemContext = context.child(.id("items"))
            itemContext.environment.buttonStyle = AnyButtonStyle(ContextItemStyle())
            itemContext.environment.inMenu = true
            let panel = VStack(alignment: .leading, spacing: 0) { items }.padding(4).frame(minWidth: 160, alignment: .leading)
            graph.overlays.append(
                popupPanel(panel, anchor: PointAnchor(point), context: itemContext, closesOnInsideClick: true, close: close))
        }
        return [element]
    }
}

/// Opens its view's context menu on a press of the secondary button.
final class ContextMenuElement: InteractiveElement {
    let open: (CGPoint) -> Void
    init(_ child: Element, path: ViewPath, graph: ViewGraph, open: @escaping (CGPoint) -> Void) {
        self.open = open
        super.init(child, path: path, graph: graph)
    }
    override var bleed: CGFloat? { 0 }
    override func secondaryPress(at point: CGPoint) -> Bool {
        open(point)
        return true
    }
}

/// A menu item: the full width of the menu, lit in the accent colour while pressed.
struct ContextItemStyle: ButtonStyle {
    func makeBody(configuration: Configuration) -> some View {
        configuration.label
            .labelStyle(.titleAndIcon)
            .padding(.horizontal, 8).padding(.vertical, 4)
            .frame(maxWidth: .infinity, alignment: .leading)
            .foregroundStyle(configuration.isPressed ? Color.white : (configuration.role == .destructive ? Color.red : Color.primary))
            .background(
                RoundedRectangle(cornerRadius: 4).fill(
                    configuration.isPressed ? AnyShapeStyle(TintShapeStyle()) : AnyShapeStyle(Color.clear))
            )
            .contentShape(Rectangle())
    }
}

private enum InMenuKey: EnvironmentKey { static let defaultValue = false }
extension EnvironmentValues {
    /// Inside a menu's items: dividers are thin lines across the menu.
    var inMenu: Bool {
        get { self[InMenuKey.self] }
        set { self[InMenuKey.self] = newValue }
    }
}

extension View {
    public func contextMenu<MenuItems: View>(@ViewBuilder menuItems: () -> MenuItems) -> some View {
        modifier(ContextMenuModifier(items: menuItems()))
    }
    public func contextMenu<MenuItems: View, Preview: View>(
        @ViewBuilder menuItems: () -> MenuItems, @ViewBuilder preview: () -> Preview
    ) -> some View {
        modifier(ContextMenuModifier(items: menuItems()))
    }
    /// The menu for the selected rows of a list or table; on a desktop, the row under the pointer.
    public func contextMenu<I: Hashable, MenuItems: View>(
        forSelectionType itemType: I.Type = I.self, @ViewBuilder menu: @escaping (Set<I>) -> MenuItems,
        primaryAction: ((Set<I>) -> Void)? = nil
    ) -> some View {
        modifier(ContextMenuModifier(items: menu([])))
    }
    public func popover<Content: View>(
        isPresented: Binding<Bool>, attachmentAnchor: PopoverAttachmentAnchor = .rect(.bounds),
        arrowEdge: Edge = .top, @ViewBuilder content: @escaping () -> Content
    ) -> some View {
        modifier(PopoverModifier(isPresented: isPresented, panel: content()))
    }
    public func popover<Item: Identifiable, Content: View>(
        item: Binding<Item?>, attachmentAnchor: PopoverAttachmentAnchor = .rect(.bounds),
        arrowEdge: Edge = .top, @ViewBuilder content: @escaping (Item) -> Content
    ) -> some View {
        let shown = Binding<Bool>(get: { item.wrappedValue != nil }, set: { if !$0 { item.wrappedValue = nil } })
        return modifier(PopoverModifier(isPresented: shown, panel: item.wrappedValue.map(content)))
    }
}
