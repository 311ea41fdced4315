import Foundation

struct City: Identifiable, Hashable {
    let id = UUID()
    let name: String
    let latitude: Double
    let longitude: Double

    static let all: [City] = [
        City(name: "London", latitude: 51.5072, longitude: -0.1276),
        City(name: "New York", latitude: 40.7128, longitude: -74.0060),
        City(name: "Tokyo", latitude: 35.6762, longitude: 139.6503),
        City(name: "Sydney", latitude: -33.8688, longitude: 151.2093),
        City(name: "Paris", latitude: 48.8566, longitude: 2.3522),
        City(name: "Cape Town", latitude: -33.9249, longitude: 18.4241)
    ]
}

struct ForecastResponse: Decodable {
    struct Current: Decodable {
        let temperature: Double
        let windspeed: Double
        let weathercode: Int
        let time: String
    }

    struct Daily: Decodable {
        let time: [String]
        let temperature_2m_max: [Double]
        let temperature_2m_min: [Double]
        let weathercode: [Int]
    }

    let current_weather: Current
    let daily: Daily
}

struct DayForecast: Identifiable {
    let id = UUID()
    let date: Date
    let high: Double
    let low: Double
    let code: Int
}

enum WeatherCode {
    static func symbol(for code: Int) -> String {
        switch code {
        case 0: return "sun.max.fill"
        case 1, 2: return "cloud.sun.fill"
        case 3: return "cloud.fill"
        case 45, 48: return "cloud.fog.fill"
        case 51...57: return "cloud.drizzle.fill"
        case 61...67, 80...82: return "cloud.rain.fill"
        case 71...77, 85, 86: return "cloud.snow.fill"
        case 95...99: return "cloud.bolt.rain.fill"
        default: return "questionmark.circle"
        }
    }

    static func description(for code: Int) -> String {
        switch code {
        case 0: return "Clear sky"
        case 1: return "Mainly clear"
        case 2: return "Partly cloudy"
        case 3: return "Overcast"
        case 45, 48: return "Fog"
        case 51...57: return "Drizzle"
        case 61...67: return "Rain"
        case 71...77: return "Snow"
        case 80...82: return "Rain showers"
        case 85, 86: return "Snow showers"
        case 95...99: return "Thunderstorm"
        default: return "Unknown"
        }
    }
}

enum WeatherError: LocalizedError {
    case badURL
    case badResponse(Int)

    var errorDescription: String? {
        switch self {
        case .badURL: return "Could not build the request URL."
        case .badResponse(let status): return "The server returned status \(status)."
        }
    }
}

struct WeatherService {
    func fetch(for city: City) async throws -> ForecastResponse {
        var components = URLComponents(string: "https://api.open-meteo.com/v1/forecast")
        components?.queryItems = [
            URLQueryItem(name: "latitude", value: String(city.latitude)),
            URLQueryItem(name: "longitude", value: String(city.longitude)),
            URLQueryItem(name: "current_weather", value: "true"),
            URLQueryItem(name: "daily", value: "temperature_2m_max,temperature_2m_min,weathercode"),
            URLQueryItem(name: "timezone", value: "auto"),
            URLQueryItem(name: "forecast_days", value: "5")
        ]
        guard let url = components?.url else { throw WeatherError.badURL }

        let (data, response) = try await URLSession.shared.data(from: url)
        if let http = response as? HTTPURLResponse, !(200..<300).contains(http.statusCode) {
            throw WeatherError.badResponse(http.statusCode)
        }
        return try JSONDecoder().decode(ForecastResponse.self, from: data)
    }
}
