import Foundation

// What Foundation has on a Mac and not on Linux, where the kit can stand in for it.

extension URL {
    private static func userFolder(_ name: String) -> URL {
        FileManager.default.homeDirectoryForCurrentUser.appendingPathComponent(name, isDirectory: true)
    }
    /// `~/.local/share`, where Linux keeps application data.
    public static var applicationSupportDirectory: URL {
        if let data = ProcessInfo.processInfo.environment["XDG_DATA_HOME"], !data.isEmpty {
            return URL(fileURLWithPath: data, isDirectory: true)
        }
        return userFolder(".local/share")
    }
    public static var documentsDirectory: URL { userFolder("Documents") }
    public static var downloadsDirectory: URL { userFolder("Downloads") }
    public static var desktopDirectory: URL { userFolder("Desktop") }
    public static var cachesDirectory: URL {
        if let cache = ProcessInfo.processInfo.environment["XDG_CACHE_HOME"], !cache.isEmpty {
            return URL(fileURLWithPath: cache, isDirectory: true)
        }
        return userFolder(".cache")
    }
    public static var homeDirectory: URL { FileManager.default.homeDirectoryForCurrentUser }
    public static var picturesDirectory: URL { userFolder("Pictures") }
    public static var musicDirectory: URL { userFolder("Music") }
    public static var moviesDirectory: URL { userFolder("Videos") }
}

extension AttributedString {
    public struct MarkdownParsingOptions: Sendable {
        public enum InterpretedSyntax: Sendable { case full, inlineOnly, inlineOnlyPreservingWhitespace }
        public var allowsExtendedAttributes = false
        public var interpretedSyntax = InterpretedSyntax.full
        public init(
            allowsExtendedAttributes: Bool = false, interpretedSyntax: InterpretedSyntax = .full,
            failurePolicy: FailurePolicy = .throwError, languageCode: String? = nil
        ) {
            self.allowsExtendedAttributes = allowsExtendedAttributes; self.interpretedSyntax = interpretedSyntax
        }
        public enum FailurePolicy: Sendable { case throwError, returnPartiallyParsedIfPossible }
    }
    /// The text of Markdown without its marks: emphasis, code and links read as plain words.
    public init(markdown: String, options: MarkdownParsingOptions = MarkdownParsingOptions(), baseURL: URL? = nil) throws {
        self.init(MarkdownText.plain(markdown))
    }
}

enum MarkdownText {
    /// Drops the inline marks of Markdown: `**`, `__`, `*`, `_`, `` ` `` and `[text](link)`.
    static func plain(_ markdown: String) -> String {
        var text = markdown
        if let links = try? NSRegularExpression(pattern: "\\[([^\\]]*)\\]\\([^)]*\\)") {
            text = links.stringByReplacingMatches(in: text, range: NSRange(text.startIndex..., in: text), withTemplate: "$1")
        }
        for mark in ["**", "__", "~~", "`"] { text = text.replacingOccurrences(of: mark, with: "") }
        if let emphasis = try? NSRegularExpression(pattern: "(?<![\\w*])[*_]([^*_\\n]+)[*_](?![\\w*])") {
            text = emphasis.stringByReplacingMatches(in: text, range: NSRange(text.startIndex..., in: text), withTemplate: "$1")
        }
        return text
    }
}

/// Measurements as text: the value in the locale's digits and the unit's symbol.
open class MeasurementFormatter: Formatter, @unchecked Sendable {
    public struct UnitOptions: OptionSet, Sendable {
        public let rawValue: UInt
        public init(rawValue: UInt) { self.rawValue = rawValue }
        public static let providedUnit = UnitOptions(rawValue: 1), naturalScale = UnitOptions(rawValue: 2)
        public static let temperatureWithoutUnit = UnitOptions(rawValue: 4)
    }
    open var unitOptions: UnitOptions = []
    open var unitStyle: Formatter.UnitStyle = .medium
    open var locale: Locale = .current
    open var numberFormatter: NumberFormatter = {
        let formatter = NumberFormatter()
        formatter.numberStyle = .decimal
        formatter.maximumFractionDigits = 2
        return formatter
    }()
    public override init() { super.init() }
    public required init?(coder: NSCoder) { super.init(coder: coder) }
    open func string<U: Unit>(from measurement: Measurement<U>) -> String {
        let number = numberFormatter.string(from: NSNumber(value: measurement.value)) ?? "\(measurement.value)"
        if unitOptions.contains(.temperatureWithoutUnit), measurement.unit is UnitTemperature { return number + "°" }
        return number + " " + measurement.unit.symbol
    }
    open func string(from unit: Unit) -> String { unit.symbol }
    open override func string(for obj: Any?) -> String? {
        guard let measurement = obj as? Measurement<Unit> else { return nil }
        return string(from: measurement)
    }
}

