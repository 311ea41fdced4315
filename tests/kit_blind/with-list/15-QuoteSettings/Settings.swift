import SwiftUI

enum AppTheme: String, CaseIterable, Identifiable {
    case system, light, dark
    var id: String { rawValue }
    var title: String { rawValue.capitalized }
}

enum AccentChoice: String, CaseIterable, Identifiable {
    case blue, purple, pink, orange, green, teal
    var id: String { rawValue }
    var color: Color {
        switch self {
        case .blue: return .blue
        case .purple: return .purple
        case .pink: return .pink
        case .orange: return .orange
        case .green: return .green
        case .teal: return .teal
        }
    }
}

enum FontStyleChoice: String, CaseIterable, Identifiable {
    case standard, serif, rounded, mono
    var id: String { rawValue }
    var design: Font.Design {
        switch self {
        case .standard: return .default
        case .serif: return .serif
        case .rounded: return .rounded
        case .mono: return .monospaced
        }
    }
}

enum AlignmentChoice: String, CaseIterable, Identifiable {
    case leading, center, trailing
    var id: String { rawValue }
    var textAlignment: TextAlignment {
        switch self {
        case .leading: return .leading
        case .center: return .center
        case .trailing: return .trailing
        }
    }
    var horizontal: HorizontalAlignment {
        switch self {
        case .leading: return .leading
        case .center: return .center
        case .trailing: return .trailing
        }
    }
    var symbol: String {
        switch self {
        case .leading: return "text.alignleft"
        case .center: return "text.aligncenter"
        case .trailing: return "text.alignright"
        }
    }
}

struct SettingsView: View {
    @Environment(\.dismiss) private var dismiss

    @AppStorage("theme") private var theme: AppTheme = .system
    @AppStorage("accent") private var accent: AccentChoice = .purple
    @AppStorage("fontStyle") private var fontStyle: FontStyleChoice = .serif
    @AppStorage("fontSize") private var fontSize: Double = 28
    @AppStorage("alignment") private var alignment: AlignmentChoice = .center
    @AppStorage("showAuthor") private var showAuthor = true
    @AppStorage("italicQuote") private var italicQuote = true
    @AppStorage("showBackgroundGradient") private var showBackgroundGradient = true
    @AppStorage("rotateEnabled") private var rotateEnabled = false
    @AppStorage("rotateMinutes") private var rotateMinutes = 5
    @AppStorage("shuffle") private var shuffle = true
    @AppStorage("cat.motivation") private var catMotivation = true
    @AppStorage("cat.wisdom") private var catWisdom = true
    @AppStorage("cat.humor") private var catHumor = true
    @AppStorage("cat.science") private var catScience = false

    @State private var confirmReset = false

    var body: some View {
        NavigationStack {
            Form {
                Section("Appearance") {
                    Picker("Theme", selection: $theme) {
                        ForEach(AppTheme.allCases) { Text($0.title).tag($0) }
                    }
                    .pickerStyle(.segmented)

                    Picker("Accent colour", selection: $accent) {
                        ForEach(AccentChoice.allCases) { choice in
                            Label {
                                Text(choice.rawValue.capitalized)
                            } icon: {
                                Image(systemName: "circle.fill").foregroundStyle(choice.color)
                            }
                            .tag(choice)
                        }
                    }

                    Toggle("Gradient background", isOn: $showBackgroundGradient)
                }

                Section("Text") {
                    Picker("Font", selection: $fontStyle) {
                        ForEach(FontStyleChoice.allCases) { Text($0.rawValue.capitalized).tag($0) }
                    }
                    .pickerStyle(.radioGroup)

                    LabeledContent("Size") {
                        HStack {
                            Slider(value: $fontSize, in: 16...56, step: 2)
                            Text("\(Int(fontSize)) pt")
                                .monospacedDigit()
                                .frame(width: 44)
                        }
                    }

                    Picker("Alignment", selection: $alignment) {
                        ForEach(AlignmentChoice.allCases) { choice in
                            Image(systemName: choice.symbol).tag(choice)
                        }
                    }
                    .pickerStyle(.segmented)

                    Toggle("Italic quote text", isOn: $italicQuote)
                    Toggle("Show author", isOn: $showAuthor)
                }

                Section {
                    Toggle("Motivation", isOn: $catMotivation)
                    Toggle("Wisdom", isOn: $catWisdom)
                    Toggle("Humor", isOn: $catHumor)
                    Toggle("Science", isOn: $catScience)
                } header: {
                    Text("Categories")
                } footer: {
                    Text("If no category is selected, all quotes are shown.")
                }

                Section("Rotation") {
                    Toggle("Rotate automatically", isOn: $rotateEnabled)
                        .toggleStyle(.switch)
                    Stepper("Every \(rotateMinutes) minute\(rotateMinutes == 1 ? "" : "s")", value: $rotateMinutes, in: 1...120)
                        .disabled(!rotateEnabled)
                    Toggle("Shuffle order", isOn: $shuffle)
                }

                Section {
                    Button("Reset all settings", role: .destructive) {
                        confirmReset = true
                    }
                }
            }
            .formStyle(.grouped)
            .navigationTitle("Settings")
            .toolbar {
                ToolbarItem(placement: .confirmationAction) {
                    Button("Done") { dismiss() }
                }
            }
            .alert("Reset settings?", isPresented: $confirmReset) {
                Button("Cancel", role: .cancel) {}
                Button("Reset", role: .destructive, action: resetAll)
            } message: {
                Text("All options will go back to their defaults.")
            }
        }
        .frame(minWidth: 460, minHeight: 560)
    }

    private func resetAll() {
        theme = .system
        accent = .purple
        fontStyle = .serif
        fontSize = 28
        alignment = .center
        showAuthor = true
        italicQuote = true
        showBackgroundGradient = true
        rotateEnabled = false
        rotateMinutes = 5
        shuffle = true
        catMotivation = true
        catWisdom = true
        catHumor = true
        catScience = false
    }
}
