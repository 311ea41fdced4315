import Foundation

/// One choice among tagged options: a pop-up menu by default, or segments, or radio buttons.
public struct Picker<Label: View, SelectionValue: Hashable, Content: View>: View, PrimitiveView {
    public typealias Body = Never
    let label: Label
    let selection: Binding<SelectionValue>
    let content: Content

    public init(selection: Binding<SelectionValue>, @ViewBuilder content: () -> Content, @ViewBuilder label: () -> Label) {
        self.selection = selection; self.content = content(); self.label = label()
    }

    private func options(_ context: ResolveContext) -> [(element: Element, tag: SelectionValue?)] {
        var inner = context
        inner.environment.pickerTags = true
        inner.stackAxis = nil
        return resolveView(content, inner).map { element in
            var tag: SelectionValue?
            // The innermost tag wins: an explicit `.tag` inside a ForEach row goes before the row's id.
            element.forEach { if let marked = $0 as? TagElement, let value = marked.tag.base as? SelectionValue { tag = value } }
            return (element, tag)
        }
    }

    func resolve(_ context: ResolveContext) -> [Element] {
        let shown = options(context.child(.id("options")))
        let selected = shown.firstIndex { $0.tag.map { AnyHashable($0) } == AnyHashable(selection.wrappedValue) }
        let binding = selection
        let tags = shown.map(\.tag)
        let choose: (Int) -> Void = { index in if let tag = tags[index] { binding.wrappedValue = tag } }
        let controlContext = context.child(.id("control"))
        let control: Element
        switch context.environment.pickerStyle {
        case .segmented:
            var segments = shown.map(\.element)
            if let selected {
                // The selected segment sits on the tinted pill: its option reads in white.
                var onTint = context.child(.id("selected options"))
                onTint.environment.foregroundStyle = AnyShapeStyle(Color.white)
                let lit = options(onTint)
                if lit.indices.contains(selected) { segments[selected] = lit[selected].element }
            }
            control = single(
                resolveView(Segments(options: segments, selected: selected, choose: choose), controlContext),
                context: controlContext)
        case .inline:
            control = single(
                resolveView(RadioGroup(options: shown.map(\.element), selected: selected, choose: choose), controlContext),
                context: controlContext)
        default:
            let menuOptions = options(context.child(.id("menu options"))).map(\.element)
            let current = selected.map { shown[$0].element } ?? EmptyElement()
            control = resolveMenu(
                label: AnyView(Elements(elements: [current])), items: menuOptions, selected: selected,
                choose: choose, context: controlContext)
        }
        var labelContext = context.child(.id("label"))
        labelContext.stackAxis = .horizontal
        let labelElements = context.environment.labelsHidden ? [] : resolveView(label, labelContext)
        let hasLabel = !labelElements.isEmpty && !labelElements.allSatisfy { ($0 as? TextElement)?.string.isEmpty == true }
        guard hasLabel else { return [control] }
        let spacer: [Element] = context.environment.inList ? [SpacerElement(minLength: 8, axis: .horizontal)] : []
        return [
            StackElement(
                axis: .horizontal, crossFraction: 0.5, spacing: 8,
                children: [single(labelElements, context: labelContext)] + spacer + [control])
        ]
    }
}

extension Picker where Label == Text {
    public init(_ titleKey: LocalizedStringKey, selection: Binding<SelectionValue>, @ViewBuilder content: () -> Content) {
        self.init(selection: selection, content: content) { Text(titleKey) }
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, selection: Binding<SelectionValue>, @ViewBuilder content: () -> Content) {
        self.init(selection: selection, content: content) { Text(title) }
    }
}

private struct Segments: View {
    let options: [Element]
    let selected: Int?
    let choose: (Int) -> Void
    var body: some View {
        HStack(spacing: 0) {
            ForEach(0..<options.count, id: \.self) { index in
                Button {
                    choose(index)
                } label: {
                    Elements(elements: [options[index]])
                        .padding(.horizontal, 10).padding(.vertical, 3)
                        .frame(maxWidth: .infinity)
                        .background(
                            RoundedRectangle(cornerRadius: 5)
                                .fill(index == selected ? AnyShapeStyle(TintShapeStyle()) : AnyShapeStyle(Color.clear))
                        )
                        .contentShape(Rectangle())
                }
                .buttonStyle(.plain)
            }
        }
        .padding(2)
        .background(RoundedRectangle(cornerRadius: 7).fill(Color.fill))
    }
}

