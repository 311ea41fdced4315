import SwiftUI

struct WorldCity: Identifiable, Codable, Hashable {
    var id = UUID()
    var name: String
    var timeZoneID: String

    var timeZone: TimeZone { TimeZone(identifier: timeZoneID) ?? .current }
}

struct AppRoot: View {
    @AppStorage("worldclock.cities") private var storedCities: Data = Data()
    @State private var cities: [WorldCity] = []
    @State private var showingAdd = false

    private let columns = [GridItem(.adaptive(minimum: 200), spacing: 16)]

    var body: some View {
        NavigationStack {
            TimelineView(.periodic(from: .now, by: 1)) { context in
                ScrollView {
                    LazyVGrid(columns: columns, spacing: 16) {
                        ForEach(cities) { city in
                            CityClockCard(city: city, now: context.date)
                                .contextMenu {
                                    Button("Remove", role: .destructive) {
                                        withAnimation { cities.removeAll { $0.id == city.id } }
                                    }
                                }
                        }
                    }
                    .padding()
                }
            }
            .navigationTitle("World Clock")
            .toolbar {
                Button {
                    showingAdd = true
                } label: {
                    Label("Add City", systemImage: "plus")
                }
            }
            .overlay {
                if cities.isEmpty {
                    ContentUnavailableView("No Cities", systemImage: "globe", description: Text("Add a city with the + button."))
                }
            }
            .sheet(isPresented: $showingAdd) {
                AddCitySheet { city in
                    withAnimation { cities.append(city) }
                }
            }
        }
        .frame(minWidth: 520, minHeight: 420)
        .onAppear(perform: load)
        .onChange(of: cities) { _, newValue in
            storedCities = (try? JSONEncoder().encode(newValue)) ?? Data()
        }
    }

    private func load() {
        if let decoded = try? JSONDecoder().decode([WorldCity].self, from: storedCities) {
            cities = decoded
        } else {
            cities = [
                WorldCity(name: "San Francisco", timeZoneID: "America/Los_Angeles"),
                WorldCity(name: "London", timeZoneID: "Europe/London"),
                WorldCity(name: "Tokyo", timeZoneID: "Asia/Tokyo")
            ]
        }
    }
}

struct CityClockCard: View {
    let city: WorldCity
    let now: Date

    private var localHour: Int {
        var calendar = Calendar.current
        calendar.timeZone = city.timeZone
        return calendar.component(.hour, from: now)
    }

    private var isDaytime: Bool { (6..<18).contains(localHour) }

    private var offsetDescription: String {
        let diff = city.timeZone.secondsFromGMT(for: now) - TimeZone.current.secondsFromGMT(for: now)
        if diff == 0 { return "Same time" }
        let hours = Double(diff) / 3600
        let formatted = hours == hours.rounded() ? String(Int(hours)) : String(format: "%.1f", hours)
        return diff > 0 ? "+\(formatted) hrs" : "\(formatted) hrs"
    }

    private var dayLabel: String {
        var calendar = Calendar.current
        calendar.timeZone = city.timeZone
        let theirDay = calendar.component(.day, from: now)
        let myDay = Calendar.current.component(.day, from: now)
        if theirDay == myDay { return "Today" }
        return city.timeZone.secondsFromGMT(for: now) > TimeZone.current.secondsFromGMT(for: now) ? "Tomorrow" : "Yesterday"
    }

    var body: some View {
        VStack(spacing: 10) {
            AnalogClock(date: now, timeZone: city.timeZone, isDaytime: isDaytime)
                .animation(.linear(duration: 0.2), value: now)

            Text(city.name)
                .font(.headline)

            Text(now.formatted(Date.FormatStyle(date: .omitted, time: .shortened, timeZone: city.timeZone)))
                .font(.title2.monospacedDigit())

            HStack(spacing: 6) {
                Image(systemName: isDaytime ? "sun.max.fill" : "moon.stars.fill")
                    .foregroundStyle(isDaytime ? .yellow : .indigo)
                Text("\(dayLabel), \(offsetDescription)")
                    .font(.caption)
                    .foregroundStyle(.secondary)
            }
        }
        .padding()
        .frame(maxWidth: .infinity)
        .background(
            RoundedRectangle(cornerRadius: 16)
                .fill(isDaytime
                      ? LinearGradient(colors: [.blue.opacity(0.15), .cyan.opacity(0.1)], startPoint: .top, endPoint: .bottom)
                      : LinearGradient(colors: [.indigo.opacity(0.35), .black.opacity(0.3)], startPoint: .top, endPoint: .bottom))
        )
    }
}

struct AddCitySheet: View {
    @Environment(\.dismiss) private var dismiss
    @State private var search = ""
    @State private var selectedID: String?
    @State private var displayName = ""

    let onAdd: (WorldCity) -> Void

    private var matches: [String] {
        let all = TimeZone.knownTimeZoneIdentifiers
        guard !search.isEmpty else { return all }
        return all.filter { $0.localizedCaseInsensitiveContains(search.replacingOccurrences(of: " ", with: "_")) }
    }

    var body: some View {
        VStack(alignment: .leading, spacing: 12) {
            Text("Add City").font(.title2.bold())
            TextField("Search time zones", text: $search)
                .textFieldStyle(.roundedBorder)
            List(matches, id: \.self, selection: $selectedID) { id in
                Text(id.replacingOccurrences(of: "_", with: " "))
            }
            .frame(height: 220)
            .onChange(of: selectedID) { _, newValue in
                if let newValue {
                    displayName = newValue.split(separator: "/").last.map { $0.replacingOccurrences(of: "_", with: " ") } ?? newValue
                }
            }
            TextField("Display name", text: $displayName)
                .textFieldStyle(.roundedBorder)
            HStack {
                Spacer()
                Button("Cancel") { dismiss() }
                    .keyboardShortcut(.cancelAction)
                Button("Add") {
                    if let selectedID {
                        onAdd(WorldCity(name: displayName, timeZoneID: selectedID))
                    }
                    dismiss()
                }
                .keyboardShortcut(.defaultAction)
                .disabled(selectedID == nil || displayName.isEmpty)
            }
        }
        .padding(20)
        .frame(width: 380)
    }
}
