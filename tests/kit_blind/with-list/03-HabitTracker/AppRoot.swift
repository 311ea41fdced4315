import SwiftUI

struct AppRoot: View {
    @StateObject private var store = HabitStore()
    @State private var showingAdd = false

    private var lastSevenDays: [Date] {
        let today = Calendar.current.startOfDay(for: Date())
        return (0..<7).reversed().compactMap {
            Calendar.current.date(byAdding: .day, value: -$0, to: today)
        }
    }

    var body: some View {
        NavigationStack {
            List {
                Section {
                    HStack {
                        Text("Habit")
                            .frame(maxWidth: .infinity, alignment: .leading)
                        ForEach(lastSevenDays, id: \.self) { day in
                            Text(day.formatted(.dateTime.weekday(.narrow)))
                                .frame(width: 28)
                        }
                        Text("Streak")
                            .frame(width: 60)
                    }
                    .font(.caption)
                    .foregroundStyle(.secondary)

                    ForEach(store.habits) { habit in
                        HabitRow(habit: habit, days: lastSevenDays) { day in
                            store.toggle(habit, on: day)
                        }
                    }
                    .onDelete { store.habits.remove(atOffsets: $0) }
                    .onMove { store.habits.move(fromOffsets: $0, toOffset: $1) }
                } footer: {
                    let doneToday = store.habits.filter { $0.isDone(on: Date()) }.count
                    Text("\(doneToday) of \(store.habits.count) done today")
                }
            }
            .navigationTitle("Habits")
            .toolbar {
                ToolbarItem(placement: .primaryAction) {
                    Button {
                        showingAdd = true
                    } label: {
                        Label("Add Habit", systemImage: "plus")
                    }
                }
            }
            .sheet(isPresented: $showingAdd) {
                AddHabitView { habit in
                    store.habits.append(habit)
                }
            }
        }
    }
}

struct HabitRow: View {
    let habit: Habit
    let days: [Date]
    let onToggle: (Date) -> Void

    var body: some View {
        HStack {
            Label {
                Text(habit.name)
            } icon: {
                Image(systemName: habit.icon)
                    .foregroundStyle(habit.color)
            }
            .frame(maxWidth: .infinity, alignment: .leading)

            ForEach(days, id: \.self) { day in
                let done = habit.isDone(on: day)
                Circle()
                    .fill(done ? habit.color : Color.secondary.opacity(0.15))
                    .overlay {
                        if done {
                            Image(systemName: "checkmark")
                                .font(.caption2.bold())
                                .foregroundStyle(.white)
                        }
                    }
                    .frame(width: 22, height: 22)
                    .frame(width: 28)
                    .contentShape(Circle())
                    .onTapGesture { onToggle(day) }
            }

            HStack(spacing: 2) {
                Image(systemName: "flame.fill")
                    .foregroundStyle(habit.currentStreak > 0 ? .orange : .secondary)
                Text("\(habit.currentStreak)")
                    .monospacedDigit()
            }
            .frame(width: 60)
        }
        .padding(.vertical, 4)
    }
}

struct AddHabitView: View {
    var onAdd: (Habit) -> Void
    @Environment(\.dismiss) private var dismiss
    @State private var name = ""
    @State private var icon = "star.fill"
    @State private var colorIndex = 0

    private let icons = ["star.fill", "drop.fill", "book.fill", "figure.run", "bed.double.fill", "leaf.fill", "heart.fill", "pencil", "music.note", "dumbbell.fill"]

    var body: some View {
        VStack(alignment: .leading, spacing: 16) {
            Text("New Habit")
                .font(.title2.bold())

            TextField("Name", text: $name)
                .textFieldStyle(.roundedBorder)

            Text("Icon").font(.headline)
            LazyVGrid(columns: Array(repeating: GridItem(.fixed(36)), count: 5), spacing: 8) {
                ForEach(icons, id: \.self) { symbol in
                    Image(systemName: symbol)
                        .frame(width: 32, height: 32)
                        .background(icon == symbol ? Habit.palette[colorIndex].opacity(0.25) : Color.clear)
                        .clipShape(RoundedRectangle(cornerRadius: 6))
                        .onTapGesture { icon = symbol }
                }
            }

            Text("Color").font(.headline)
            HStack {
                ForEach(Habit.palette.indices, id: \.self) { i in
                    Circle()
                        .fill(Habit.palette[i])
                        .frame(width: 24, height: 24)
                        .overlay(
                            Circle().stroke(Color.primary, lineWidth: colorIndex == i ? 2 : 0)
                        )
                        .onTapGesture { colorIndex = i }
                }
            }

            HStack {
                Spacer()
                Button("Cancel", role: .cancel) { dismiss() }
                Button("Add") {
                    onAdd(Habit(name: name, icon: icon, colorIndex: colorIndex))
                    dismiss()
                }
                .buttonStyle(.borderedProminent)
                .disabled(name.trimmingCharacters(in: .whitespaces).isEmpty)
                .keyboardShortcut(.defaultAction)
            }
        }
        .padding(24)
        .frame(width: 360)
    }
}
