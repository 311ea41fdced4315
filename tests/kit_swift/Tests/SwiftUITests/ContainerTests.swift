import Testing

@testable import SwiftUI

private enum Flavor: String, CaseIterable, Identifiable {
    case vanilla, chocolate, mint
    var id: Self { self }
}

private struct Chooser: View {
    @State var flavor = Flavor.vanilla
    let segmented: Bool
    var body: some View {
        VStack {
            if segmented {
                Picker("Flavor", selection: $flavor) {
                    ForEach(Flavor.allCases) { Text($0.rawValue.capitalized) }
                }
                .pickerStyle(.segmented)
            } else {
                Picker("Flavor", selection: $flavor) {
                    ForEach(Flavor.allCases) { Text($0.rawValue.capitalized).tag($0) }
                }
            }
            Text("chose \(flavor.rawValue)")
        }
    }
}

private struct Shelf: View {
    @State var items = ["one", "two", "three"]
    var body: some View {
        NavigationStack {
            List {
                Section("Books") {
                    ForEach(items, id: \.self) { item in
                        NavigationLink(item) { Text("detail \(item)").navigationTitle(item.uppercased()) }
                    }
                    .onDelete { items.remove(atOffsets: $0) }
                }
            }
            .navigationTitle("Shelf")
            .toolbar { Button("Add") { items.append("new") } }
        }
    }
}

private struct Warning: View {
    @State var shown = false
    @State var answer = "none"
    var body: some View {
        VStack {
            Button("Ask") { shown = true }
            Text("answer \(answer)")
        }
        .alert("Delete all?", isPresented: $shown) {
            Button("Delete", role: .destructive) { answer = "deleted" }
            Button("Cancel", role: .cancel) {}
        } message: {
            Text("This cannot be undone.")
        }
    }
}

@MainActor @Suite struct ContainerTests {
    @Test func listRowsStackWithSectionHeadersAndSeparators() {
        let hosted = Hosted(
            List {
                Section("Fruit") {
                    Text("apple"); Text("pear")
                }; Text("loose")
            }, width: 300, height: 300)
        let header = hosted.text("Fruit")!.rect, apple = hosted.text("apple")!.rect, pear = hosted.text("pear")!.rect
        #expect(header.maxY <= apple.minY)
        checkEqual(apple.minX, ListElement.rowInsets.leading, accuracy: 0.5, "rows are leading aligned")
        checkEqual(pear.midY - apple.midY, ListElement.minimumRowHeight, accuracy: 0.5, "short rows are 28 high")
        // A separator line between apple and pear, none above the first row.
        let separators = hosted.double.fills.map(\.bounds).filter { $0.height == 1 }
        #expect(separators.contains { $0.minY > apple.maxY && $0.maxY < pear.minY })
        #expect(!separators.contains { $0.maxY <= apple.minY && $0.minY >= header.maxY })
    }

    @Test func formGroupsSectionsInPanels() {
        let hosted = Hosted(
            Form {
                Section("A") { Text("x") };
                Section("B") {
                    Text("y"); Text("z")
                }
            }, width: 300, height: 300)
        let panels = hosted.double.fills.filter { $0.bounds.width == 300 - 32 }.map(\.bounds)
        #expect(panels.count == 2)
        #expect(panels[1].height > panels[0].height)
    }

    @Test func segmentedPickerChoosesByForEachIdentity() {
        let hosted = Hosted(Chooser(segmented: true), width: 400, height: 200)
        #expect(hosted.text("chose vanilla") != nil)
        let white = { (string: String) in
            hosted.text(string).map { $0.color.red > 0.99 && $0.color.green > 0.99 && $0.color.blue > 0.99 } ?? false
        }
        #expect(white("Vanilla"), "the selected segment's text is white on its tinted pill")
        #expect(!white("Mint"))
        hosted.click("Mint")
        #expect(hosted.text("chose mint") != nil, "\(hosted.strings)")
        #expect(white("Mint"))
        #expect(!white("Vanilla"))
    }

    @Test func menuPickerOpensAListAndClosesOnChoice() {
        let hosted = Hosted(Chooser(segmented: false), width: 400, height: 300)
        #expect(hosted.strings.filter { $0 == "Chocolate" }.isEmpty, "closed, only the current choice shows")
        hosted.click("Vanilla")
        #expect(hosted.strings.filter { $0 == "Chocolate" }.count == 1)
        hosted.click("Chocolate")
        #expect(hosted.text("chose chocolate") != nil && hosted.text("Mint") == nil, "the list closed")
        // A click outside an open list closes it without choosing.
        hosted.click("Chocolate")
        hosted.click(CGPoint(x: 5, y: 295))
        #expect(hosted.text("Mint") == nil && hosted.text("chose chocolate") != nil)
    }

    @Test func navigationPushesWithTitleBackButtonToolbarAndDeletes() {
        let hosted = Hosted(Shelf(), width: 400, height: 300)
        hosted.click("Add")
        hosted.expectShown("Shelf", "new")
        hosted.click("two")
        hosted.expectShown("detail two", "TWO")
        #expect(hosted.text("one") == nil)
        hosted.click("Back")
        // Hover a row, then its delete button removes it.
        let row = hosted.text("one")!.rect
        _ = _zentoroViewPointer(hosted.view, 1, row.midX, row.midY, 0, 0)
        hosted.render()
        hosted.click(CGPoint(x: 400 - 12 - 15, y: row.midY))
        #expect(hosted.text("one") == nil && hosted.text("three") != nil, "\(hosted.strings)")
    }

