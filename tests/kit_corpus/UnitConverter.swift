import SwiftUI

struct AppRoot: View {
    @State private var input = 100.0
    @State private var inputUnit = "Meters"
    @State private var outputUnit = "Feet"
    let units = ["Meters", "Kilometers", "Feet", "Miles"]
    let factors: [String: Double] = ["Meters": 1, "Kilometers": 1000, "Feet": 0.3048, "Miles": 1609.34]

    var result: Double { input * (factors[inputUnit] ?? 1) / (factors[outputUnit] ?? 1) }

    var body: some View {
        Form {
            Section("Input") {
                TextField("Value", value: $input, format: .number)
                Picker("From", selection: $inputUnit) {
                    ForEach(units, id: \.self) { Text($0) }
                }
            }
            Section("Output") {
                Picker("To", selection: $outputUnit) {
                    ForEach(units, id: \.self) { Text($0) }
                }
                .pickerStyle(.segmented)
                Text("\(result, specifier: "%.3f") \(outputUnit.lowercased())")
                    .font(.title2)
            }
        }
        .frame(width: 420)
    }
}
