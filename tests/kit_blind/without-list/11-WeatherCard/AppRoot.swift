import SwiftUI

@MainActor
final class WeatherViewModel: ObservableObject {
    enum State {
        case idle
        case loading
        case loaded(ForecastResponse)
        case failed(String)
    }

    @Published var state: State = .idle
    private let service = WeatherService()

    func load(city: City) async {
        state = .loading
        do {
            let result = try await service.fetch(for: city)
            state = .loaded(result)
        } catch {
            state = .failed(error.localizedDescription)
        }
    }

    static func days(from response: ForecastResponse) -> [DayForecast] {
        let parser = DateFormatter()
        parser.dateFormat = "yyyy-MM-dd"
        let daily = response.daily
        return daily.time.indices.compactMap { i in
            guard let date = parser.date(from: daily.time[i]) else { return nil }
            return DayForecast(date: date,
                               high: daily.temperature_2m_max[i],
                               low: daily.temperature_2m_min[i],
                               code: daily.weathercode[i])
        }
    }
}

struct AppRoot: View {
    @StateObject private var viewModel = WeatherViewModel()
    @State private var city: City = City.all[0]
    @AppStorage("useFahrenheit") private var useFahrenheit = false

    var body: some View {
        VStack(spacing: 0) {
            HStack {
                Picker("City", selection: $city) {
                    ForEach(City.all) { Text($0.name).tag($0) }
                }
                .frame(maxWidth: 220)
                Spacer()
                Toggle("°F", isOn: $useFahrenheit)
                    .toggleStyle(.switch)
                Button {
                    Task { await viewModel.load(city: city) }
                } label: {
                    Image(systemName: "arrow.clockwise")
                }
                .help("Refresh")
            }
            .padding()

            content
                .frame(maxWidth: .infinity, maxHeight: .infinity)
        }
        .frame(minWidth: 440, minHeight: 480)
        .task(id: city) {
            await viewModel.load(city: city)
        }
    }

    @ViewBuilder
    private var content: some View {
        switch viewModel.state {
        case .idle, .loading:
            ProgressView("Fetching weather…")
        case .failed(let message):
            ContentUnavailableView {
                Label("Couldn't Load Weather", systemImage: "wifi.exclamationmark")
            } description: {
                Text(message)
            } actions: {
                Button("Try Again") {
                    Task { await viewModel.load(city: city) }
                }
            }
        case .loaded(let response):
            WeatherCard(city: city,
                        response: response,
                        days: WeatherViewModel.days(from: response),
                        useFahrenheit: useFahrenheit)
                .padding()
                .transition(.opacity.combined(with: .move(edge: .bottom)))
        }
    }
}

struct WeatherCard: View {
    let city: City
    let response: ForecastResponse
    let days: [DayForecast]
    let useFahrenheit: Bool

    private func temp(_ celsius: Double) -> String {
        let measurement = Measurement(value: celsius, unit: UnitTemperature.celsius)
        let converted = measurement.converted(to: useFahrenheit ? .fahrenheit : .celsius)
        return "\(Int(converted.value.rounded()))°"
    }

    private var gradient: LinearGradient {
        let code = response.current_weather.weathercode
        let colors: [Color]
        switch code {
        case 0, 1: colors = [.orange, .yellow]
        case 2, 3, 45, 48: colors = [.gray, .blue.opacity(0.6)]
        case 61...67, 80...82, 95...99: colors = [.indigo, .blue]
        case 71...77: colors = [.cyan, .white]
        default: colors = [.blue, .teal]
        }
        return LinearGradient(colors: colors, startPoint: .topLeading, endPoint: .bottomTrailing)
    }

    var body: some View {
        VStack(spacing: 18) {
            VStack(spacing: 4) {
                Text(city.name)
                    .font(.title.weight(.medium))
                Image(systemName: WeatherCode.symbol(for: response.current_weather.weathercode))
                    .symbolRenderingMode(.multicolor)
                    .font(.system(size: 64))
                    .padding(.vertical, 6)
                Text(temp(response.current_weather.temperature))
                    .font(.system(size: 64, weight: .thin))
                Text(WeatherCode.description(for: response.current_weather.weathercode))
                    .font(.title3)
                Label("\(response.current_weather.windspeed, specifier: "%.0f") km/h", systemImage: "wind")
                    .font(.callout)
                    .opacity(0.85)
            }

            Divider().overlay(.white.opacity(0.5))

            HStack(spacing: 0) {
                ForEach(days) { day in
                    VStack(spacing: 8) {
                        Text(day.date, format: .dateTime.weekday(.abbreviated))
                            .font(.caption.bold())
                        Image(systemName: WeatherCode.symbol(for: day.code))
                            .symbolRenderingMode(.multicolor)
                            .font(.title2)
                            .frame(height: 28)
                        Text(temp(day.high))
                            .font(.callout.bold())
                        Text(temp(day.low))
                            .font(.caption)
                            .opacity(0.75)
                    }
                    .frame(maxWidth: .infinity)
                }
            }
        }
        .foregroundStyle(.white)
        .padding(24)
        .background(gradient, in: RoundedRectangle(cornerRadius: 24, style: .continuous))
        .shadow(color: .black.opacity(0.25), radius: 12, y: 8)
    }
}
