import SwiftUI

struct AppRoot: View {
    @AppStorage("planner.events") private var eventsData = Data()
    @State private var events: [PlannedEvent] = []
    @State private var selection: PlannedEvent.ID?

    private var upcoming: [PlannedEvent] {
        events.filter { !$0.isPast }.sorted { $0.start < $1.start }
    }

    private var past: [PlannedEvent] {
        events.filter(\.isPast).sorted { $0.start > $1.start }
    }

    var body: some View {
        NavigationSplitView {
            List(selection: $selection) {
                Section("Upcoming") {
                    ForEach(upcoming) { event in
                        EventRow(event: event).tag(event.id)
                    }
                }
                if !past.isEmpty {
                    Section("Past") {
                        ForEach(past) { event in
                            EventRow(event: event)
                                .tag(event.id)
                                .opacity(0.6)
                        }
                    }
                }
            }
            .navigationSplitViewColumnWidth(min: 230, ideal: 260)
            .toolbar {
                Button {
                    let event = PlannedEvent.blank()
                    events.append(event)
                    selection = event.id
                } label: {
                    Label("New Event", systemImage: "calendar.badge.plus")
                }
            }
            .onDeleteCommand {
                if let selection {
                    events.removeAll { $0.id == selection }
                    self.selection = nil
                }
            }
        } detail: {
            if let selection, let index = events.firstIndex(where: { $0.id == selection }) {
                EventDetail(event: $events[index])
            } else {
                ContentUnavailableView("Plan Something Fun", systemImage: "party.popper",
                                       description: Text("Select an event or create a new one."))
            }
        }
        .frame(minWidth: 780, minHeight: 520)
        .onAppear {
            events = (try? JSONDecoder().decode([PlannedEvent].self, from: eventsData)) ?? []
        }
        .onChange(of: events) { _, newValue in
            eventsData = (try? JSONEncoder().encode(newValue)) ?? Data()
        }
    }
}

struct EventRow: View {
    let event: PlannedEvent

    var body: some View {
        HStack(spacing: 10) {
            Text(event.emoji)
                .font(.title)
            VStack(alignment: .leading, spacing: 2) {
                Text(event.title)
                    .font(.headline)
                Text(event.start, format: .dateTime.weekday().day().month().hour().minute())
                    .font(.caption)
                    .foregroundStyle(.secondary)
            }
            Spacer()
            if !event.isPast {
                CountdownBadge(days: event.daysUntil)
            }
        }
        .padding(.vertical, 3)
    }
}

struct CountdownBadge: View {
    let days: Int

    var body: some View {
        Text(days == 0 ? "Today" : days == 1 ? "1 day" : "\(days) days")
            .font(.caption.bold())
            .padding(.horizontal, 8)
            .padding(.vertical, 3)
            .background(days <= 3 ? Color.orange.opacity(0.2) : Color.accentColor.opacity(0.15), in: Capsule())
            .foregroundStyle(days <= 3 ? Color.orange : Color.accentColor)
    }
}

struct EventDetail: View {
    @Binding var event: PlannedEvent
    @State private var newGuest = ""

    private let emojis = ["🎉", "🎂", "🍕", "🏕️", "💼", "🎵", "✈️", "💍", "🏀", "🍷"]

    var body: some View {
        Form {
            Section {
                HStack {
                    Menu(event.emoji) {
                        ForEach(emojis, id: \.self) { e in
                            Button(e) { event.emoji = e }
                        }
                    }
                    .menuStyle(.borderlessButton)
                    .fixedSize()
                    TextField("Title", text: $event.title)
                        .font(.title2)
                }
                if !event.isPast {
                    LabeledContent("Countdown") {
                        Text(event.start, style: .relative)
                            .monospacedDigit()
                    }
                }
            }

            Section("When") {
                Toggle("All day", isOn: $event.isAllDay)
                DatePicker("Starts",
                           selection: $event.start,
                           displayedComponents: event.isAllDay ? [.date] : [.date, .hourAndMinute])
                DatePicker("Ends",
                           selection: $event.end,
                           in: event.start...,
                           displayedComponents: event.isAllDay ? [.date] : [.date, .hourAndMinute])
                LabeledContent("Duration") {
                    Text(Duration.seconds(event.end.timeIntervalSince(event.start)),
                         format: .units(allowed: [.days, .hours, .minutes], width: .wide))
                }
            }
            .onChange(of: event.start) { oldValue, newValue in
                let length = event.end.timeIntervalSince(oldValue)
                event.end = newValue.addingTimeInterval(max(length, 0))
            }

            Section("Where") {
                TextField("Location", text: $event.location, prompt: Text("Add a location"))
            }

            Section {
                ForEach($event.guests) { $guest in
                    HStack {
                        Image(systemName: guest.rsvp.symbol)
                            .foregroundStyle(color(for: guest.rsvp))
                        TextField("Name", text: $guest.name)
                            .textFieldStyle(.plain)
                        Picker("RSVP", selection: $guest.rsvp) {
                            ForEach(RSVP.allCases) { Text($0.rawValue).tag($0) }
                        }
                        .labelsHidden()
                        .frame(width: 110)
                        Button {
                            event.guests.removeAll { $0.id == guest.id }
                        } label: {
                            Image(systemName: "minus.circle")
                        }
                        .buttonStyle(.borderless)
                    }
                }
                HStack {
                    TextField("Add guest", text: $newGuest)
                        .onSubmit(addGuest)
                    Button("Add", action: addGuest)
                        .disabled(newGuest.trimmingCharacters(in: .whitespaces).isEmpty)
                }
            } header: {
                HStack {
                    Text("Guests (\(event.guests.count))")
                    Spacer()
                    Text("\(event.count(.going)) going · \(event.count(.maybe)) maybe · \(event.count(.declined)) declined")
                        .font(.caption)
                        .foregroundStyle(.secondary)
                }
            }

            Section("Notes") {
                TextEditor(text: $event.notes)
                    .frame(minHeight: 80)
            }
        }
        .formStyle(.grouped)
        .navigationTitle(event.title)
    }

    private func addGuest() {
        let name = newGuest.trimmingCharacters(in: .whitespaces)
        guard !name.isEmpty else { return }
        withAnimation {
            event.guests.append(Guest(name: name))
        }
        newGuest = ""
    }

    private func color(for rsvp: RSVP) -> Color {
        switch rsvp {
        case .pending: return .gray
        case .going: return .green
        case .maybe: return .orange
        case .declined: return .red
        }
    }
}
