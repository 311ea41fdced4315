import SwiftUI

struct AppRoot: View {
    @StateObject private var model = CalendarModel()

    var body: some View {
        HSplitView {
            MonthGridView()
                .frame(minWidth: 420)
            DayDetailView()
                .frame(minWidth: 240, idealWidth: 280, maxWidth: 360)
        }
        .environmentObject(model)
    }
}

struct MonthGridView: View {
    @EnvironmentObject var model: CalendarModel
    private let columns = Array(repeating: GridItem(.flexible(), spacing: 4), count: 7)

    var body: some View {
        VStack(spacing: 12) {
            HStack {
                Text(model.displayedMonth.formatted(.dateTime.month(.wide).year()))
                    .font(.title.bold())
                Spacer()
                Button { model.changeMonth(by: -1) } label: { Image(systemName: "chevron.left") }
                Button("Today") { model.goToToday() }
                    .keyboardShortcut("t", modifiers: .command)
                Button { model.changeMonth(by: 1) } label: { Image(systemName: "chevron.right") }
            }

            LazyVGrid(columns: columns, spacing: 4) {
                ForEach(model.weekdaySymbols, id: \.self) { symbol in
                    Text(symbol.uppercased())
                        .font(.caption.bold())
                        .foregroundStyle(.secondary)
                        .frame(maxWidth: .infinity)
                }

                ForEach(Array(model.gridDays.enumerated()), id: \.offset) { _, day in
                    if let day {
                        DayCell(day: day)
                    } else {
                        Color.clear.frame(height: 64)
                    }
                }
            }
            Spacer()
        }
        .padding()
    }
}

struct DayCell: View {
    @EnvironmentObject var model: CalendarModel
    let day: Date

    var body: some View {
        let isSelected = model.calendar.isDate(day, inSameDayAs: model.selectedDay)
        let isToday = model.calendar.isDateInToday(day)
        let dayEvents = model.events(on: day)

        VStack(spacing: 4) {
            Text("\(model.calendar.component(.day, from: day))")
                .font(.body.weight(isToday ? .bold : .regular))
                .foregroundStyle(isToday ? Color.white : Color.primary)
                .frame(width: 28, height: 28)
                .background(Circle().fill(isToday ? Color.red : Color.clear))
            HStack(spacing: 3) {
                ForEach(dayEvents.prefix(3)) { event in
                    Circle().fill(event.color).frame(width: 6, height: 6)
                }
            }
            .frame(height: 6)
            Spacer(minLength: 0)
        }
        .padding(.top, 4)
        .frame(maxWidth: .infinity)
        .frame(height: 64)
        .background(
            RoundedRectangle(cornerRadius: 8)
                .fill(isSelected ? Color.accentColor.opacity(0.2) : Color.secondary.opacity(0.05))
        )
        .contentShape(Rectangle())
        .onTapGesture { model.selectedDay = day }
    }
}

struct DayDetailView: View {
    @EnvironmentObject var model: CalendarModel
    @State private var title = ""
    @State private var hour = 9
    @State private var minute = 0
    @State private var colorName = "blue"

    var body: some View {
        VStack(alignment: .leading, spacing: 12) {
            Text(model.selectedDay.formatted(date: .complete, time: .omitted))
                .font(.headline)

            let dayEvents = model.events(on: model.selectedDay)
            if dayEvents.isEmpty {
                Text("No events")
                    .foregroundStyle(.secondary)
                    .frame(maxWidth: .infinity, minHeight: 80)
            } else {
                List {
                    ForEach(dayEvents) { event in
                        HStack {
                            RoundedRectangle(cornerRadius: 2)
                                .fill(event.color)
                                .frame(width: 4)
                            Text(event.timeText)
                                .monospacedDigit()
                                .foregroundStyle(.secondary)
                            Text(event.title)
                            Spacer()
                            Button {
                                model.events.removeAll { $0.id == event.id }
                            } label: {
                                Image(systemName: "xmark")
                            }
                            .buttonStyle(.borderless)
                        }
                    }
                }
                .listStyle(.plain)
            }

            GroupBox("New event") {
                VStack(alignment: .leading, spacing: 8) {
                    TextField("Title", text: $title)
                        .textFieldStyle(.roundedBorder)
                        .onSubmit(addEvent)
                    HStack {
                        Picker("Hour", selection: $hour) {
                            ForEach(0..<24) { h in Text(String(format: "%02d", h)).tag(h) }
                        }
                        .labelsHidden()
                        Text(":")
                        Picker("Minute", selection: $minute) {
                            ForEach([0, 15, 30, 45], id: \.self) { m in Text(String(format: "%02d", m)).tag(m) }
                        }
                        .labelsHidden()
                    }
                    Picker("Color", selection: $colorName) {
                        ForEach(["blue", "red", "green", "orange", "purple"], id: \.self) { name in
                            Text(name.capitalized).tag(name)
                        }
                    }
                    Button("Add Event", action: addEvent)
                        .buttonStyle(.borderedProminent)
                        .disabled(title.trimmingCharacters(in: .whitespaces).isEmpty)
                }
                .padding(4)
            }
            Spacer()
        }
        .padding()
    }

    private func addEvent() {
        let t = title.trimmingCharacters(in: .whitespaces)
        guard !t.isEmpty else { return }
        model.events.append(CalendarEvent(title: t, day: model.selectedDay, hour: hour, minute: minute, colorName: colorName))
        title = ""
    }
}
