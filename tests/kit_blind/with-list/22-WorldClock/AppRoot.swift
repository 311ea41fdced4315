import SwiftUI

struct City: Identifiable, Codable, Hashable {
    var id: String { timeZoneID }
    var name: String
    var timeZoneID: String

    var timeZone: TimeZone { TimeZone(identifier: timeZoneID) ?? .current }
}

struct AppRoot: View {
    @AppStorage("worldClockCities") private var citiesData: Data = Data()
    @State private var cities: [City] = []
    @State private var showingAdd = false

    private let defaultCities = [
        City(name: "London", timeZoneID: "Europe/London"),
        City(name: "New York", timeZoneID: "America/New_York"),
        City(name: "Tokyo", timeZoneID: "Asia/Tokyo")
    ]

    var body: some View {
        NavigationStack {
            TimelineView(.periodic(from: .now, by: 1)) { context in
                ScrollView {
                    LazyVGrid(columns: [GridItem(.adaptive(minimum: 200), spacing: 20)], spacing: 20) {
                        ForEach(cities) { city in
                            CityClockCard(city: city, date: context.date) {
                                cities.removeAll { $0.id == city.id }
                                save()
                            }
                        }
                    }
                    .padding(20)
                }
            }
            .navigationTitle("World Clock")
            .toolbar {
                ToolbarItem {
                    Button {
                        showingAdd = true
                    } label: {
                        Label("Add City", systemImage: "plus")
                    }
                }
            }
            .sheet(isPresented: $showingAdd) {
                AddCitySheet(existing: Set(cities.map(\.timeZoneID))) { city in
                    cities.append(city)
                    save()
                }
            }
        }
        .onAppear(perform: load)
    }

    private func load() {
        if let saved = try? JSONDecoder().decode([City].self, from: citiesData), !saved.isEmpty {
            cities = saved
        } else {
            cities = defaultCities
        }
    }

    private func save() {
        citiesData = (try? JSONEncoder().encode(cities)) ?? Data()
    }
}

struct CityClockCard: View {
    let city: City
    let date: Date
    let onRemove: () -> Void
    @State private var hovering = false

    private var hour: Int {
        var cal = Calendar(identifier: .gregorian)
        cal.timeZone = city.timeZone
        return cal.component(.hour, from: date)
    }

    private var isNight: Bool { hour < 6 || hour >= 19 }

    private var offsetText: String {
        let diff = city.timeZone.secondsFromGMT(for: date) - TimeZone.current.secondsFromGMT(for: date)
        let hours = Double(diff) / 3600
        if diff == 0 { return "Same time" }
        let formatted = hours == hours.rounded() ? String(Int(hours)) : String(format: "%.1f", hours)
        return diff > 0 ? "+\(formatted) h" : "\(formatted) h"
    }

    private var timeText: String {
        let f = DateFormatter()
        f.timeZone = city.timeZone
        f.dateFormat = "HH:mm"
        return f.string(from: date)
    }

    private var dayText: String {
        let f = DateFormatter()
        f.timeZone = city.timeZone
        f.dateFormat = "EEE d MMM"
        return f.string(from: date)
    }

    var body: some View {
        VStack(spacing: 10) {
            ClockFace(date: date, timeZone: city.timeZone, isNight: isNight)
                .frame(width: 140, height: 140)
                .shadow(radius: 3)
            HStack(spacing: 6) {
                Image(systemName: isNight ? "moon.fill" : "sun.max.fill")
                    .foregroundStyle(isNight ? .indigo : .yellow)
                Text(city.name)
                    .font(.headline)
            }
            Text(timeText)
                .font(.title2.monospacedDigit())
            Text("\(dayText) · \(offsetText)")
                .font(.caption)
                .foregroundStyle(.secondary)
        }
        .padding()
        .frame(maxWidth: .infinity)
        .background(RoundedRectangle(cornerRadius: 16).fill(.regularMaterial))
        .overlay(alignment: .topTrailing) {
            if hovering {
                Button(action: onRemove) {
                    Image(systemName: "xmark.circle.fill")
                        .foregroundStyle(.secondary)
                }
                .buttonStyle(.plain)
                .padding(8)
            }
        }
        .onHover { hovering = $0 }
    }
}

struct AddCitySheet: View {
    let existing: Set<String>
    let onAdd: (City) -> Void
    @Environment(\.dismiss) private var dismiss
    @State private var search = ""

    private var results: [String] {
        let all = TimeZone.knownTimeZoneIdentifiers.filter { $0.contains("/") && !existing.contains($0) }
        guard !search.isEmpty else { return all }
        return all.filter { $0.localizedCaseInsensitiveContains(search.replacingOccurrences(of: " ", with: "_")) }
    }

    var body: some View {
        VStack(spacing: 12) {
            HStack {
                Text("Add City").font(.title2.bold())
                Spacer()
                Button("Cancel") { dismiss() }
                    .keyboardShortcut(.cancelAction)
            }
            TextField("Search time zones (e.g. Paris, Sydney)", text: $search)
                .textFieldStyle(.roundedBorder)
            List(results, id: \.self) { id in
                Button {
                    let name = id.split(separator: "/").last.map { $0.replacingOccurrences(of: "_", with: " ") } ?? id
                    onAdd(City(name: name, timeZoneID: id))
                    dismiss()
                } label: {
                    HStack {
                        Text(id.replacingOccurrences(of: "_", with: " "))
                        Spacer()
                        Text(TimeZone(identifier: id)?.abbreviation() ?? "")
                            .foregroundStyle(.secondary)
                    }
                    .contentShape(Rectangle())
                }
                .buttonStyle(.plain)
            }
        }
        .padding()
        .frame(width: 420, height: 460)
    }
}