private struct RadioGroup: View {
    let options: [Element]
    let selected: Int?
    let choose: (Int) -> Void
    var body: some View {
        VStack(alignment: .leading, spacing: 6) {
            ForEach(0..<options.count, id: \.self) { index in
                Button {
                    choose(index)
                } label: {
                    HStack(spacing: 6) {
                        ZStack {
                            Circle().strokeBorder(Color.controlBorder, lineWidth: 1)
                            if index == selected { Circle().fill(TintShapeStyle()).padding(3) }
                        }
                        .frame(width: 14, height: 14)
                        Elements(elements: [options[index]])
                    }
                    .contentShape(Rectangle())
                }
                .buttonStyle(.plain)
            }
        }
    }
}

public struct PickerStyleKind: Equatable, Sendable {
    let kind: Int
    public static let automatic = PickerStyleKind(kind: 0)
    public static let menu = PickerStyleKind(kind: 0)
    public static let segmented = PickerStyleKind(kind: 1)
    public static let palette = PickerStyleKind(kind: 1)
    public static let inline = PickerStyleKind(kind: 2)
    public static let radioGroup = PickerStyleKind(kind: 2)
    public static let wheel = PickerStyleKind(kind: 2)
    public static let navigationLink = PickerStyleKind(kind: 0)
}

private enum PickerStyleKey: EnvironmentKey { static let defaultValue = PickerStyleKind.automatic }
private enum PickerTagsKey: EnvironmentKey { static let defaultValue = false }
extension EnvironmentValues {
    var pickerStyle: PickerStyleKind {
        get { self[PickerStyleKey.self] }
        set { self[PickerStyleKey.self] = newValue }
    }
    /// Options of a picker: a ForEach tags each row with its id, as SwiftUI does.
    var pickerTags: Bool {
        get { self[PickerTagsKey.self] }
        set { self[PickerTagsKey.self] = newValue }
    }
}
extension View {
    public func pickerStyle(_ style: PickerStyleKind) -> some View { modifier(EnvironmentModifier { $0.pickerStyle = style }) }
}

/// Whether a pop-up is open, kept at the place of the control that opens it.
@MainActor
final class PopupState {
    var open = false
}

/// A bordered button that opens a list of items under itself; choosing one closes it.
@MainActor
func resolveMenu(label: AnyView, items: [Element], selected: Int?, choose: @escaping (Int) -> Void, context: ResolveContext) -> Element {
    let graph = context.graph
    let state = graph.storage(at: context.child(.id("popup")).path).0.slot(0) { PopupState() }
    let buttonContext = context.child(.id("button"))
    let button = single(
        resolveView(
            MenuButton(label: label) {
                state.open.toggle(); graph.invalidate()
            }, buttonContext),
        context: buttonContext)
    if state.open {
        let close = {
            state.open = false; graph.invalidate()
        }
        let listContext = context.child(.id("items"))
        let list = single(
            resolveView(
                MenuItems(
                    items: items, selected: selected,
                    choose: {
                        choose($0); close()
                    }), listContext),
            context: listContext)
        graph.overlays.append(PopupElement(anchor: button, panel: list, graph: graph, dismiss: close))
    }
    return button
}

private struct MenuButton: View {
    let label: AnyView
    let action: () -> Void
    var body: some View {
        Button(action: action) {
            HStack(spacing: 6) {
                label.lineLimit(1)
                Image(systemName: "chevron.up.chevron.down").font(.system(size: 9, weight: .semibold))
            }
        }
        .buttonStyle(.bordered)
    }
}

