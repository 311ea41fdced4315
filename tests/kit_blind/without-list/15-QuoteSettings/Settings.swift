import SwiftUI

enum AppearanceMode: String, CaseIterable, Identifiable {
    case system, light, dark

    var id: String { rawValue }
    var title: String { rawValue.capitalized }

    var colorScheme: ColorScheme? {
        switch self {
        case .system: return nil
        case .light: return .light
        case .dark: return .dark
        }
    }
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

struct SettingsView: View {
    @Environment(\.dismiss) private var dismiss

    var body: some View {
        VStack(spacing: 0) {
            TabView {
                GeneralSettings()
                    .tabItem { Label("General", systemImage: "gearshape") }
                AppearanceSettings()
                    .tabItem { Label("Appearance", systemImage: "paintpalette") }
                AboutSettings()
                    .tabItem { Label("About", systemImage: "info.circle") }
            }
            .padding()

            HStack {
                Spacer()
                Button("Done") { dismiss() }
                    .keyboardShortcut(.defaultAction)
            }
            .padding([.horizontal, .bottom])
        }
        .frame(width: 460, height: 360)
    }
}

struct GeneralSettings: View {
    @AppStorage("userName") private var userName = ""
    @AppStorage("showAuthor") private var showAuthor = true
    @AppStorage("refreshMinutes") private var refreshMinutes = 60
    @AppStorage("showGreeting") private var showGreeting = true

    var body: some View {
        Form {
            TextField("Your name", text: $userName, prompt: Text("e.g. Alex"))
            Toggle("Show greeting", isOn: $showGreeting)
            Toggle("Show quote author", isOn: $showAuthor)
            Picker("New quote every", selection: $refreshMinutes) {
                Text("15 minutes").tag(15)
                Text("30 minutes").tag(30)
                Text("Hour").tag(60)
                Text("Day").tag(1440)
            }
        }
        .formStyle(.grouped)
    }
}

struct AppearanceSettings: View {
    @AppStorage("appearance") private var appearance: AppearanceMode = .system
    @AppStorage("fontSize") private var fontSize: Double = 24
    @AppStorage("accent") private var accent: AccentChoice = .blue
    @AppStorage("useSerif") private var useSerif = true

    var body: some View {
        Form {
            Picker("Appearance", selection: $appearance) {
                ForEach(AppearanceMode.allCases) { mode in
                    Text(mode.title).tag(mode)
                }
            }
            .pickerStyle(.segmented)

            LabeledContent("Quote size") {
                HStack {
                    Slider(value: $fontSize, in: 14...44, step: 1) {
                        Text("Quote size")
                    } minimumValueLabel: {
                        Image(systemName: "textformat.size.smaller")
                    } maximumValueLabel: {
                        Image(systemName: "textformat.size.larger")
                    }
                    .labelsHidden()
                    Text("\(Int(fontSize))")
                        .monospacedDigit()
                        .frame(width: 28)
                }
            }

            Toggle("Serif font", isOn: $useSerif)

            LabeledContent("Accent colour") {
                HStack(spacing: 8) {
                    ForEach(AccentChoice.allCases) { choice in
                        Circle()
                            .fill(choice.color)
                            .frame(width: 20, height: 20)
                            .overlay {
                                if choice == accent {
                                    Image(systemName: "checkmark")
                                        .font(.caption2.bold())
                                        .foregroundStyle(.white)
                                }
                            }
                            .onTapGesture { accent = choice }
                    }
                }
            }
        }
        .formStyle(.grouped)
    }
}

struct AboutSettings: View {
    var body: some View {
        VStack(spacing: 10) {
            Image(systemName: "quote.bubble.fill")
                .font(.system(size: 48))
                .foregroundStyle(.tint)
            Text("Daily Quote")
                .font(.title2.bold())
            Text("Version 1.0")
                .foregroundStyle(.secondary)
            Text("A small dose of inspiration, whenever you need it.")
                .multilineTextAlignment(.center)
                .font(.callout)
        }
        .frame(maxWidth: .infinity, maxHeight: .infinity)
    }
}
