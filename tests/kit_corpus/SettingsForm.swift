import SwiftUI

struct AppRoot: View {
    @AppStorage("username") private var username = ""
    @AppStorage("notifications") private var notifications = true
    @AppStorage("volume") private var volume = 0.5
    @State private var theme = "System"
    let themes = ["Light", "Dark", "System"]

    var body: some View {
        Form {
            Section(header: Text("Profile")) {
                TextField("Username", text: $username)
                Toggle("Enable notifications", isOn: $notifications)
            }
            Section("Appearance") {
                Picker("Theme", selection: $theme) {
                    ForEach(themes, id: \.self) { Text($0) }
                }
                Slider(value: $volume, in: 0...1) {
                    Text("Volume")
                }
            }
            Section {
                Button("Reset to defaults") {
                    username = ""
                    notifications = true
                    volume = 0.5
                }
            }
        }
        .padding()
        .frame(minWidth: 400, minHeight: 300)
    }
}
