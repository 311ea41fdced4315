import SwiftUI

struct AppRoot: View {
    @State private var pool = DicePool(counts: [20: 1])
    @State private var mode: RollMode = .normal
    @State private var lastRoll: RollRecord?
    @State private var history: [RollRecord] = []
    @AppStorage("savedRolls") private var savedData: Data = Data()
    @State private var saveName = ""
    @State private var showingSave = false

    private var saved: [SavedRoll] {
        (try? JSONDecoder().decode([SavedRoll].self, from: savedData)) ?? []
    }

    var body: some View {
        HStack(spacing: 0) {
            VStack(alignment: .leading, spacing: 18) {
                Text("Dice Pool").font(.title2.bold())

                Grid(alignment: .leading, horizontalSpacing: 12, verticalSpacing: 8) {
                    ForEach(DieType.allCases) { die in
                        GridRow {
                            DieBadge(sides: die.rawValue, value: nil, color: die.color)
                            Text(die.name).font(.headline)
                            Stepper(value: Binding(
                                get: { pool.counts[die.rawValue] ?? 0 },
                                set: { pool.counts[die.rawValue] = $0 }
                            ), in: 0...20) {
                                Text("\(pool.counts[die.rawValue] ?? 0)")
                                    .monospacedDigit()
                                    .frame(width: 24)
                            }
                        }
                    }
                    GridRow {
                        Image(systemName: "plus.forwardslash.minus")
                            .frame(width: 34)
                        Text("Modifier").font(.headline)
                        Stepper(value: $pool.modifier, in: -20...20) {
                            Text(pool.modifier >= 0 ? "+\(pool.modifier)" : "\(pool.modifier)")
                                .monospacedDigit()
                                .frame(width: 24)
                        }
                    }
                }

                Picker("d20 mode", selection: $mode) {
                    ForEach(RollMode.allCases) { Text($0.rawValue).tag($0) }
                }
                .pickerStyle(.segmented)

                Text(pool.description)
                    .font(.system(.title3, design: .monospaced))
                    .foregroundStyle(.secondary)

                HStack {
                    Button {
                        roll(pool, label: pool.description)
                    } label: {
                        Label("Roll", systemImage: "dice.fill")
                            .frame(maxWidth: .infinity)
                    }
                    .buttonStyle(.borderedProminent)
                    .controlSize(.large)
                    .keyboardShortcut(.return, modifiers: [])
                    .disabled(pool.isEmpty && pool.modifier == 0)

                    Button {
                        showingSave = true
                    } label: {
                        Image(systemName: "star")
                    }
                    .controlSize(.large)
                    .help("Save this roll")

                    Button("Clear") {
                        pool = DicePool()
                    }
                    .controlSize(.large)
                }

                if !saved.isEmpty {
                    Text("Favourites").font(.headline)
                    ScrollView(.horizontal) {
                        HStack {
                            ForEach(saved) { fav in
                                Button {
                                    pool = fav.pool
                                    roll(fav.pool, label: fav.name)
                                } label: {
                                    VStack(alignment: .leading) {
                                        Text(fav.name).bold()
                                        Text(fav.pool.description).font(.caption)
                                    }
                                }
                                .contextMenu {
                                    Button("Remove", role: .destructive) { removeSaved(fav) }
                                }
                            }
                        }
                    }
                }
                Spacer()
            }
            .padding(20)
            .frame(width: 340)

            Divider()

            VStack(spacing: 16) {
                if let lastRoll {
                    RollResultView(record: lastRoll)
                } else {
                    Text("Roll some dice!")
                        .font(.title)
                        .foregroundStyle(.secondary)
                        .frame(maxHeight: 200)
                }

                Divider()

                HStack {
                    Text("History").font(.headline)
                    Spacer()
                    Button("Clear") { history.removeAll() }
                        .buttonStyle(.borderless)
                        .disabled(history.isEmpty)
                }
                List(history) { record in
                    HStack {
                        VStack(alignment: .leading) {
                            Text(record.label)
                            Text(record.results.filter { !$0.dropped }.map { String($0.value) }.joined(separator: ", "))
                                .font(.caption)
                                .foregroundStyle(.secondary)
                        }
                        Spacer()
                        Text("\(record.total)")
                            .font(.title3.bold().monospacedDigit())
                            .foregroundStyle(record.isNat20 ? .green : record.isNat1 ? .red : .primary)
                        Text(record.date, style: .time)
                            .font(.caption)
                            .foregroundStyle(.secondary)
                    }
                }
                .listStyle(.plain)
            }
            .padding(20)
            .frame(maxWidth: .infinity)
        }
        .alert("Save roll", isPresented: $showingSave) {
            TextField("Name (e.g. Longsword attack)", text: $saveName)
            Button("Save") {
                var list = saved
                list.append(SavedRoll(name: saveName.isEmpty ? pool.description : saveName, pool: pool))
                savedData = (try? JSONEncoder().encode(list)) ?? savedData
                saveName = ""
            }
            Button("Cancel", role: .cancel) {}
        } message: {
            Text(pool.description)
        }
    }

