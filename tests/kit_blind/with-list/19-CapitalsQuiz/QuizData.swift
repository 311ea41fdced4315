import Foundation

struct Country {
    let name: String
    let capital: String
    let flag: String
}

let countries: [Country] = [
    Country(name: "France", capital: "Paris", flag: "🇫🇷"),
    Country(name: "Germany", capital: "Berlin", flag: "🇩🇪"),
    Country(name: "Italy", capital: "Rome", flag: "🇮🇹"),
    Country(name: "Spain", capital: "Madrid", flag: "🇪🇸"),
    Country(name: "Portugal", capital: "Lisbon", flag: "🇵🇹"),
    Country(name: "Canada", capital: "Ottawa", flag: "🇨🇦"),
    Country(name: "Australia", capital: "Canberra", flag: "🇦🇺"),
    Country(name: "Brazil", capital: "Brasília", flag: "🇧🇷"),
    Country(name: "Japan", capital: "Tokyo", flag: "🇯🇵"),
    Country(name: "South Korea", capital: "Seoul", flag: "🇰🇷"),
    Country(name: "Egypt", capital: "Cairo", flag: "🇪🇬"),
    Country(name: "Kenya", capital: "Nairobi", flag: "🇰🇪"),
    Country(name: "Norway", capital: "Oslo", flag: "🇳🇴"),
    Country(name: "Sweden", capital: "Stockholm", flag: "🇸🇪"),
    Country(name: "Finland", capital: "Helsinki", flag: "🇫🇮"),
    Country(name: "Poland", capital: "Warsaw", flag: "🇵🇱"),
    Country(name: "Turkey", capital: "Ankara", flag: "🇹🇷"),
    Country(name: "Argentina", capital: "Buenos Aires", flag: "🇦🇷"),
    Country(name: "Mexico", capital: "Mexico City", flag: "🇲🇽"),
    Country(name: "India", capital: "New Delhi", flag: "🇮🇳"),
    Country(name: "Thailand", capital: "Bangkok", flag: "🇹🇭"),
    Country(name: "New Zealand", capital: "Wellington", flag: "🇳🇿"),
    Country(name: "Switzerland", capital: "Bern", flag: "🇨🇭"),
    Country(name: "Morocco", capital: "Rabat", flag: "🇲🇦")
]

struct Question: Identifiable {
    let id = UUID()
    let country: Country
    let options: [String]

    static func makeRound(count: Int) -> [Question] {
        countries.shuffled().prefix(count).map { country in
            let wrong = countries
                .filter { $0.capital != country.capital }
                .shuffled()
                .prefix(3)
                .map(\.capital)
            return Question(country: country, options: (wrong + [country.capital]).shuffled())
        }
    }
}