private struct MenuItems: View {
    let items: [Element]
    let selected: Int?
    let choose: (Int) -> Void
    var body: some View {
        VStack(alignment: .leading, spacing: 0) {
            ForEach(0..<items.count, id: \.self) { index in
                Button {
                    choose(index)
                } label: {
                    HStack(spacing: 6) {
                        Image(systemName: "checkmark").font(.system(size: 10, weight: .bold)).opacity(index == selected ? 1 : 0)
                        Elements(elements: [items[index]])
                        Spacer(minLength: 0)
                    }
                    .padding(.horizontal, 8).padding(.vertical, 4)
                    .contentShape(Rectangle())
                }
                .buttonStyle(MenuItemStyle())
            }
        }
        .padding(4)
        .fixedSize()
        .background(RoundedRectangle(cornerRadius: 6).fill(Color.controlBackground).shadow(color: .black.opacity(0.25), radius: 6, y: 2))
        .overlay(RoundedRectangle(cornerRadius: 6).strokeBorder(Color.separator, lineWidth: 1).allowsHitTesting(false))
    }
}

private struct MenuItemStyle: ButtonStyle {
    func makeBody(configuration: Configuration) -> some View {
        configuration.label
            .foregroundStyle(configuration.isPressed ? Color.white : Color.primary)
            .background(
                RoundedRectangle(cornerRadius: 4).fill(
                    configuration.isPressed ? AnyShapeStyle(TintShapeStyle()) : AnyShapeStyle(Color.clear)))
    }
}

/// A panel over the whole window under its anchor; a click anywhere else closes it, and so
/// does a click on one of its items.
final class PopupElement: Element {
    let anchor: Element, panel: Element
    let dismiss: () -> Void
    unowned let graph: ViewGraph
    /// Menus close after a click on an item; panels with controls of their own stay open.
    let closesOnInsideClick: Bool
    init(anchor: Element, panel: Element, graph: ViewGraph, closesOnInsideClick: Bool = true, dismiss: @escaping () -> Void) {
        self.anchor = anchor; self.panel = panel; self.graph = graph; self.dismiss = dismiss
        self.closesOnInsideClick = closesOnInsideClick
    }
    override var children: [Element] { [panel] }
    override func measure(_ proposal: ProposedViewSize) -> CGSize { proposal.replacingUnspecifiedDimensions() }
    override func place(in rect: CGRect) {
        frame = rect
        let s = panel.size(ProposedViewSize(width: nil, height: nil))
        var origin = CGPoint(x: anchor.frame.minX, y: anchor.frame.maxY + 2)
        if origin.y + s.height > rect.maxY { origin.y = max(rect.minY, anchor.frame.minY - 2 - s.height) }
        origin.x = min(max(rect.minX, origin.x), max(rect.minX, rect.maxX - s.width))
        panel.place(in: CGRect(origin: origin, size: s))
    }
    override func hits(_ point: CGPoint) -> [InteractiveElement]? {
        if let hit = panel.hits(point) {
            if !closesOnInsideClick { return hit }
            return hit + [DismissCatcher(EmptyElement(), path: ViewPath.root.appending(.id("popup")), graph: graph, action: dismiss)]
        }
        return [DismissCatcher(EmptyElement(), path: ViewPath.root.appending(.id("popup")), graph: graph, action: dismiss)]
    }
}

/// Takes a click outside a pop-up and closes it; inside, closes it after the item's own action.
final class DismissCatcher: InteractiveElement {
    let action: () -> Void
    init(_ child: Element, path: ViewPath, graph: ViewGraph, action: @escaping () -> Void) {
        self.action = action
        super.init(child, path: path, graph: graph)
    }
    override func tap(at point: CGPoint, count: Int) -> Bool { action(); return true }
    override var alwaysTaps: Bool { true }
}

/// A button that opens a list of actions.
public struct Menu<Label: View, Content: View>: View, PrimitiveView {
    public typealias Body = Never
    let label: Label, content: Content
    public init(@ViewBuilder content: () -> Content, @ViewBuilder label: () -> Label) { self.content = content(); self.label = label() }
    func resolve(_ context: ResolveContext) -> [Element] {
        var itemContext = context.child(.id("items"))
        itemContext.environment.buttonStyle = AnyButtonStyle(PlainButtonStyle())
        itemContext.stackAxis = nil
        let items = resolveView(content, itemContext)
        return [resolveMenu(label: AnyView(label), items: items, selected: nil, choose: { _ in }, context: context.child(.id("control")))]
    }
}

extension Menu where Label == Text {
    public init<S: StringProtocol>(_ title: S, @ViewBuilder content: () -> Content) { self.init(content: content) { Text(title) } }
}
