import Foundation
internal import ZentoroHostInterface

public struct Stepper<Label: View>: View {
    let label: Label
    let increment: (() -> Void)?
    let decrement: (() -> Void)?
    @Environment(\.labelsHidden) private var labelsHidden

    public init(
        @ViewBuilder label: () -> Label, onIncrement: (() -> Void)?, onDecrement: (() -> Void)?,
        onEditingChanged: @escaping (Bool) -> Void = { _ in }
    ) {
        self.label = label(); increment = onIncrement; decrement = onDecrement
    }
    public init<V: Strideable>(
        value: Binding<V>, in bounds: ClosedRange<V>, step: V.Stride = 1,
        onEditingChanged: @escaping (Bool) -> Void = { _ in }, @ViewBuilder label: () -> Label
    ) {
        self.label = label()
        increment = { value.wrappedValue = min(value.wrappedValue.advanced(by: step), bounds.upperBound) }
        decrement = { value.wrappedValue = max(value.wrappedValue.advanced(by: -step), bounds.lowerBound) }
    }
    public init<V: Strideable>(
        value: Binding<V>, step: V.Stride = 1, onEditingChanged: @escaping (Bool) -> Void = { _ in },
        @ViewBuilder label: () -> Label
    ) {
        self.label = label()
        increment = { value.wrappedValue = value.wrappedValue.advanced(by: step) }
        decrement = { value.wrappedValue = value.wrappedValue.advanced(by: -step) }
    }

    public var body: some View {
        HStack(spacing: 8) {
            if !labelsHidden { label }
            HStack(spacing: 0) {
                Button {
                    decrement?()
                } label: {
                    Image(systemName: "minus").frame(width: 22, height: 20).contentShape(Rectangle())
                }
                Divider().frame(height: 14)
                Button {
                    increment?()
                } label: {
                    Image(systemName: "plus").frame(width: 22, height: 20).contentShape(Rectangle())
                }
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