// On Linux a unit's members live on its own class only, so `.meters` where a `Dimension` is
// expected (a list of units of one kind) finds nothing; on a Mac it does.
extension Dimension {
    public static var kilometers: UnitLength { UnitLength.kilometers }
    public static var meters: UnitLength { UnitLength.meters }
    public static var centimeters: UnitLength { UnitLength.centimeters }
    public static var millimeters: UnitLength { UnitLength.millimeters }
    public static var micrometers: UnitLength { UnitLength.micrometers }
    public static var nanometers: UnitLength { UnitLength.nanometers }
    public static var inches: UnitLength { UnitLength.inches }
    public static var feet: UnitLength { UnitLength.feet }
    public static var yards: UnitLength { UnitLength.yards }
    public static var miles: UnitLength { UnitLength.miles }
    public static var nauticalMiles: UnitLength { UnitLength.nauticalMiles }
    public static var lightYears: UnitLength { UnitLength.lightYears }
    public static var kilograms: UnitMass { UnitMass.kilograms }
    public static var grams: UnitMass { UnitMass.grams }
    public static var milligrams: UnitMass { UnitMass.milligrams }
    public static var micrograms: UnitMass { UnitMass.micrograms }
    public static var metricTons: UnitMass { UnitMass.metricTons }
    public static var ounces: UnitMass { UnitMass.ounces }
    public static var pounds: UnitMass { UnitMass.pounds }
    public static var stones: UnitMass { UnitMass.stones }
    public static var shortTons: UnitMass { UnitMass.shortTons }
    public static var carats: UnitMass { UnitMass.carats }
    public static var celsius: UnitTemperature { UnitTemperature.celsius }
    public static var fahrenheit: UnitTemperature { UnitTemperature.fahrenheit }
    public static var kelvin: UnitTemperature { UnitTemperature.kelvin }
    public static var liters: UnitVolume { UnitVolume.liters }
    public static var milliliters: UnitVolume { UnitVolume.milliliters }
    public static var centiliters: UnitVolume { UnitVolume.centiliters }
    public static var deciliters: UnitVolume { UnitVolume.deciliters }
    public static var cubicMeters: UnitVolume { UnitVolume.cubicMeters }
    public static var cubicCentimeters: UnitVolume { UnitVolume.cubicCentimeters }
    public static var cubicInches: UnitVolume { UnitVolume.cubicInches }
    public static var cubicFeet: UnitVolume { UnitVolume.cubicFeet }
    public static var cups: UnitVolume { UnitVolume.cups }
    public static var pints: UnitVolume { UnitVolume.pints }
    public static var quarts: UnitVolume { UnitVolume.quarts }
    public static var gallons: UnitVolume { UnitVolume.gallons }
    public static var fluidOunces: UnitVolume { UnitVolume.fluidOunces }
    public static var tablespoons: UnitVolume { UnitVolume.tablespoons }
    public static var teaspoons: UnitVolume { UnitVolume.teaspoons }
    public static var imperialGallons: UnitVolume { UnitVolume.imperialGallons }
    public static var imperialPints: UnitVolume { UnitVolume.imperialPints }
    public static var imperialFluidOunces: UnitVolume { UnitVolume.imperialFluidOunces }
    public static var metersPerSecond: UnitSpeed { UnitSpeed.metersPerSecond }
    public static var kilometersPerHour: UnitSpeed { UnitSpeed.kilometersPerHour }
    public static var milesPerHour: UnitSpeed { UnitSpeed.milesPerHour }
    public static var knots: UnitSpeed { UnitSpeed.knots }
    public static var hours: UnitDuration { UnitDuration.hours }
    public static var minutes: UnitDuration { UnitDuration.minutes }
    public static var seconds: UnitDuration { UnitDuration.seconds }
    public static var milliseconds: UnitDuration { UnitDuration.milliseconds }
    public static var squareMeters: UnitArea { UnitArea.squareMeters }
    public static var squareKilometers: UnitArea { UnitArea.squareKilometers }
    public static var squareCentimeters: UnitArea { UnitArea.squareCentimeters }
    public static var squareMillimeters: UnitArea { UnitArea.squareMillimeters }
    public static var squareInches: UnitArea { UnitArea.squareInches }
    public static var squareFeet: UnitArea { UnitArea.squareFeet }
    public static var squareYards: UnitArea { UnitArea.squareYards }
    public static var squareMiles: UnitArea { UnitArea.squareMiles }
    public static var acres: UnitArea { UnitArea.acres }
    public static var ares: UnitArea { UnitArea.ares }
    public static var hectares: UnitArea { UnitArea.hectares }
    public static var joules: UnitEnergy { UnitEnergy.joules }
    public static var kilojoules: UnitEnergy { UnitEnergy.kilojoules }
    public static var calories: UnitEnergy { UnitEnergy.calories }
    public static var kilocalories: UnitEnergy { UnitEnergy.kilocalories }
    public static var kilowattHours: UnitEnergy { UnitEnergy.kilowattHours }
    public static var bars: UnitPressure { UnitPressure.bars }
    public static var millibars: UnitPressure { UnitPressure.millibars }
    public static var hectopascals: UnitPressure { UnitPressure.hectopascals }
    public static var kilopascals: UnitPressure { UnitPressure.kilopascals }
    public static var poundsForcePerSquareInch: UnitPressure { UnitPressure.poundsForcePerSquareInch }
}
