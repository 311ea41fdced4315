import Testing
import ZentoroHostInterface

@testable import SwiftUI

// Text in the double: 13 pt body text is 7.8 px per character and 16 px per line.
@MainActor @Suite struct LayoutTests {
    @Test func stacksCentreTheirContentAndSpaceItByEight() {
        let hosted = Hosted(
            VStack {
                Text("ab"); Text("abcd")
            }, width: 400, height: 300)
        let a = hosted.text("ab")!.rect, b = hosted.text("abcd")!.rect
        checkEqual(a.width, 16, accuracy: 0.01, "widths are rounded up to whole pixels")
        checkEqual(a.midX, 200, accuracy: 0.5)
        checkEqual(b.midX, 200, accuracy: 0.5)
        checkEqual(b.minY - a.maxY, 8, accuracy: 0.01)
        // The pair (16 + 8 + 16) sits in the middle of the height.
        checkEqual(a.minY, (300 - 40) / 2, accuracy: 0.5)
    }

    @Test func spacersPaddingAlignmentAndOffsetsPlaceSiblings() {
        let spaced = Hosted(
            HStack {
                Text("L"); Spacer(); Text("R")
            }.padding(), width: 300, height: 100)
        checkEqual(spaced.text("L")!.rect.minX, 16, accuracy: 0.01)
        checkEqual(spaced.text("R")!.rect.maxX, 284, accuracy: 0.5)
        let leading = Hosted(
            VStack(alignment: .leading, spacing: 0) {
                Text("a"); Text("abcdefghij")
            }, width: 400, height: 100)
        checkEqual(leading.text("a")!.rect.minX, leading.text("abcdefghij")!.rect.minX, accuracy: 0.01)
        let top = Hosted(
            ZStack(alignment: .topTrailing) {
                Color.red; Text("x")
            }, width: 200, height: 100)
        checkEqual(top.text("x")!.rect.maxX, 200, accuracy: 0.5)
        checkEqual(top.text("x")!.rect.minY, 0, accuracy: 0.5)
        // An offset moves the drawing, not the layout.
        let moved = Hosted(
            HStack(spacing: 0) {
                Text("a").offset(x: 30, y: 5); Text("b")
            }, width: 200, height: 100)
        let a = moved.text("a")!.rect, b = moved.text("b")!.rect
        checkEqual(a.minX - 30, b.minX - 7.8, accuracy: 0.5)
        checkEqual(a.minY - 5, b.minY, accuracy: 0.5)
    }

    @Test func flexibleViewsShareWhatTheTextLeaves() {
        // Text takes its ideal width first; the two colours split the rest equally.
        let hosted = Hosted(
            HStack(spacing: 0) {
                Color.red; Text("abcdefghij"); Color.blue
            }, width: 278, height: 50)
        let fills = hosted.double.fills.map(\.bounds)
        #expect(fills.count == 2)
        checkEqual(fills[0].width, 100, accuracy: 0.5)
        checkEqual(fills[1].width, 100, accuracy: 0.5)
        checkEqual(hosted.text("abcdefghij")!.rect.minX, 100, accuracy: 0.5)
    }

    @Test func framesFixAndStretch() {
        let fixed = Hosted(Color.red.frame(width: 50, height: 20), width: 200, height: 100)
        #expect(fixed.double.fills[0].bounds == CGRect(x: 75, y: 40, width: 50, height: 20))

        let wide = Hosted(Text("hi").frame(maxWidth: .infinity, alignment: .leading).background(Color.blue), width: 200, height: 100)
        checkEqual(wide.double.fills[0].bounds.width, 200, accuracy: 0.01)
        checkEqual(wide.double.fills[0].bounds.height, 16, accuracy: 0.01)
        checkEqual(wide.text("hi")!.rect.minX, 0, accuracy: 0.01)

        let minimum = Hosted(Text("hi").frame(minWidth: 100).background(Color.blue), width: 300, height: 100)
        checkEqual(minimum.double.fills[0].bounds.width, 100, accuracy: 0.01)
    }

