import SwiftUI

struct AppRoot: View {
    @AppStorage("palettes.saved") private var savedData = Data()

    @State private var base = HSB(hue: 0.58, saturation: 0.7, brightness: 0.85)
    @State private var harmony: Harmony = .analogous
    @State private var swatches: [HSB] = []
    @State private var locked: Set<Int> = []
    @State private var saved: [SavedPalette] = []
    @State private var paletteName = ""

    var body: some View {
        HSplitView {
            VStack(spacing: 16) {
                controls

                HStack(spacing: 0) {
                    ForEach(swatches.indices, id: \.self) { index in
                        SwatchView(hsb: swatches[index], isLocked: locked.contains(index)) {
                            if locked.contains(index) {
                                locked.remove(index)
                            } else {
                                locked.insert(index)
                            }
                        }
                    }
                }
                .clipShape(RoundedRectangle(cornerRadius: 14))
                .shadow(color: .black.opacity(0.15), radius: 8, y: 4)
                .animation(.easeInOut(duration: 0.35), value: swatches)

                HStack {
                    TextField("Palette name", text: $paletteName)
                        .textFieldStyle(.roundedBorder)
                        .frame(maxWidth: 240)
                    Button("Save Palette") {
                        let name = paletteName.isEmpty ? "Palette \(saved.count + 1)" : paletteName
                        saved.insert(SavedPalette(name: name, colors: swatches), at: 0)
                        paletteName = ""
                        persist()
                    }
                    Spacer()
                    Text("Click a swatch to lock it")
                        .font(.caption)
                        .foregroundStyle(.secondary)
                }
            }
            .padding()
            .frame(minWidth: 520, maxWidth: .infinity, maxHeight: .infinity)

            savedList
                .frame(minWidth: 200, idealWidth: 240, maxWidth: 320)
        }
        .frame(minWidth: 780, minHeight: 460)
        .onAppear {
            saved = (try? JSONDecoder().decode([SavedPalette].self, from: savedData)) ?? []
            regenerate()
        }
        .onChange(of: harmony) { regenerate() }
        .onChange(of: base) { regenerate() }
    }

    private var controls: some View {
        HStack(spacing: 16) {
            ColorPicker("Base colour", selection: Binding(
                get: { base.color },
                set: { newColor in
                    let resolved = newColor.resolve(in: EnvironmentValues())
                    base = hsb(fromRed: Double(resolved.red), green: Double(resolved.green), blue: Double(resolved.blue))
                }
            ), supportsOpacity: false)

            Picker("Harmony", selection: $harmony) {
                ForEach(Harmony.allCases) { Text($0.rawValue).tag($0) }
            }
            .frame(width: 220)

            Spacer()

            Button {
                if harmony != .random {
                    base = HSB.random()
                } else {
                    regenerate()
                }
            } label: {
                Label("Shuffle", systemImage: "shuffle")
            }
            .keyboardShortcut(.space, modifiers: [])
        }
    }

    private var savedList: some View {
        List {
            Section("Saved Palettes") {
                if saved.isEmpty {
                    Text("None yet").foregroundStyle(.secondary)
                }
                ForEach(saved) { palette in
                    VStack(alignment: .leading, spacing: 6) {
                        Text(palette.name).font(.subheadline.bold())
                        HStack(spacing: 2) {
                            ForEach(palette.colors, id: \.self) { c in
                                Rectangle().fill(c.color)
                            }
                        }
                        .frame(height: 22)
                        .clipShape(RoundedRectangle(cornerRadius: 4))
                    }
                    .padding(.vertical, 4)
                    .contentShape(Rectangle())
                    .onTapGesture {
                        locked.removeAll()
                        swatches = palette.colors
                    }
                    .contextMenu {
                        Button("Delete", role: .destructive) {
                            saved.removeAll { $0.id == palette.id }
                            persist()
                        }
                    }
                }
            }
        }
        .listStyle(.sidebar)
    }

    private func regenerate() {
        let fresh = harmony.palette(from: base)
        if swatches.count != fresh.count {
            swatches = fresh
            locked.removeAll()
            return
        }
        for i in fresh.indices where !locked.contains(i) {
            swatches[i] = fresh[i]
        }
    }

    private func persist() {
        savedData = (try? JSONEncoder().encode(saved)) ?? Data()
    }

    private func hsb(fromRed r: Double, green g: Double, blue b: Double) -> HSB {
        let maxV = max(r, g, b)
        let minV = min(r, g, b)
        let delta = maxV - minV
        var hue = 0.0
        if delta > 0 {
            if maxV == r {
                hue = ((g - b) / delta).truncatingRemainder(dividingBy: 6)
            } else if maxV == g {
                hue = (b - r) / delta + 2
            } else {
                hue = (r - g) / delta + 4
            }
            hue /= 6
            if hue < 0 { hue += 1 }
        }
        let saturation = maxV == 0 ? 0 : delta / maxV
        return HSB(hue: hue, saturation: saturation, brightness: maxV)
    }
}

struct SwatchView: View {
    let hsb: HSB
    let isLocked: Bool
    let onToggleLock: () -> Void

    @State private var hovering = false

    var body: some View {
        ZStack(alignment: .bottom) {
            Rectangle()
                .fill(hsb.color)

            VStack(spacing: 8) {
                Image(systemName: isLocked ? "lock.fill" : "lock.open")
                    .font(.title3)
                    .opacity(isLocked || hovering ? 1 : 0)
                Text(hsb.hex)
                    .font(.system(.headline, design: .monospaced))
                    .textSelection(.enabled)
                Text("H\(Int(hsb.hue * 360)) S\(Int(hsb.saturation * 100)) B\(Int(hsb.brightness * 100))")
                    .font(.caption2)
                    .opacity(0.8)
            }
            .foregroundStyle(hsb.isLight ? Color.black : Color.white)
            .padding(.bottom, 20)
        }
        .frame(maxWidth: .infinity, minHeight: 260)
        .contentShape(Rectangle())
        .onTapGesture(perform: onToggleLock)
        .onHover { hovering = $0 }
        .animation(.easeInOut(duration: 0.15), value: hovering)
    }
}
