import SwiftUI

enum ConversionCategory: String, CaseIterable, Identifiable, Hashable {
    case length = "Length"
    case mass = "Weight"
    case temperature = "Temperature"
    case volume = "Volume"
    case speed = "Speed"

    var id: String { rawValue }

    var icon: String {
        switch self {
        case .length: return "ruler"
        case .mass: return "scalemass"
        case .temperature: return "thermometer.medium"
        case .volume: return "drop"
        case .speed: return "speedometer"
        }
    }

    var units: [Dimension] {
        switch self {
        case .length:
            return [UnitLength.millimeters, .centimeters, .meters, .kilometers, .inches, .feet, .yards, .miles]
        case .mass:
            return [UnitMass.grams, .kilograms, .ounces, .pounds, .stones]
        case .temperature:
            return [UnitTemperature.celsius, .fahrenheit, .kelvin]
        case .volume:
            return [UnitVolume.milliliters, .liters, .cups, .fluidOunces, .pints, .gallons]
        case .speed:
            return [UnitSpeed.metersPerSecond, .kilometersPerHour, .milesPerHour, .knots]
        }
    }
}

struct AppRoot: View {
    @State private var selectedCategory: ConversionCategory? = .length

    var body: some View {
        NavigationSplitView {
            List(ConversionCategory.allCases, selection: $selectedCategory) { category in
                Label(category.rawValue, systemImage: category.icon)
                    .tag(category)
            }
            .navigationSplitViewColumnWidth(min: 160, ideal: 180)
            .navigationTitle("Converter")
        } detail: {
            if let category = selectedCategory {
                ConverterView(category: category)
                    .id(category)
            } else {
                Text("Choose a category")
                    .foregroundStyle(.secondary)
            }
        }
        .frame(minWidth: 640, minHeight: 380)
    }
}

struct ConverterView: View {
    let category: ConversionCategory

    @State private var inputValue: Double = 1
    @State private var fromIndex = 0
    @State private var toIndex = 1
    @State private var precision = 3

    private let formatter = MeasurementFormatter()

    private var result: Double {
        let units = category.units
        guard units.indices.contains(fromIndex), units.indices.contains(toIndex) else { return 0 }
        let measurement = Measurement(value: inputValue, unit: units[fromIndex])
        return measurement.converted(to: units[toIndex]).value
    }

    private func symbol(_ index: Int) -> String {
        let units = category.units
        guard units.indices.contains(index) else { return "" }
        return units[index].symbol
    }

    private func name(for unit: Dimension) -> String {
        formatter.unitStyle = .long
        formatter.unitOptions = .providedUnit
        return formatter.string(from: unit).capitalized
    }

    var body: some View {
        Form {
            Section("Input") {
                TextField("Value", value: $inputValue, format: .number)
                    .font(.title2)
                    .textFieldStyle(.roundedBorder)

                Picker("From", selection: $fromIndex) {
                    ForEach(category.units.indices, id: \.self) { i in
                        Text("\(name(for: category.units[i])) (\(category.units[i].symbol))").tag(i)
                    }
                }
            }

            Section {
                HStack {
                    Spacer()
                    Button {
                        withAnimation(.bouncy) {
                            swap(&fromIndex, &toIndex)
                        }
                    } label: {
                        Label("Swap", systemImage: "arrow.up.arrow.down")
                    }
                    .buttonStyle(.bordered)
                    Spacer()
                }
            }

            Section("Output") {
                Picker("To", selection: $toIndex) {
                    ForEach(category.units.indices, id: \.self) { i in
                        Text("\(name(for: category.units[i])) (\(category.units[i].symbol))").tag(i)
                    }
                }

                HStack(alignment: .firstTextBaseline) {
                    Text(result, format: .number.precision(.fractionLength(0...precision)))
                        .font(.system(size: 34, weight: .bold, design: .rounded))
                        .textSelection(.enabled)
                        .contentTransition(.numericText())
                        .animation(.default, value: result)
                    Text(symbol(toIndex))
                        .font(.title2)
                        .foregroundStyle(.secondary)
                }

                Stepper("Decimal places: \(precision)", value: $precision, in: 0...8)
            }

            Section {
                Text("\(inputValue.formatted()) \(symbol(fromIndex)) = \(result.formatted(.number.precision(.fractionLength(0...precision)))) \(symbol(toIndex))")
                    .foregroundStyle(.secondary)
            }
        }
        .formStyle(.grouped)
        .navigationTitle(category.rawValue)
    }
}
