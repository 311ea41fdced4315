import Testing
import ZentoroHostInterface

@testable import SwiftUI

private struct Row: Identifiable, Hashable {
    let id: Int
    var name: String
    var age: Int
}

private enum Fruit: String, CaseIterable, Identifiable {
    case apple, pear
    var id: String { rawValue }
}

/// Tabs over a list with a selection, a table that sorts, a context menu and an enum picker.
private struct Desk: View {
    @State var tab = 0
    @State var chosen: Int?
    @State var rows = [Row(id: 1, name: "Bo", age: 40), Row(id: 2, name: "Al", age: 30)]
    @State var order = [KeyPathComparator(\Row.name)]
    @State var log: [String] = []
    @State var fruit = Fruit.apple
    var body: some View {
        VStack {
            Text("log \(log.joined(separator: ","))")
            TabView(selection: $tab) {
                List(rows, selection: $chosen) { row in Text("row \(row.name)") }
                    .tabItem { Label("Rows", systemImage: "list.bullet") }
                    .tag(0)
                Table(rows, sortOrder: $order) {
                    TableColumn("Name", value: \.name)
                    TableColumn("Age", value: \.age) { Text("age \($0.age)") }
                }
                .contextMenu {
                    Button("Forget") { log.append("forget") }
                }
                .tabItem { Text("Table") }
                .tag(1)
                Picker("Fruit", selection: $fruit) {
                    ForEach(Fruit.allCases) { Text($0.rawValue) }
                }
                .pickerStyle(.segmented)
                .tabItem { Text("Fruit") }
                .tag(2)
            }
            Text("chosen \(chosen.map(String.init) ?? "none") first \(rows.first?.name ?? "") fruit \(fruit.rawValue)")
        }
        .onChange(of: order) { _, new in rows.sort(using: new) }
    }
}

@MainActor
@Suite struct ControlsTests {
    @Test func tabsListSelectionTableSortingAndContextMenus() {
        let window = Hosted(Desk(), width: 500, height: 400)
        window.expectShown("Rows", "Table", "row Bo", "chosen none first Bo fruit apple")
        window.click("row Al")
        window.expectShown("chosen 2 first Bo fruit apple")

        // The table's page: a click on a sortable header reverses the order the app sorts by.
        window.click("Table")
        window.expectShown("Name", "Age", "age 40", "age 30")
        window.click("Name")
        window.expectShown("chosen 2 first Bo fruit apple")
        window.click("Name")
        window.expectShown("chosen 2 first Al fruit apple")
        #expect(!window.strings.contains("row Bo"), "one page shows at a time")

        // A secondary press opens the menu where it was; its item runs and closes it.
        let cell = window.text("age 40")!.rect
        _ = _zentoroViewPointer(window.view, 0, cell.midX, cell.midY, Int32(ZENTORO_POINTER_SECONDARY), 1)
        _ = _zentoroViewPointer(window.view, 2, cell.midX, cell.midY, Int32(ZENTORO_POINTER_SECONDARY), 1)
        window.render()
        #expect(window.text("Forget").map { $0.rect.minY >= cell.minY } == true)
        window.click("Forget")
        window.expectShown("log forget")
        #expect(!window.strings.contains("Forget"))

        // A picker over an enum whose ids are strings still selects the case.
        window.click("Fruit")
        window.click("pear")
        window.expectShown("chosen 2 first Al fruit pear")
    }

    @Test func aGraphicalDatePickerChangesTheDayAndKeepsTheTime() {
        struct Dates: View {
            @State var date = Calendar.current.date(from: DateComponents(year: 2024, month: 2, day: 10, hour: 9, minute: 30))!
            var body: some View {
                VStack {
                    DatePicker("When", selection: $date).datePickerStyle(.graphical)
                    Text(date.formatted(.iso8601.year().month().day().time(includingFractionalSeconds: false)))
                }
            }
        }
        let window = Hosted(Dates(), width: 500, height: 500)
        window.click("21")
        window.expectShown("2024-02-21T09:30:00")
        #expect(window.strings.contains("09") && window.strings.contains("30"), "the time fields")
    }

    @Test func scrollViewReaderBringsARowIntoView() {
        struct Long: View {
            var body: some View {
                ScrollViewReader { proxy in
                    VStack {
                        Button("to 80") { proxy.scrollTo(80, anchor: .top) }
                        ScrollView {
                            VStack(spacing: 0) {
                                ForEach(0..<100, id: \.self) { Text("line \($0)").frame(height: 20) }
                            }
                        }
                    }
                }
            }
        }
        let window = Hosted(Long(), width: 300, height: 200)
        #expect(window.text("line 0") != nil)
        window.click("to 80")
        window.render()
        let line = window.text("line 80")
        #expect(line != nil && line!.rect.minY < 60, "line 80 sits at the top: \(String(describing: line?.rect))")
        #expect(window.text("line 0").map { $0.rect.maxY < 0 } ?? true, "line 0 scrolled out above")
    }
}
