import SwiftUI

struct DayForecast: Identifiable {
    let id = UUID()
    let day: String
    let icon: String
    let high: Int
    let low: Int
}

struct AppRoot: View {
    let forecast = [
        DayForecast(day: "Mon", icon: "sun.max.fill", high: 24, low: 15),
        DayForecast(day: "Tue", icon: "cloud.sun.fill", high: 22, low: 14),
        DayForecast(day: "Wed", icon: "cloud.rain.fill", high: 18, low: 12),
        DayForecast(day: "Thu", icon: "cloud.bolt.fill", high: 17, low: 11),
        DayForecast(day: "Fri", icon: "sun.max.fill", high: 25, low: 16),
    ]

    var body: some View {
        ZStack {
            LinearGradient(colors: [.blue, .cyan], startPoint: .topLeading, endPoint: .bottomTrailing)
                .ignoresSafeArea()
            VStack(spacing: 20) {
                Text("Cupertino, CA")
                    .font(.title)
                    .foregroundColor(.white)
                Image(systemName: "cloud.sun.fill")
                    .renderingMode(.original)
                    .resizable()
                    .aspectRatio(contentMode: .fit)
                    .frame(width: 120, height: 120)
                Text("23°")
                    .font(.system(size: 70, weight: .medium))
                    .foregroundColor(.white)
                HStack(spacing: 16) {
                    ForEach(forecast) { day in
                        VStack(spacing: 8) {
                            Text(day.day).font(.headline)
                            Image(systemName: day.icon)
                                .font(.title2)
                            Text("\(day.high)°").bold()
                            Text("\(day.low)°").foregroundStyle(.secondary)
                        }
                        .foregroundColor(.white)
                        .padding()
                        .background(.ultraThinMaterial)
                        .cornerRadius(12)
                    }
                }
            }
        }
    }
}
