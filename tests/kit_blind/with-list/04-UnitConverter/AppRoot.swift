import SwiftUI

enum Category: String, CaseIterable, Identifiable {
    case length = "Length"
    case weight = "Weight"
    case temperature = "Temperature"
    case volume = "Volume"

    var id: String { rawValue }

    var icon: String {
        switch self {
        case .length: return "ruler"
        case .weight: return "scalemass"
        case .temperature: return "thermometer.medium"
        case .volume: return "drop"
        }
    }

    var units: [UnitDef] {
        switch self {
        case .length:
            return [
                UnitDef(name: "Millimeters", symbol: "mm", factor: 0.001),
                UnitDef(name: "Centimeters", symbol: "cm", factor: 0.01),
                UnitDef(name: "Meters", symbol: "m", factor: 1),
                UnitDef(name: "Kilometers", symbol: "km", factor: 1000),
                UnitDef(name: "Inches", symbol: "in", factor: 0.0254),
                UnitDef(name: "Feet", symbol: "ft", factor: 0.3048),
                UnitDef(name: "Yards", symbol: "yd", factor: 0.9144),
                UnitDef(name: "Miles", symbol: "mi", factor: 1609.344)
            ]
        case .weight:
            return [
                UnitDef(name: "Grams", symbol: "g", factor: 1),
                UnitDef(name: "Kilograms", symbol: "kg", factor: 1000),
                UnitDef(name: "Ounces", symbol: "oz", factor: 28.349523125),
                UnitDef(name: "Pounds", symbol: "lb", factor: 453.59237),
                UnitDef(name: "Stones", symbol: "st", factor: 6350.29318)
            ]
        case .temperature:
            return [
                UnitDef(name: "Celsius", symbol: "°C", factor: 1),
                UnitDef(name: "Fahrenheit", symbol: "°F", factor: 1),
                UnitDef(name: "Kelvin", symbol: "K", factor: 1)
            ]
        case .volume:
            return [
                UnitDef(name: "Milliliters", symbol: "mL", factor: 0.001),
                UnitDef(name: "Liters", symbol: "L", factor: 1),
                UnitDef(name: "Teaspoons", symbol: "tsp", factor: 0.00492892),
                UnitDef(name: "Tablespoons", symbol: "tbsp", factor: 0.0147868),
                UnitDef(name: "Cups", symbol: "cup", factor: 0.236588),
                UnitDef(name: "Fluid Ounces", symbol: "fl oz", factor: 0.0295735),
                UnitDef(name: "Gallons (US)", symbol: "gal", factor: 3.78541)
            ]
        }
    }
}

struct UnitDef: Hashable {
    let name: String
    let symbol: String
    let factor: Double
}

struct AppRoot: View {
    @State private var category: Category = .length
    @State private var fromIndex = 2
    @State private var toIndex = 5
    @State private var inputText = "1"

    private var units: [UnitDef] { category.units }

    private var result: Double? {
        guard let value = Double(inputText.replacingOccurrences(of: ",", with: ".")),
              units.indices.contains(fromIndex),
              units.indices.contains(toIndex) else { return nil }
        if category == .temperature {
            return convertTemperature(value, from: units[fromIndex].name, to: units[toIndex].name)
        }
        let base = value * units[fromIndex].factor
        return base / units[toIndex].factor
    }

    var body: some View {
        NavigationSplitView {
            List(Category.allCases, selection: Binding(
                get: { category },
                set: { if let c = $0 { selectCategory(c) } }
            )) { cat in
                Label(cat.rawValue, systemImage: cat.icon)
                    .tag(cat)
            }
            .navigationTitle("Converter")
        } detail: {
            VStack(spacing: 28) {
                Text(category.rawValue)
                    .font(.largeTitle.bold())

                HStack(alignment: .top, spacing: 20) {
                    VStack(alignment: .leading, spacing: 8) {
                        Text("From").font(.caption).foregroundStyle(.secondary)
                        Picker("From", selection: $fromIndex) {
                            ForEach(units.indices, id: \.self) { i in
                                Text(units[i].name).tag(i)
                            }
                        }
                        .labelsHidden()
                        TextField("Value", text: $inputText)
                            .textFieldStyle(.roundedBorder)
                            .font(.title2)
                    }
                    .frame(maxWidth: .infinity)

                    Button {
                        swap(&fromIndex, &toIndex)
                    } label: {
                        Image(systemName: "arrow.left.arrow.right")
                            .font(.title3)
                    }
                    .padding(.top, 28)
                    .help("Swap units")

                    VStack(alignment: .leading, spacing: 8) {
                        Text("To").font(.caption).foregroundStyle(.secondary)
                        Picker("To", selection: $toIndex) {
                            ForEach(units.indices, id: \.self) { i in
                                Text(units[i].name).tag(i)
                            }
                        }
                        .labelsHidden()
                        Text(result.map { formatted($0) } ?? "—")
                            .font(.title2.monospacedDigit())
                            .frame(maxWidth: .infinity, alignment: .leading)
                            .padding(6)
                            .background(RoundedRectangle(cornerRadius: 6).fill(Color.secondary.opacity(0.1)))
                            .textSelection(.enabled)
                    }
                    .frame(maxWidth: .infinity)
                }
                .frame(maxWidth: 560)

                if let result, units.indices.contains(fromIndex), units.indices.contains(toIndex) {
                    Text("\(inputText) \(units[fromIndex].symbol) = \(formatted(result)) \(units[toIndex].symbol)")
                        .font(.headline)
                        .foregroundStyle(.secondary)
                } else {
                    Text("Enter a number to convert")
                        .foregroundStyle(.red)
                }

                Spacer()
            }
            .padding(32)
        }
    }

    private func selectCategory(_ c: Category) {
        category = c
        fromIndex = 0
        toIndex = min(1, c.units.count - 1)
    }

    private func convertTemperature(_ value: Double, from: String, to: String) -> Double {
        let celsius: Double
        switch from {
        case "Fahrenheit": celsius = (value - 32) * 5 / 9
        case "Kelvin": celsius = value - 273.15
        default: celsius = value
        }
        switch to {
        case "Fahrenheit": return celsius * 9 / 5 + 32
        case "Kelvin": return celsius + 273.15
        default: return celsius
        }
    }

    private func formatted(_ value: Double) -> String {
        let formatter = NumberFormatter()
        formatter.numberStyle = .decimal
        formatter.maximumFractionDigits = 6
        formatter.minimumFractionDigits = 0
        return formatter.string(from: NSNumber(value: value)) ?? String(value)
    }
}
