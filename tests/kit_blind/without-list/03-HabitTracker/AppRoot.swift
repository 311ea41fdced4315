import SwiftUI

struct AppRoot: View {
    @StateObject private var store = HabitStore()
    @State private var showingAdd = false

    private var lastDays: [Date] {
        let today = Calendar.current.startOfDay(for: .now)
        return (0..<14).reversed().compactMap {
            Calendar.current.date(byAdding: .day, value: -$0, to: today)
        }
    }

    var body: some View {
        NavigationStack {
            ScrollView {
                LazyVStack(spacing: 14) {
                    ForEach(store.habits) { habit in
                        HabitCard(habit: habit, days: lastDays) { date in
                            withAnimation(.snappy) {
                                store.toggle(habit, on: date)
                            }
                        }
                        .contextMenu {
                            Button("Delete Habit", role: .destructive) {
                                store.habits.removeAll { $0.id == habit.id }
                            }
                        }
                    }
                }
                .padding()
            }
            .navigationTitle("Habits")
            .toolbar {
                Button {
                    showingAdd = true
                } label: {
                    Label("Add Habit", systemImage: "plus")
                }
            }
            .sheet(isPresented: $showingAdd) {
                AddHabitSheet { name, icon in
                    store.habits.append(Habit(name: name, icon: icon))
                }
            }
        }
        .frame(minWidth: 560, minHeight: 400)
    }
}

struct HabitCard: View {
    let habit: Habit
    let days: [Date]
    let onToggle: (Date) -> Void

    private var today: Date { Calendar.current.startOfDay(for: .now) }

    var body: some View {
        VStack(alignment: .leading, spacing: 12) {
            HStack {
                Image(systemName: habit.icon)
                    .font(.title2)
                    .foregroundStyle(.tint)
                    .frame(width: 32)
                Text(habit.name)
                    .font(.headline)
                Spacer()
                Label("\(habit.currentStreak)", systemImage: "flame.fill")
                    .foregroundStyle(habit.currentStreak > 0 ? .orange : .secondary)
                    .font(.subheadline.bold())
                Toggle("Today", isOn: Binding(
                    get: { habit.isDone(on: today) },
                    set: { _ in onToggle(today) }
                ))
                .toggleStyle(.switch)
                .labelsHidden()
            }

            HStack(spacing: 6) {
                ForEach(days, id: \.self) { day in
                    let done = habit.isDone(on: day)
                    VStack(spacing: 4) {
                        RoundedRectangle(cornerRadius: 5)
                            .fill(done ? Color.green : Color.secondary.opacity(0.15))
                            .frame(width: 24, height: 24)
                            .overlay {
                                if Calendar.current.isDateInToday(day) {
                                    RoundedRectangle(cornerRadius: 5)
                                        .strokeBorder(Color.primary.opacity(0.5), lineWidth: 1.5)
                                }
                            }
                            .onTapGesture { onToggle(day) }
                        Text(day, format: .dateTime.weekday(.narrow))
                            .font(.caption2)
                            .foregroundStyle(.secondary)
                    }
                    .help(day.formatted(date: .abbreviated, time: .omitted))
                }
            }
        }
        .padding()
        .background(.background.secondary, in: RoundedRectangle(cornerRadius: 12))
    }
}

struct AddHabitSheet: View {
    @Environment(\.dismiss) private var dismiss
    @State private var name = ""
    @State private var icon = "star.fill"

    let onSave: (String, String) -> Void

    private let icons = ["star.fill", "drop.fill", "book.fill", "figure.walk", "bed.double.fill",
                         "leaf.fill", "heart.fill", "dumbbell.fill", "pencil", "music.note"]

    var body: some View {
        VStack(alignment: .leading, spacing: 16) {
            Text("New Habit")
                .font(.title2.bold())

            TextField("Name", text: $name)
                .textFieldStyle(.roundedBorder)

            Text("Icon")
                .font(.subheadline)
                .foregroundStyle(.secondary)

            LazyVGrid(columns: Array(repeating: GridItem(.fixed(36)), count: 5), spacing: 10) {
                ForEach(icons, id: \.self) { symbol in
                    Image(systemName: symbol)
                        .frame(width: 36, height: 36)
                        .background(icon == symbol ? Color.accentColor.opacity(0.25) : .clear,
                                    in: RoundedRectangle(cornerRadius: 8))
                        .onTapGesture { icon = symbol }
                }
            }

            HStack {
                Spacer()
                Button("Cancel", role: .cancel) { dismiss() }
                    .keyboardShortcut(.cancelAction)
                Button("Add") {
                    onSave(name, icon)
                    dismiss()
                }
                .keyboardShortcut(.defaultAction)
                .disabled(name.trimmingCharacters(in: .whitespaces).isEmpty)
            }
        }
        .padding(24)
        .frame(width: 340)
    }
}
