import SwiftUI

struct City: Identifiable {
    let id = UUID()
    let name: String
    let timeZone: String
}

struct AppRoot: View {
    private let cities = [
        City(name: "New York", timeZone: "America/New_York"),
        City(name: "London", timeZone: "Europe/London"),
        City(name: "Paris", timeZone: "Europe/Paris"),
        City(name: "Tokyo", timeZone: "Asia/Tokyo"),
        City(name: "Sydney", timeZone: "Australia/Sydney"),
    ]

    var body: some View {
        TimelineView(.periodic(from: .now, by: 1)) { context in
            VStack(alignment: .leading, spacing: 12) {
                Text("World Clock")
                    .font(.largeTitle)
                    .bold()
                ForEach(cities) { city in
                    CityRow(city: city, date: context.date)
                }
            }
            .padding(24)
        }
    }
}

struct CityRow: View {
    let city: City
    let date: Date

    private var zone: TimeZone { TimeZone(identifier: city.timeZone) ?? .current }

    private var time: String {
        let formatter = DateFormatter()
        formatter.dateFormat = "HH:mm:ss"
        formatter.timeZone = zone
        return formatter.string(from: date)
    }

    private var day: String {
        let formatter = DateFormatter()
        formatter.dateFormat = "EEE d MMM"
        formatter.timeZone = zone
        return formatter.string(from: date)
    }

    private var isDaytime: Bool {
        var calendar = Calendar.current
        calendar.timeZone = zone
        let hour = calendar.component(.hour, from: date)
        return hour >= 7 && hour < 19
    }

    var body: some View {
        HStack {
            Image(systemName: isDaytime ? "sun.max.fill" : "moon.fill")
                .foregroundStyle(isDaytime ? .orange : .indigo)
                .frame(width: 28)
            VStack(alignment: .leading) {
                Text(city.name)
                    .font(.headline)
                Text(day)
                    .font(.caption)
                    .foregroundStyle(.secondary)
            }
            Spacer()
            Text(time)
                .font(.system(size: 28, weight: .medium, design: .monospaced))
        }
        .padding()
        .background(RoundedRectangle(cornerRadius: 12).fill(Color.gray.opacity(0.12)))
    }
}
