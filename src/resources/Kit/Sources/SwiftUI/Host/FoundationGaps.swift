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
