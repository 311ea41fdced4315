import SwiftUI

struct AppRoot: View {
    @StateObject private var store = NotesStore()
    @State private var displayedMonth = Date()
    @State private var selectedDate: Date = Calendar.current.startOfDay(for: .now)
    @State private var newNote = ""
    @State private var slideForward = true

    private let calendar = Calendar.current
    private let columns = Array(repeating: GridItem(.flexible(), spacing: 4), count: 7)

    var body: some View {
        HStack(spacing: 0) {
            VStack(spacing: 12) {
                header
                weekdayHeader
                LazyVGrid(columns: columns, spacing: 4) {
                    ForEach(Array(calendar.daysInMonthGrid(for: displayedMonth).enumerated()), id: \.offset) { _, day in
                        if let day {
                            DayCell(date: day,
                                    isSelected: calendar.isDate(day, inSameDayAs: selectedDate),
                                    isToday: calendar.isDateInToday(day),
                                    noteCount: store.notes(for: day).count)
                                .onTapGesture {
                                    selectedDate = day
                                }
                        } else {
                            Color.clear.frame(height: 56)
                        }
                    }
                }
                .id(displayedMonth)
                .transition(.asymmetric(
                    insertion: .move(edge: slideForward ? .trailing : .leading).combined(with: .opacity),
                    removal: .opacity
                ))
                Spacer()
            }
            .padding()
            .frame(minWidth: 460)

            Divider()

            notesPanel
                .frame(width: 240)
        }
        .frame(minWidth: 720, minHeight: 480)
    }

    private var header: some View {
        HStack {
            Button {
                changeMonth(by: -1)
            } label: {
                Image(systemName: "chevron.left")
            }
            .keyboardShortcut(.leftArrow, modifiers: .command)

            Spacer()

            Text(displayedMonth, format: .dateTime.month(.wide).year())
                .font(.title2.bold())

            Spacer()

            Button("Today") {
                slideForward = displayedMonth < .now
                withAnimation(.easeInOut) {
                    displayedMonth = .now
                    selectedDate = calendar.startOfDay(for: .now)
                }
            }

            Button {
                changeMonth(by: 1)
            } label: {
                Image(systemName: "chevron.right")
            }
            .keyboardShortcut(.rightArrow, modifiers: .command)
        }
        .buttonStyle(.bordered)
    }

    private var weekdayHeader: some View {
        HStack(spacing: 4) {
            ForEach(calendar.orderedShortWeekdaySymbols, id: \.self) { symbol in
                Text(symbol.uppercased())
                    .font(.caption.weight(.semibold))
                    .foregroundStyle(.secondary)
                    .frame(maxWidth: .infinity)
            }
        }
    }

    private var notesPanel: some View {
        VStack(alignment: .leading, spacing: 12) {
            Text(selectedDate, format: .dateTime.weekday(.wide).day().month(.wide))
                .font(.headline)

            let notes = store.notes(for: selectedDate)
            if notes.isEmpty {
                Text("No notes for this day.")
                    .foregroundStyle(.secondary)
                    .font(.callout)
            } else {
                List {
                    ForEach(notes) { note in
                        HStack {
                            Text(note.text)
                            Spacer()
                            Button {
                                store.remove(note, from: selectedDate)
                            } label: {
                                Image(systemName: "xmark.circle.fill")
                                    .foregroundStyle(.secondary)
                            }
                            .buttonStyle(.plain)
                        }
                    }
                }
                .listStyle(.plain)
            }

            Spacer()

            HStack {
                TextField("Add a note", text: $newNote)
                    .textFieldStyle(.roundedBorder)
                    .onSubmit(addNote)
                Button(action: addNote) {
                    Image(systemName: "plus")
                }
                .disabled(newNote.isEmpty)
            }
        }
        .padding()
    }

    private func addNote() {
        let trimmed = newNote.trimmingCharacters(in: .whitespacesAndNewlines)
        guard !trimmed.isEmpty else { return }
        store.add(trimmed, to: selectedDate)
        newNote = ""
    }

    private func changeMonth(by value: Int) {
        guard let newMonth = calendar.date(byAdding: .month, value: value, to: displayedMonth) else { return }
        slideForward = value > 0
        withAnimation(.easeInOut(duration: 0.25)) {
            displayedMonth = newMonth
        }
    }
}

struct DayCell: View {
    let date: Date
    let isSelected: Bool
    let isToday: Bool
    let noteCount: Int

    var body: some View {
        VStack(spacing: 4) {
            Text("\(Calendar.current.component(.day, from: date))")
                .font(.system(.body, design: .rounded).weight(isToday ? .bold : .regular))
                .foregroundStyle(isToday && !isSelected ? Color.accentColor : (isSelected ? .white : .primary))
                .frame(width: 30, height: 30)
                .background(
                    Circle().fill(isSelected ? Color.accentColor : Color.clear)
                )
            HStack(spacing: 3) {
                ForEach(0..<min(noteCount, 3), id: \.self) { _ in
                    Circle()
                        .fill(isSelected ? Color.accentColor : Color.orange)
                        .frame(width: 5, height: 5)
                }
            }
            .frame(height: 6)
        }
        .frame(maxWidth: .infinity, minHeight: 56)
        .background(
            RoundedRectangle(cornerRadius: 8)
                .fill(isToday ? Color.accentColor.opacity(0.08) : Color.secondary.opacity(0.04))
        )
        .contentShape(Rectangle())
    }
}
