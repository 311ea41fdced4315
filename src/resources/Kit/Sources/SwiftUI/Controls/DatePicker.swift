import Foundation

public struct DatePickerComponents: OptionSet, Sendable {
    public let rawValue: Int
    public init(rawValue: Int) { self.rawValue = rawValue }
    public static let date = DatePickerComponents(rawValue: 1)
    public static let hourAndMinute = DatePickerComponents(rawValue: 2)
    public static let hourMinuteAndSecond = DatePickerComponents(rawValue: 6)
}

/// A date and time: fields that open a month calendar and an hour and minute chooser, or the
/// calendar itself in the `.graphical` style.
public struct DatePicker<Label: View>: View {
    let selection: Binding<Date>
    let range: ClosedRange<Date>?
    let components: DatePickerComponents
    let label: Label
    @Environment(\.datePickerStyle) private var style
    @Environment(\.labelsHidden) private var labelsHidden

    public init(
        selection: Binding<Date>, displayedComponents: DatePickerComponents = [.date, .hourAndMinute], @ViewBuilder label: () -> Label
    ) {
        self.selection = selection; range = nil; components = displayedComponents; self.label = label()
    }
    public init(
        selection: Binding<Date>, in range: ClosedRange<Date>, displayedComponents: DatePickerComponents = [.date, .hourAndMinute],
        @ViewBuilder label: () -> Label
    ) {
        self.selection = selection; self.range = range; components = displayedComponents; self.label = label()
    }
    public init(
        selection: Binding<Date>, in range: PartialRangeFrom<Date>, displayedComponents: DatePickerComponents = [.date, .hourAndMinute],
        @ViewBuilder label: () -> Label
    ) {
        self.init(selection: selection, in: range.lowerBound...Date.distantFuture, displayedComponents: displayedComponents, label: label)
    }
    public init(
        selection: Binding<Date>, in range: PartialRangeThrough<Date>, displayedComponents: DatePickerComponents = [.date, .hourAndMinute],
        @ViewBuilder label: () -> Label
    ) {
        self.init(selection: selection, in: Date.distantPast...range.upperBound, displayedComponents: displayedComponents, label: label)
    }

    private var clamped: Binding<Date> {
        let selection = self.selection, range = self.range
        return Binding(
            get: { selection.wrappedValue },
            set: { new in selection.wrappedValue = range.map { min(max(new, $0.lowerBound), $0.upperBound) } ?? new })
    }

    public var body: some View {
        HStack(alignment: style == .graphical ? .top : .center, spacing: 8) {
            if !labelsHidden {
                label
                Spacer(minLength: 8)
            }
            if style == .graphical {
                VStack(alignment: .leading, spacing: 8) {
                    if components.contains(.date) { MonthCalendar(selection: clamped, range: range) }
                    if components.contains(.hourAndMinute) {
                        TimeField(selection: clamped, seconds: components.contains(.hourMinuteAndSecond))
                    }
                }
            } else {
                HStack(spacing: 6) {
                    if components.contains(.date) {
                        PopupButton(
                            label: FieldFace(
                                text: DateFormatter.localizedString(from: selection.wrappedValue, dateStyle: .medium, timeStyle: .none))
                        ) { _ in
                            MonthCalendar(selection: clamped, range: range).padding(10)
                        }
                    }
                    if components.contains(.hourAndMinute) {
                        TimeField(selection: clamped, seconds: components.contains(.hourMinuteAndSecond))
                    }
                }
            }
        }
    }
}

