import Foundation
internal import ZentoroHostInterface

public struct Toggle<Label: View>: View {
    @Binding var isOn: Bool
    let label: Label
    @Environment(\.toggleStyle) private var style
    @Environment(\.labelsHidden) private var labelsHidden

    public init(isOn: Binding<Bool>, @ViewBuilder label: () -> Label) { _isOn = isOn; self.label = label() }

    public var body: some View {
        Button {
            isOn.toggle()
        } label: {
            if style == .switch {
                HStack(spacing: 8) {
                    if !labelsHidden { label; Spacer(minLength: 8) }
                    SwitchKnob(isOn: isOn)
                }
            } else if style == .button {
                label.padding(.horizontal, 10).padding(.vertical, 3)
                    .background(
                        RoundedRectangle(cornerRadius: 6).fill(
                            isOn ? AnyShapeStyle(Color.accentColor.opacity(0.25)) : AnyShapeStyle(Color.fill)))
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
    var toggleStyle: ToggleStyleKind {
        get { self[ToggleStyleKey.self] }
        set { self[ToggleStyleKey.self] = newValue }
    }
}
extension View {
    public func toggleStyle(_ style: ToggleStyleKind) -> some View { modifier(EnvironmentModifier { $0.toggleStyle = style }) }
}
