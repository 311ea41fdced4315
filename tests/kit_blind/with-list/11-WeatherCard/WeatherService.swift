import Foundation

struct GeocodingResponse: Decodable {
    struct Place: Decodable {
        let name: String
        let latitude: Double
        let longitude: Double
        let country: String?
        let admin1: String?
    }
    let results: [Place]?
}

struct ForecastResponse: Decodable {
    struct Current: Decodable {
        let temperature_2m: Double
        let relative_humidity_2m: Double
        let apparent_temperature: Double
        let weather_code: Int
        let wind_speed_10m: Double
        let is_day: Int
    }
    struct Daily: Decodable {
        let time: [String]
        let weather_code: [Int]
        let temperature_2m_max: [Double]
        let temperature_2m_min: [Double]
        let precipitation_probability_max: [Int?]?
    }
    let current: Current
    let daily: Daily
}

struct DayForecast: Identifiable {
    let id = UUID()
    let date: Date
    let code: Int
    let high: Double
    let low: Double
    let rainChance: Int?
}

struct WeatherReport {
    let placeName: String
    let temperature: Double
    let feelsLike: Double
    let humidity: Double
    let wind: Double
    let code: Int
    let isDay: Bool
    let days: [DayForecast]
}

enum WeatherError: LocalizedError {
    case cityNotFound(String)
    case badResponse

    var errorDescription: String? {
        switch self {
        case .cityNotFound(let city): return "Couldn't find a place called \"\(city)\"."
        case .badResponse: return "The weather service returned an unexpected response."
        }
    }
}

struct WeatherService {
    func fetch(city: String, fahrenheit: Bool) async throws -> WeatherReport {
        var geo = URLComponents(string: "https://geocoding-api.open-meteo.com/v1/search")
        geo?.queryItems = [
            URLQueryItem(name: "name", value: city),
            URLQueryItem(name: "count", value: "1")
        ]
        guard let geoURL = geo?.url else { throw WeatherError.badResponse }
        let (geoData, _) = try await URLSession.shared.data(from: geoURL)
        let places = try JSONDecoder().decode(GeocodingResponse.self, from: geoData)
        guard let place = places.results?.first else { throw WeatherError.cityNotFound(city) }

        var comps = URLComponents(string: "https://api.open-meteo.com/v1/forecast")
        comps?.queryItems = [
            URLQueryItem(name: "latitude", value: String(place.latitude)),
            URLQueryItem(name: "longitude", value: String(place.longitude)),
            URLQueryItem(name: "current", value: "temperature_2m,relative_humidity_2m,apparent_temperature,weather_code,wind_speed_10m,is_day"),
            URLQueryItem(name: "daily", value: "weather_code,temperature_2m_max,temperature_2m_min,precipitation_probability_max"),
            URLQueryItem(name: "timezone", value: "auto"),
            URLQueryItem(name: "forecast_days", value: "6"),
            URLQueryItem(name: "temperature_unit", value: fahrenheit ? "fahrenheit" : "celsius")
        ]
        guard let url = comps?.url else { throw WeatherError.badResponse }
        let (data, response) = try await URLSession.shared.data(from: url)
        guard let http = response as? HTTPURLResponse, http.statusCode == 200 else {
            throw WeatherError.badResponse
        }
        let forecast = try JSONDecoder().decode(ForecastResponse.self, from: data)

        let dayFormatter = DateFormatter()
        dayFormatter.dateFormat = "yyyy-MM-dd"
        var days: [DayForecast] = []
        for i in forecast.daily.time.indices {
            guard let date = dayFormatter.date(from: forecast.daily.time[i]),
                  i < forecast.daily.weather_code.count,
                  i < forecast.daily.temperature_2m_max.count,
                  i < forecast.daily.temperature_2m_min.count else { continue }
            let rain = forecast.daily.precipitation_probability_max.flatMap { i < $0.count ? $0[i] : nil }
            days.append(DayForecast(date: date,
                                    code: forecast.daily.weather_code[i],
                                    high: forecast.daily.temperature_2m_max[i],
                                    low: forecast.daily.temperature_2m_min[i],
                                    rainChance: rain))
        }

        let region = [place.admin1, place.country].compactMap { $0 }.joined(separator: ", ")
        return WeatherReport(
            placeName: region.isEmpty ? place.name : "\(place.name), \(region)",
            temperature: forecast.current.temperature_2m,
            feelsLike: forecast.current.apparent_temperature,
            humidity: forecast.current.relative_humidity_2m,
            wind: forecast.current.wind_speed_10m,
            code: forecast.current.weather_code,
            isDay: forecast.current.is_day == 1,
            days: days
        )
    }
}

enum WeatherCode {
    static func describe(_ code: Int) -> String {
        switch code {
        case 0: return "Clear sky"
        case 1, 2: return "Partly cloudy"
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

    static func symbol(_ code: Int, isDay: Bool = true) -> String {
        switch code {
        case 0: return isDay ? "sun.max.fill" : "moon.stars.fill"
        case 1, 2: return isDay ? "cloud.sun.fill" : "cloud.moon.fill"
        case 3: return "cloud.fill"
        case 45, 48: return "cloud.fog.fill"
        case 51...57: return "cloud.drizzle.fill"
        case 61...67, 80...82: return "cloud.rain.fill"
        case 71...77, 85, 86: return "cloud.snow.fill"
        case 95...99: return "cloud.bolt.rain.fill"
        default: return "questionmark.circle"
        }
    }
}