    @Test func alertsShowOverTheWindowAndCloseWithTheirButtons() {
        FakeClock.install()
        defer { FakeClock.restore() }
        let hosted = Hosted(Warning(), width: 400, height: 300)
        #expect(hosted.text("Delete all?") == nil)
        hosted.click("Ask")
        hosted.click("answer none")
        FakeClock.now += 0.1
        hosted.render()
        hosted.expectShown("Delete all?", "This cannot be undone.", "answer none")
        // Mid-way in, the alert takes clicks where it is drawn.
        hosted.click("Delete")
        hosted.expectShown("answer deleted", "Delete all?")
        FakeClock.now += 1
        hosted.render()
        #expect(hosted.text("Delete all?") == nil, "the alert is gone once it has moved out")
    }

    @Test func gridsFillColumnsRowByRow() {
        let columns = [GridItem(.flexible()), GridItem(.flexible()), GridItem(.flexible())]
        let hosted = Hosted(
            LazyVGrid(columns: columns, spacing: 10) { ForEach(0..<7) { Text("c\($0)").frame(height: 20) } },
            width: 316, height: 200)
        let c0 = hosted.text("c0")!.rect, c1 = hosted.text("c1")!.rect, c3 = hosted.text("c3")!.rect, c6 = hosted.text("c6")!.rect
        checkEqual(c0.midY, c1.midY, accuracy: 0.5)
        checkEqual(c1.midX - c0.midX, 108, accuracy: 0.5, "three columns of 100 with gaps of 8")
        checkEqual(c3.midX, c0.midX, accuracy: 0.5)
        checkEqual(c3.midY - c0.midY, 30, accuracy: 0.5)
        checkEqual(c6.midY - c3.midY, 30, accuracy: 0.5)
        let adaptive = GridElement(columns: [GridItem(.adaptive(minimum: 80))], rowSpacing: nil, cells: [], transposed: false)
        #expect(adaptive.tracks(across: 350).count == 4, "as many columns of 80 as fit with gaps")
    }

    @Test func lazyStacksAndListsScrollAndLongOnesMakeOnlyTheRowsInView() {
        var made = 0
        let stack = Hosted(
            ScrollView {
                LazyVStack(spacing: 0) {
                    ForEach(0..<10_000, id: \.self) { index in
                        let _ = made += 1
                        Text("row \(index)").frame(height: 20)
                    }
                }
            }, width: 200, height: 100)
        #expect(made < 20, "\(made) rows made")
        checkEqual(stack.text("row 4")!.rect.midY, 90, accuracy: 0.5)
        #expect(_zentoroViewScroll(stack.view, 50, 50, 0, 100_000) == 1)
        stack.render()
        checkEqual(stack.text("row 5000")!.rect.midY, 10, accuracy: 0.5)
        #expect(made < 40)

        let short = Hosted(List(0..<100, id: \.self) { Text("item \($0)") }, width: 200, height: 200)
        #expect(short.text("item 0") != nil)
        #expect(_zentoroViewScroll(short.view, 50, 50, 0, 600) == 1)
        short.render()
        #expect(short.text("item 0").map { $0.rect.maxY < 0 } ?? true)
        #expect(short.double.texts.contains { $0.string.hasPrefix("item 2") && $0.rect.minY > 0 && $0.rect.maxY < 200 })

        made = 0
        let list = Hosted(
            List(0..<10_000, id: \.self) { index in
                let _ = made += 1
                Text("item \(index)")
            }, width: 200, height: 280)
        #expect(made < 20, "\(made) rows made")
        let step = ListElement.minimumRowHeight
        checkEqual(list.text("item 1")!.rect.midY - list.text("item 0")!.rect.midY, step, accuracy: 0.5)
        #expect(list.double.fills.filter { $0.bounds.height == 1 }.count >= 9, "separators between the rows in view")
        #expect(_zentoroViewScroll(list.view, 50, 50, 0, step * 5000) == 1)
        list.render()
        checkEqual(list.text("item 5000")!.rect.minY, list.text("item 5001")!.rect.minY - step, accuracy: 0.5)
        #expect(list.text("item 0") == nil)
        #expect(made < 40)
    }

    @Test func canvasDrawsWhatItsContextIsGiven() {
        let hosted = Hosted(
            Canvas { context, size in
                var copy = context
                copy.translateBy(x: 10, y: 0)
                copy.fill(Path(CGRect(x: 0, y: 0, width: size.width / 2, height: 10)), with: .color(.red))
                context.stroke(Path(ellipseIn: CGRect(x: 0, y: 20, width: 30, height: 30)), with: .color(.blue), lineWidth: 2)
                context.draw(Text("label"), at: CGPoint(x: 50, y: 50), anchor: .topLeading)
            }.frame(width: 100, height: 100), width: 100, height: 100)
        #expect(hosted.double.fills.map(\.bounds) == [CGRect(x: 10, y: 0, width: 50, height: 10)])
        #expect(hosted.double.strokes == [CGRect(x: 0, y: 20, width: 30, height: 30)])
        #expect(hosted.text("label")!.rect.origin == CGPoint(x: 50, y: 50))
    }
}
