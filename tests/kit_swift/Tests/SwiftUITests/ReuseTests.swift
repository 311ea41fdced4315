import Testing
import ZentoroHostInterface

@testable import SwiftUI

/// A counter above a grid of 100 texts; one cell shows the count too.
private struct Grid: View {
    @State private var taps = 0
    @State private var bold = false
    var body: some View {
        VStack(spacing: 0) {
            Button("Taps \(taps)") { taps += 1 }
            Button("Bold") { bold.toggle() }
            ForEach(0..<10, id: \.self) { row in
                HStack(spacing: 0) {
                    ForEach(0..<10, id: \.self) { column in
                        Text(row == 9 && column == 9 ? "n\(taps)" : "c\(row * 10 + column)")
                            .frame(maxWidth: .infinity)
                    }
                }
                .fontWeight(row == 0 && bold ? .bold : nil)
            }
        }
    }
}

private struct Tally: View {
    let label: String
    @State private var count = 0
    var body: some View { Button("\(label) \(count)") { count += 1 } }
}

private struct Tallies: View {
    @State private var shift = false
    var body: some View {
        VStack(spacing: 0) {
            Button("Shift") { shift.toggle() }
            if shift { Text("spacer row") }
            Tally(label: "a")
            HStack {
                Text("fixed"); Text("texts")
            }
        }
    }
}

@MainActor
@Suite struct ReuseTests {
    @Test func aStateChangeRepaintsOnlyWhatChanged() {
        let hosted = Hosted(Grid(), width: 600, height: 400)
        let cell = hosted.text("c90")!.rect, counter = hosted.text("n0")!.rect
        hosted.double.measuredStrings = []
        hosted.press("Taps 0")
        let damage = hosted.update()
        let area = try! #require(damage, "a click on one button does not repaint the whole view")
        #expect(area.intersects(hosted.text("Taps 0")!.rect))
        #expect(area.intersects(counter), "the cell that shows the count is repainted")
        #expect(!area.intersects(cell), "an unchanged cell is not")
        hosted.render(clip: area)
        #expect(hosted.text("Taps 1") != nil && hosted.text("n1") != nil)
        #expect(hosted.text("c90") == nil, "cells outside the repainted part are not drawn")
        #expect(hosted.double.measuredStrings.contains("n1"))
        #expect(!hosted.double.measuredStrings.contains("c95"), "an unchanged text beside a changed one keeps its size")
        hosted.render()
        #expect(hosted.strings.count == 102)
        #expect(hosted.update() == .null, "nothing changed since")
    }

    @Test func anInputChangeWithTheSameTextStillRenders() {
        let hosted = Hosted(Grid(), width: 600, height: 400)
        let regular = hosted.text("c3")!
        hosted.click("Bold")
        let bold = hosted.text("c3")!
        #expect(bold.weight == 700 && regular.weight == 400)
        #expect(hosted.text("c13")!.weight == 400, "rows whose inputs did not change keep their look")
        hosted.click("Bold")
        #expect(hosted.text("c3")!.weight == 400)
    }

    @Test func takenOverElementsKeepTheirPlaceAndStateAndMoveWhenPushed() {
        let hosted = Hosted(Tallies())
        hosted.click("a 0")
        hosted.click("a 1")
        let fixed = hosted.text("fixed")!.rect
        hosted.press("Shift")
        #expect(hosted.update() == nil, "content that moves repaints the whole view")
        hosted.render()
        #expect(hosted.text("a 2") != nil, "state stays with the view")
        #expect(hosted.text("fixed")!.rect.minY > fixed.minY, "the texts below moved down")
        hosted.click("Shift")
        #expect(hosted.text("fixed")!.rect == fixed)
    }

    @Test func twoRootsAndTwoGenerationsShareNoElements() {
        let first = Hosted(Grid(), width: 600, height: 400), second = Hosted(Grid(), width: 600, height: 400)
        var seen = Set<ObjectIdentifier>()
        first.graph.rootElement!.forEach { seen.insert(ObjectIdentifier($0)) }
        second.graph.rootElement!.forEach { #expect(!seen.contains(ObjectIdentifier($0))) }
        second.click("Taps 0")
        #expect(first.text("n0") != nil && second.text("n1") != nil)
        // New fonts (the host sends its appearance again): nothing measured before is taken over.
        var before: [ObjectIdentifier] = []
        first.graph.rootElement!.forEach { if $0 is TextElement { before.append(ObjectIdentifier($0)) } }
        let width = first.text("c0")!.rect.width
        first.double.widthScale = 2
        var accent = ZentoroColor(red: 0, green: 0, blue: 1, alpha: 1)
        _zentoroViewSetAppearance(first.view, 0, &accent)
        #expect(first.update() == nil)
        first.graph.rootElement!.forEach { if $0 is TextElement { #expect(!before.contains(ObjectIdentifier($0))) } }
        first.render()
        checkEqual(first.text("c0")!.rect.width, width * 2, accuracy: 0.5)
    }
}
