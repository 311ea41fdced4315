import SwiftUI

enum UnitSystem: String, CaseIterable, Identifiable {
    case metric = "Metric"
    case imperial = "Imperial"
    var id: String { rawValue }
}

struct BMICategory {
    let name: String
    let range: ClosedRange<Double>
    let color: Color

    static let all: [BMICategory] = [
        BMICategory(name: "Underweight", range: 0...18.49, color: .blue),
        BMICategory(name: "Normal", range: 18.5...24.99, color: .green),
        BMICategory(name: "Overweight", range: 25...29.99, color: .orange),
        BMICategory(name: "Obese", range: 30...100, color: .red)
    ]

    static func forBMI(_ bmi: Double) -> BMICategory {
        all.first { $0.range.contains(bmi) } ?? all[all.count - 1]
    }
}

struct AppRoot: View {
    @AppStorage("unitSystem") private var units: UnitSystem = .metric
    @AppStorage("heightCm") private var heightCm: Double = 175
    @AppStorage("weightKg") private var weightKg: Double = 70

    private var bmi: Double {
        let m = heightCm / 100
        guard m > 0 else { return 0 }
        return weightKg / (m * m)
    }

    private var heightInches: Binding<Double> {
        Binding(get: { heightCm / 2.54 }, set: { heightCm = $0 * 2.54 })
    }

    private var weightPounds: Binding<Double> {
        Binding(get: { weightKg * 2.20462 }, set: { weightKg = $0 / 2.20462 })
    }

    private var healthyRange: (Double, Double) {
        let m = heightCm / 100
        return (18.5 * m * m, 24.9 * m * m)
    }

    var body: some View {
        let category = BMICategory.forBMI(bmi)

        HStack(spacing: 32) {
            VStack(alignment: .leading, spacing: 20) {
                Text("BMI Calculator")
                    .font(.largeTitle.bold())

                Picker("Units", selection: $units) {
                    ForEach(UnitSystem.allCases) { Text($0.rawValue).tag($0) }
                }
                .pickerStyle(.segmented)
                .labelsHidden()

                VStack(alignment: .leading, spacing: 6) {
                    Text("Height").font(.headline)
                    if units == .metric {
                        HStack {
                            Slider(value: $heightCm, in: 100...230, step: 1)
                            TextField("cm", value: $heightCm, format: .number.precision(.fractionLength(0)))
                                .textFieldStyle(.roundedBorder)
                                .frame(width: 60)
                            Text("cm")
                        }
                    } else {
                        HStack {
                            Slider(value: heightInches, in: 39...90, step: 1)
                            let inches = Int(heightInches.wrappedValue.rounded())
                            Text("\(inches / 12) ft \(inches % 12) in")
                                .monospacedDigit()
                                .frame(width: 80, alignment: .trailing)
                        }
                    }
                }

                VStack(alignment: .leading, spacing: 6) {
                    Text("Weight").font(.headline)
                    if units == .metric {
                        HStack {
                            Slider(value: $weightKg, in: 30...200, step: 0.5)
                            TextField("kg", value: $weightKg, format: .number.precision(.fractionLength(1)))
                                .textFieldStyle(.roundedBorder)
                                .frame(width: 60)
                            Text("kg")
                        }
                    } else {
                        HStack {
                            Slider(value: weightPounds, in: 66...440, step: 1)
                            TextField("lb", value: weightPounds, format: .number.precision(.fractionLength(0)))
                                .textFieldStyle(.roundedBorder)
                                .frame(width: 60)
                            Text("lb")
                        }
                    }
                }

                GroupBox {
                    VStack(alignment: .leading, spacing: 6) {
                        Text("Healthy weight for your height")
                            .font(.subheadline)
                            .foregroundStyle(.secondary)
                        Text(rangeText)
                            .font(.title3.weight(.semibold))
                    }
                    .frame(maxWidth: .infinity, alignment: .leading)
                    .padding(4)
                }

                Text("BMI is a rough screening tool and doesn't account for muscle mass, age or build.")
                    .font(.caption)
                    .foregroundStyle(.secondary)
            }
            .frame(maxWidth: 340)

            VStack(spacing: 16) {
                BMIGauge(bmi: bmi)
                    .frame(width: 280, height: 160)
                Text(bmi, format: .number.precision(.fractionLength(1)))
                    .font(.system(size: 56, weight: .bold, design: .rounded))
                    .foregroundStyle(category.color)
                Text(category.name)
                    .font(.title2)
                    .padding(.horizontal, 16)
                    .padding(.vertical, 6)
                    .background(Capsule().fill(category.color.opacity(0.2)))

                HStack(spacing: 12) {
                    ForEach(BMICategory.all, id: \.name) { c in
                        HStack(spacing: 4) {
                            Circle().fill(c.color).frame(width: 8, height: 8)
                            Text(c.name).font(.caption)
                        }
                    }
                }
            }
        }
        .padding(32)
        .frame(maxWidth: .infinity, maxHeight: .infinity)
    }

    private var rangeText: String {
        let (lo, hi) = healthyRange
        if units == .metric {
            return String(format: "%.1f – %.1f kg", lo, hi)
        }
        return String(format: "%.0f – %.0f lb", lo * 2.20462, hi * 2.20462)
    }
}

struct GaugeArc: Shape {
    let start: Double
    let end: Double

    func path(in rect: CGRect) -> Path {
        var p = Path()
        let center = CGPoint(x: rect.midX, y: rect.maxY)
        let radius = min(rect.width / 2, rect.height) - 12
        p.addArc(center: center, radius: radius,
                 startAngle: .degrees(180 + start * 180),
                 endAngle: .degrees(180 + end * 180),
                 clockwise: false)
        return p
    }
}

struct BMIGauge: View {
    let bmi: Double
    private let minBMI = 12.0
    private let maxBMI = 40.0

    private func fraction(_ value: Double) -> Double {
        min(max((value - minBMI) / (maxBMI - minBMI), 0), 1)
    }

    var body: some View {
        GeometryReader { geo in
            let center = CGPoint(x: geo.size.width / 2, y: geo.size.height)
            let radius = min(geo.size.width / 2, geo.size.height) - 12
            let angle = Angle.degrees(180 + fraction(bmi) * 180)

            ZStack {
                ForEach(BMICategory.all, id: \.name) { c in
                    GaugeArc(start: fraction(max(c.range.lowerBound, minBMI)),
                             end: fraction(min(c.range.upperBound + 0.01, maxBMI)))
                        .stroke(c.color, style: StrokeStyle(lineWidth: 20, lineCap: .butt))
                }

                Path { p in
                    p.move(to: center)
                    p.addLine(to: CGPoint(
                        x: center.x + CGFloat(cos(angle.radians)) * (radius - 6),
                        y: center.y + CGFloat(sin(angle.radians)) * (radius - 6)))
                }
                .stroke(Color.primary, style: StrokeStyle(lineWidth: 4, lineCap: .round))

                Circle()
                    .fill(Color.primary)
                    .frame(width: 14, height: 14)
                    .position(center)
            }
        }
    }
}
