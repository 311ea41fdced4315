import SwiftUI

struct Habit: Identifiable {
    let id = UUID()
    var name: String
    var days: [Bool] = Array(repeating: false, count: 7)
}

struct AppRoot: View {
    @State private var habits = [Habit(name: "Exercise"), Habit(name: "Read"), Habit(name: "Meditate")]
    @State private var newHabit = ""
    private let weekdays = ["M", "T", "W", "T", "F", "S", "S"]

    var body: some View {
        VStack(alignment: .leading, spacing: 16) {
            Text("Habits").font(.largeTitle.bold())
            HStack {
                Text("").frame(width: 100)
                ForEach(0..<7, id: \.self) { i in
                    Text(weekdays[i]).frame(width: 30).font(.caption)
                }
            }
            ForEach($habits) { $habit in
                HStack {
                    Text(habit.name).frame(width: 100, alignment: .leading)
                    ForEach(0..<7, id: \.self) { day in
                        Circle()
                            .fill(habit.days[day] ? Color.green : Color.gray.opacity(0.2))
                            .frame(width: 30, height: 30)
                            .onTapGesture { habit.days[day].toggle() }
                    }
                    Text("\(habit.days.filter { $0 }.count)/7")
                        .foregroundStyle(.secondary)
                }
            }
            HStack {
                TextField("New habit", text: $newHabit)
                Button("Add") {
                    habits.append(Habit(name: newHabit))
                    newHabit = ""
                }
                .disabled(newHabit.isEmpty)
            }
        }
        .padding()
    }
}
