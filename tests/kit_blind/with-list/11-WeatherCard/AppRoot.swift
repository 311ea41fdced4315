import SwiftUI

struct AppRoot: View {
    @AppStorage("lastCity") private var city = "Berlin"
    @AppStorage("useFahrenheit") private var useFahrenheit = false
    @State private var query = ""
    @State private var report: WeatherReport?
    @State private var errorMessage: String?
    @State private var isLoading = false

    private let service = WeatherService()

    var body: some View {
        VStack(spacing: 20) {
            HStack {
                TextField("Search city", text: $query)
                    .textFieldStyle(.roundedBorder)
                    .onSubmit { city = query }
                Button {
                    city = query
                } label: {
                    Image(systemName: "magnifyingglass")
                }
                .disabled(query.trimmingCharacters(in: .whitespaces).isEmpty)

                Picker("Units", selection: $useFahrenheit) {
                    Text("°C").tag(false)
                    Text("°F").tag(true)
                }
                .pickerStyle(.segmented)
                .labelsHidden()
                .frame(width: 100)
            }
            .frame(maxWidth: 520)

            if isLoading && report == nil {
                ProgressView("Loading weather…")
                    .frame(maxHeight: .infinity)
            } else if let errorMessage {
                VStack(spacing: 8) {
                    Image(systemName: "exclamationmark.triangle.fill")
                        .font(.largeTitle)
                        .foregroundStyle(.yellow)
                    Text(errorMessage)
                        .multilineTextAlignment(.center)
                    Button("Retry") { Task { await load() } }
                }
                .frame(maxHeight: .infinity)
            } else if let report {
                ScrollView {
                    VStack(spacing: 16) {
                        CurrentWeatherCard(report: report, unit: useFahrenheit ? "°F" : "°C")
                        ForecastStrip(days: report.days)
                    }
                    .frame(maxWidth: 520)
                    .overlay(alignment: .topTrailing) {
                        if isLoading {
                            ProgressView().controlSize(.small).padding()
                        }
                    }
                }
            }
        }
        .padding(24)
        .frame(maxWidth: .infinity, maxHeight: .infinity)
        .task(id: "\(city)-\(useFahrenheit)") {
            query = city
            await load()
        }
    }

    private func load() async {
        isLoading = true
        errorMessage = nil
        do {
            report = try await service.fetch(city: city, fahrenheit: useFahrenheit)
        } catch {
            errorMessage = error.localizedDescription
        }
        isLoading = false
    }
}

struct CurrentWeatherCard: View {
    let report: WeatherReport
    let unit: String

    private var gradient: LinearGradient {
        let colors: [Color] = report.isDay ? [.blue, .cyan] : [.indigo, .black.opacity(0.8)]
        return LinearGradient(colors: colors, startPoint: .topLeading, endPoint: .bottomTrailing)
    }

    var body: some View {
        VStack(alignment: .leading, spacing: 12) {
            Text(report.placeName)
                .font(.title3.weight(.semibold))
            HStack(alignment: .center) {
                Text("\(Int(report.temperature.rounded()))\(unit)")
                    .font(.system(size: 72, weight: .thin))
                Spacer()
                VStack {
                    Image(systemName: WeatherCode.symbol(report.code, isDay: report.isDay))
                        .font(.system(size: 56))
                        .symbolRenderingMode(.multicolor)
                    Text(WeatherCode.describe(report.code))
                        .font(.headline)
                }
            }
            HStack(spacing: 24) {
                Label("Feels \(Int(report.feelsLike.rounded()))\(unit)", systemImage: "thermometer.medium")
                Label("\(Int(report.humidity))%", systemImage: "humidity.fill")
                Label("\(report.wind, specifier: "%.0f") km/h", systemImage: "wind")
            }
            .font(.callout)
        }
        .foregroundStyle(.white)
        .padding(24)
        .background(gradient, in: RoundedRectangle(cornerRadius: 20))
        .shadow(color: .black.opacity(0.2), radius: 10, y: 5)
    }
}

struct ForecastStrip: View {
    let days: [DayForecast]

    var body: some View {
        HStack(spacing: 0) {
            ForEach(days) { day in
                VStack(spacing: 6) {
                    Text(Calendar.current.isDateInToday(day.date) ? "Today" : day.date.formatted(.dateTime.weekday(.abbreviated)))
                        .font(.caption.bold())
                    Image(systemName: WeatherCode.symbol(day.code))
                        .font(.title2)
                        .frame(height: 30)
                    Text("\(Int(day.high.rounded()))°")
                        .font(.callout.bold())
                    Text("\(Int(day.low.rounded()))°")
                        .font(.callout)
                        .foregroundStyle(.secondary)
                    if let rain = day.rainChance, rain > 0 {
                        Text("\(rain)%")
                            .font(.caption2)
                            .foregroundStyle(.blue)
                    }
                }
                .frame(maxWidth: .infinity)
            }
        }
        .padding(.vertical, 16)
        .background(.thinMaterial, in: RoundedRectangle(cornerRadius: 16))
    }
}