    private func roll(_ pool: DicePool, label: String) {
        let record = Roller.roll(pool, mode: mode, label: label)
        lastRoll = record
        history.insert(record, at: 0)
        if history.count > 100 { history.removeLast() }
    }

    private func removeSaved(_ roll: SavedRoll) {
        let list = saved.filter { $0.id != roll.id }
        savedData = (try? JSONEncoder().encode(list)) ?? savedData
    }
}

struct RollResultView: View {
    let record: RollRecord

    var body: some View {
        VStack(spacing: 14) {
            Text("\(record.total)")
                .font(.system(size: 80, weight: .heavy, design: .rounded))
                .foregroundStyle(record.isNat20 ? .green : record.isNat1 ? .red : .primary)
            if record.isNat20 {
                Text("NATURAL 20!").font(.headline).foregroundStyle(.green)
            } else if record.isNat1 {
                Text("Critical fail…").font(.headline).foregroundStyle(.red)
            }
            LazyVGrid(columns: [GridItem(.adaptive(minimum: 48))], spacing: 10) {
                ForEach(record.results) { die in
                    DieBadge(sides: die.sides, value: die.value,
                             color: DieType(rawValue: die.sides)?.color ?? .gray)
                        .opacity(die.dropped ? 0.3 : 1)
                        .overlay {
                            if die.dropped {
                                Rectangle().fill(Color.primary).frame(height: 2).rotationEffect(.degrees(-20))
                            }
                        }
                }
            }
            .frame(maxWidth: 420)
            if record.modifier != 0 {
                Text("Modifier \(record.modifier > 0 ? "+" : "")\(record.modifier)")
                    .foregroundStyle(.secondary)
            }
        }
    }
}

struct DieBadge: View {
    let sides: Int
    let value: Int?
    let color: Color

    var body: some View {
        ZStack {
            shape
                .fill(color.gradient)
            shape
                .stroke(Color.black.opacity(0.25), lineWidth: 1)
            Text(value.map(String.init) ?? "\(sides)")
                .font(.system(size: value == nil ? 11 : 16, weight: .bold, design: .rounded))
                .foregroundStyle(.white)
        }
        .frame(width: value == nil ? 34 : 46, height: value == nil ? 34 : 46)
    }

    private var shape: AnyShape {
        switch sides {
        case 4, 20: return AnyShape(Triangle())
        case 6: return AnyShape(RoundedRectangle(cornerRadius: 6))
        case 8, 10: return AnyShape(Diamond())
        default: return AnyShape(Circle())
        }
    }
}

struct Triangle: Shape {
    func path(in rect: CGRect) -> Path {
        var p = Path()
        p.move(to: CGPoint(x: rect.midX, y: rect.minY))
        p.addLine(to: CGPoint(x: rect.maxX, y: rect.maxY))
        p.addLine(to: CGPoint(x: rect.minX, y: rect.maxY))
        p.closeSubpath()
        return p
    }
}

struct Diamond: Shape {
    func path(in rect: CGRect) -> Path {
        var p = Path()
        p.move(to: CGPoint(x: rect.midX, y: rect.minY))
        p.addLine(to: CGPoint(x: rect.maxX, y: rect.midY))
        p.addLine(to: CGPoint(x: rect.midX, y: rect.maxY))
        p.addLine(to: CGPoint(x: rect.minX, y: rect.midY))
        p.closeSubpath()
        return p
    }
}