extension DatePicker where Label == Text {
    public init(
        _ titleKey: LocalizedStringKey, selection: Binding<Date>, displayedComponents: DatePickerComponents = [.date, .hourAndMinute]
    ) {
        self.init(selection: selection, displayedComponents: displayedComponents) { Text(titleKey) }
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(
        _ title: S, selection: Binding<Date>, displayedComponents: DatePickerComponents = [.date, .hourAndMinute]
    ) {
        self.init(selection: selection, displayedComponents: displayedComponents) { Text(title) }
    }
    public init(
        _ titleKey: LocalizedStringKey, selection: Binding<Date>, in range: ClosedRange<Date>,
        displayedComponents: DatePickerComponents = [.date, .hourAndMinute]
    ) {
        self.init(selection: selection, in: range, displayedComponents: displayedComponents) { Text(titleKey) }
    }
    public init(
        _ titleKey: LocalizedStringKey, selection: Binding<Date>, in range: PartialRangeFrom<Date>,
        displayedComponents: DatePickerComponents = [.date, .hourAndMinute]
    ) {
        self.init(selection: selection, in: range, displayedComponents: displayedComponents) { Text(titleKey) }
    }
    public init(
        _ titleKey: LocalizedStringKey, selection: Binding<Date>, in range: PartialRangeThrough<Date>,
        displayedComponents: DatePickerComponents = [.date, .hourAndMinute]
    ) {
        self.init(selection: selection, in: range, displayedComponents: displayedComponents) { Text(titleKey) }
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(
        _ title: S, selection: Binding<Date>, in range: ClosedRange<Date>,
        displayedComponents: DatePickerComponents = [.date, .hourAndMinute]
    ) {
        self.init(selection: selection, in: range, displayedComponents: displayedComponents) { Text(title) }
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(
        _ title: S, selection: Binding<Date>, in range: PartialRangeFrom<Date>,
        displayedComponents: DatePickerComponents = [.date, .hourAndMinute]
    ) {
        self.init(selection: selection, in: range, displayedComponents: displayedComponents) { Text(title) }
    }
}

/// The face of a field that opens a chooser: the value in a bordered box.
struct FieldFace: View {
    let text: String
    var body: some View {
        Text(text)
            .monospacedDigit()
            .lineLimit(1)
            .padding(.horizontal, 8).padding(.vertical, 3)
            .background(RoundedRectangle(cornerRadius: 5).fill(Color.controlBackground))
            .overlay(RoundedRectangle(cornerRadius: 5).strokeBorder(Color.controlBorder, lineWidth: 1))
            .fixedSize()
    }
}

/// Hours and minutes, each with small arrows that step it.
private struct TimeField: View {
    let selection: Binding<Date>
    let seconds: Bool
    var body: some View {
        let calendar = Calendar.current
        let parts = calendar.dateComponents([.hour, .minute, .second], from: selection.wrappedValue)
        HStack(spacing: 2) {
            unit(parts.hour ?? 0, .hour)
            Text(":")
            unit(parts.minute ?? 0, .minute)
            if seconds {
                Text(":")
                unit(parts.second ?? 0, .second)
            }
        }
        .padding(.horizontal, 6).padding(.vertical, 1)
        .background(RoundedRectangle(cornerRadius: 5).fill(Color.controlBackground))
        .overlay(RoundedRectangle(cornerRadius: 5).strokeBorder(Color.controlBorder, lineWidth: 1))
        .fixedSize()
    }

    private func unit(_ value: Int, _ component: Calendar.Component) -> some View {
        HStack(spacing: 1) {
            Text(String(format: "%02d", value)).monospacedDigit()
            VStack(spacing: 0) {
                arrow("chevron.up", by: 1, component)
                arrow("chevron.down", by: -1, component)
            }
        }
    }

    private func arrow(_ symbol: String, by step: Int, _ component: Calendar.Component) -> some View {
        Button {
            // Steps wrap within the day, as the fields of a clock do.
            let calendar = Calendar.current
            let date = selection.wrappedValue
            let value = calendar.component(component, from: date)
            let span = component == .hour ? 24 : 60
            let wrapped = ((value + step) % span + span) % span
            if let moved = calendar.date(byAdding: component, value: wrapped - value, to: date) { selection.wrappedValue = moved }
        } label: {
            Image(systemName: symbol).font(.system(size: 7, weight: .bold)).frame(width: 12, height: 9).contentShape(Rectangle())
        }
        .buttonStyle(.plain)
    }
}

/// A month of days in weeks, with arrows to the months before and after.
struct MonthCalendar: View {
    let selection: Binding<Date>
    let range: ClosedRange<Date>?
    @State private var shownMonth: Date?

    var body: some View {
        let calendar = Calendar.current
        let month = calendar.dateInterval(of: .month, for: shownMonth ?? selection.wrappedValue)?.start ?? selection.wrappedValue
        let formatter = DateFormatter()
        let _ = formatter.dateFormat = "LLLL yyyy"
        let days = calendar.range(of: .day, in: .month, for: month)?.count ?? 30
        let lead = (calendar.component(.weekday, from: month) - calendar.firstWeekday + 7) % 7
        let symbols = calendar.veryShortStandaloneWeekdaySymbols
        let orderedSymbols = Array(symbols[(calendar.firstWeekday - 1)...] + symbols[..<(calendar.firstWeekday - 1)])
        VStack(spacing: 4) {
            HStack {
                Text(formatter.string(from: month)).font(.headline).lineLimit(1).fixedSize()
                Spacer()
                Button {
                    shownMonth = calendar.date(byAdding: .month, value: -1, to: month)
                } label: {
                    Image(systemName: "chevron.left").frame(width: 20, height: 20).contentShape(Rectangle())
                }
                .buttonStyle(.plain)
                Button {
                    shownMonth = calendar.date(byAdding: .month, value: 1, to: month)
                } label: {
                    Image(systemName: "chevron.right").frame(width: 20, height: 20).contentShape(Rectangle())
                }
                .buttonStyle(.plain)
            }
            HStack(spacing: 2) {
                ForEach(0..<7, id: \.self) { column in
                    Text(orderedSymbols[column]).font(.caption).foregroundStyle(.secondary).frame(width: 28)
                }
            }
            ForEach(0..<((lead + days + 6) / 7), id: \.self) { week in
                HStack(spacing: 2) {
                    ForEach(0..<7, id: \.self) { column in
                        let day = week * 7 + column - lead + 1
                        if day >= 1 && day <= days, let date = calendar.date(byAdding: .day, value: day - 1, to: month) {
                            dayButton(day, date: date, calendar: calendar)
                        } else {
                            Color.clear.frame(width: 28, height: 24)
                        }
                    }
                }
            }
        }
        .fixedSize()
    }

    private func dayButton(_ day: Int, date: Date, calendar: Calendar) -> some View {
        let selected = calendar.isDate(date, inSameDayAs: selection.wrappedValue)
        let today = calendar.isDateInToday(date)
        let allowed = range.map { calendar.startOfDay(for: $0.lowerBound) <= date && date <= $0.upperBound } ?? true
        return Button {
            // The day changes; the time of day stays.
            let time = calendar.dateComponents([.hour, .minute, .second], from: selection.wrappedValue)
            selection.wrappedValue = calendar.date(byAdding: time, to: date) ?? date
        } label: {
            Text("\(day)")
                .font(.callout.weight(today ? .bold : .regular))
                .monospacedDigit()
                .foregroundStyle(
                    selected ? AnyShapeStyle(Color.white) : today ? AnyShapeStyle(TintShapeStyle()) : AnyShapeStyle(Color.primary)
                )
                .frame(width: 28, height: 24)
                .background(
                    Circle().fill(selected ? AnyShapeStyle(TintShapeStyle()) : AnyShapeStyle(Color.clear)).frame(width: 24, height: 24)
                )
                .contentShape(Rectangle())
        }
        .buttonStyle(.plain)
        .disabled(!allowed)
        .opacity(allowed ? 1 : 0.35)
    }
}

public struct DatePickerStyleKind: Equatable, Sendable {
    let kind: Int
    public static let automatic = DatePickerStyleKind(kind: 0)
    public static let compact = DatePickerStyleKind(kind: 0)
    public static let field = DatePickerStyleKind(kind: 0)
    public static let stepperField = DatePickerStyleKind(kind: 0)
    public static let wheel = DatePickerStyleKind(kind: 0)
    public static let graphical = DatePickerStyleKind(kind: 1)
}
private enum DatePickerStyleKey: EnvironmentKey { static let defaultValue = DatePickerStyleKind.automatic }
extension EnvironmentValues {
    var datePickerStyle: DatePickerStyleKind {
        get { self[DatePickerStyleKey.self] }
        set { self[DatePickerStyleKey.self] = newValue }
    }
}
extension View {
    public func datePickerStyle(_ style: DatePickerStyleKind) -> some View { modifier(EnvironmentModifier { $0.datePickerStyle = style }) }
}

/// A colour chosen from a palette of swatches that opens under the control.
public struct ColorPicker<Label: View>: View {
    let selection: Binding<Color>
    let supportsOpacity: Bool
    let label: Label
    @Environment(\.labelsHidden) private var labelsHidden

    public init(selection: Binding<Color>, supportsOpacity: Bool = true, @ViewBuilder label: () -> Label) {
        self.selection = selection; self.supportsOpacity = supportsOpacity; self.label = label()
    }

    static var palette: [Color] {
        [
            .red, .orange, .yellow, .green, .mint, .teal, .cyan, .blue, .indigo, .purple, .pink, .brown,
            .black, Color(white: 0.3), .gray, Color(white: 0.8), .white,
            Color(red: 0.5, green: 0, blue: 0), Color(red: 0, green: 0.4, blue: 0), Color(red: 0, green: 0, blue: 0.5),
            Color(red: 1, green: 0.8, blue: 0.8), Color(red: 0.8, green: 1, blue: 0.8), Color(red: 0.8, green: 0.9, blue: 1),
            Color(red: 1, green: 0.95, blue: 0.7)
        ]
    }

    public var body: some View {
        HStack(spacing: 8) {
            if !labelsHidden {
                label
                Spacer(minLength: 8)
            }
            PopupButton(label: swatch(selection.wrappedValue, size: CGSize(width: 38, height: 20)), closesOnInsideClick: true) { close in
                LazyVGrid(columns: Array(repeating: GridItem(.fixed(22), spacing: 6), count: 6), spacing: 6) {
                    ForEach(0..<Self.palette.count, id: \.self) { index in
                        Button {
                            selection.wrappedValue = Self.palette[index]
                            close()
                        } label: {
                            swatch(Self.palette[index], size: CGSize(width: 22, height: 22))
                        }
                        .buttonStyle(.plain)
                    }
                }
                .padding(10)
            }
        }
    }

    private func swatch(_ color: Color, size: CGSize) -> some View {
        RoundedRectangle(cornerRadius: 4).fill(color)
            .overlay(RoundedRectangle(cornerRadius: 4).strokeBorder(Color.controlBorder, lineWidth: 1))
            .frame(width: size.width, height: size.height)
    }
}

extension ColorPicker where Label == Text {
    public init(_ titleKey: LocalizedStringKey, selection: Binding<Color>, supportsOpacity: Bool = true) {
        self.init(selection: selection, supportsOpacity: supportsOpacity) { Text(titleKey) }
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, selection: Binding<Color>, supportsOpacity: Bool = true) {
        self.init(selection: selection, supportsOpacity: supportsOpacity) { Text(title) }
    }
}