    @Test func longTextWrapsToTheOfferedWidthAndThePriorityTextWrapsLast() {
        let words = "one two three four five six seven eight"
        let hosted = Hosted(Text(words).padding(10), width: 120, height: 300)
        let rect = hosted.text(words)!.rect
        #expect(rect.width <= 100)
        #expect(rect.height > 16 * 3)
        let limited = Hosted(Text(words).lineLimit(1).padding(10), width: 120, height: 300)
        checkEqual(limited.text(words)!.rect.height, 16, accuracy: 0.01)
        let framed = Hosted(Text(words).lineLimit(1).frame(width: 60), width: 200, height: 100)
        checkEqual(framed.text(words)!.rect.width, 60, accuracy: 0.01, "a cut line fills the offered width")
        // Layout priority goes before flexibility.
        let pair = Hosted(
            HStack(spacing: 0) {
                Text("aaaaaaaaaa aaaaaaaaaa").layoutPriority(1)
                Text("bbbbbbbbbb bbbbbbbbbb")
            }, width: 200, height: 100)
        checkEqual(pair.text("aaaaaaaaaa aaaaaaaaaa")!.rect.height, 16, accuracy: 0.01, "the favoured text keeps one line")
        #expect(pair.text("bbbbbbbbbb bbbbbbbbbb")!.rect.height > 16)
    }

    @Test func scrollViewOffersUnlimitedHeightAndScrolls() {
        let hosted = Hosted(
            ScrollView { VStack(spacing: 0) { ForEach(0..<50) { Text("row \($0)").frame(height: 20) } } },
            width: 200, height: 100)
        checkEqual(hosted.text("row 0")!.rect.midY, 10, accuracy: 0.5)
        #expect(_zentoroViewScroll(hosted.view, 50, 50, 0, 60) == 1)
        hosted.render()
        checkEqual(hosted.text("row 3")!.rect.midY, 10, accuracy: 0.5)
        // Scrolling stops at the end of the content.
        _ = _zentoroViewScroll(hosted.view, 50, 50, 0, 10_000)
        hosted.render()
        checkEqual(hosted.text("row 49")!.rect.midY, 90, accuracy: 0.5)
    }

    @Test func geometryReaderSeesItsSizeAndACircleStaysRoundInItsOffer() {
        let reader = Hosted(
            GeometryReader { proxy in Text("\(Int(proxy.size.width))x\(Int(proxy.size.height))") }.padding(10),
            width: 220, height: 120)
        reader.expectShown("200x100")
        let circle = Hosted(Circle().fill(Color.red).frame(width: 100, height: 40), width: 200, height: 100)
        checkEqual(circle.double.fills[0].bounds.width, 40, accuracy: 0.5)
        checkEqual(circle.double.fills[0].bounds.midX, 100, accuracy: 0.5)
    }

    @Test func platformColoursFollowThePalette() {
        let hosted = Hosted(
            VStack(spacing: 0) {
                Color(.white).frame(height: 10)
                Color(nsColor: .windowBackgroundColor).frame(height: 10)
                Color(uiColor: .label).frame(height: 10)
            }, width: 100, height: 100)
        func shades() -> [Double] { hosted.double.fills.filter { $0.bounds.height == 10 }.map(\.paint.color.green) }
        let light = shades()
        #expect(light.count == 3)
        #expect(light[0] == 1)
        #expect(light[1] > 0.85 && light[1] < 1, "a light grey window")
        #expect(light[2] == 0)
        var accent = ZentoroColor(red: 0, green: 0, blue: 1, alpha: 1)
        _zentoroViewSetAppearance(hosted.view, 1, &accent)
        hosted.render()
        let dark = shades()
        #expect(dark[0] == 1, "white stays white")
        #expect(dark[1] < 0.3, "a dark window")
        #expect(dark[2] == 1, "text turns light")
    }
}
