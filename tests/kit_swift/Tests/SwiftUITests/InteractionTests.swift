import Testing

@testable import SwiftUI

private struct Form1: View {
    @State var name = ""
    @FocusState var focused: Bool
    var body: some View {
        VStack {
            TextField("Name", text: $name).focused($focused)
            Text("typed \(name)")
            Button("Focus") { focused = true }
        }
    }
}

private struct Dragger: View {
    @State var offset = CGSize.zero
    @State var ended = false
    var body: some View {
        Color.red.frame(width: 100, height: 100)
            .gesture(DragGesture().onChanged { offset = $0.translation }.onEnded { _ in ended = true })
            .overlay(Text("\(Int(offset.width)),\(Int(offset.height)) \(ended)").allowsHitTesting(false))
    }
}

/// A stroked outline over a button, and a ring and texts that take taps.
private struct Pointers: View {
    @State var presses = 0
    @State var ringTaps = 0
    @State var singles = 0
    @State var doubles = 0
    var body: some View {
        VStack {
            Button("pressed \(presses)") { presses += 1 }
                .frame(width: 120, height: 40)
                .overlay(RoundedRectangle(cornerRadius: 8).stroke(Color.blue, lineWidth: 2))
            Circle().stroke(lineWidth: 4).frame(width: 60, height: 60)
                .onTapGesture { ringTaps += 1 }
            Text("ring \(ringTaps)")
            Text("double \(doubles)").onTapGesture(count: 2) { doubles += 1 }
            Text("single \(singles)").onTapGesture { singles += 1 }
        }
    }
}

private struct Lifecycle: View {
    @State var shown = true
    @State var value = 0
    @State var log: [String] = []
    var body: some View {
        VStack {
            if shown {
                Text("child").onAppear { log.append("appear") }.onDisappear { log.append("disappear") }
            }
            Text("log \(log.joined(separator: ","))")
            Button("hide") { shown = false }
            Button("bump") { value += 1 }
        }
        .onChange(of: value) { old, new in log.append("\(old)>\(new)") }
    }
}

private enum Mode { case a, b, c }
private struct Switcher: View {
    @State var mode = Mode.a
    @State var name: String? = nil
    var body: some View {
        VStack {
            switch mode {
            case .a: Text("mode a")
            case .b: Text("mode b")
            case .c: EmptyView()
            }
            if let name { Text("hi \(name)") } else { Text("nobody") }
            Button("next") {
                mode = mode == .a ? .b : .c; name = "ada"
            }
        }
    }
}

private struct Card: ViewModifier {
    @State var taps = 0
    func body(content: Content) -> some View {
        VStack {
            content; Button("card \(taps)") { taps += 1 }
        }
    }
}

private struct Pill: ButtonStyle {
    func makeBody(configuration: Configuration) -> some View {
        configuration.label.padding(4).background(configuration.isPressed ? Color.red : Color.blue)
    }
}

private struct Styled: View {
    @State var count = 0
    var body: some View {
        VStack {
            Text("a").modifier(Card())
            Text("b").modifier(Card())
            Button("styled \(count)") { count += 1 }.buttonStyle(Pill())
        }
    }
}

private struct Todo: Identifiable { let id = UUID(); var title: String; var done = false }
private struct Stores: View {
    @State var todos = [Todo(title: "one"), Todo(title: "two")]
    @AppStorage("launches") var launches = 0
    var body: some View {
        VStack {
            ForEach($todos) { $todo in
                Button("\(todo.title) \(todo.done ? "done" : "open")") { todo.done.toggle() }
            }
            Button("launches \(launches)") { launches += 1 }
        }
    }
}

@MainActor @Suite struct InteractionTests {
    @Test func clicksReachTapGesturesByCountAndPassThroughStrokesWithoutOne() {
        let hosted = Hosted(Pointers(), width: 300, height: 300)
        hosted.click("pressed 0")
        let ring = hosted.double.strokes.first { $0.width == $0.height }!
        hosted.click(CGPoint(x: ring.midX, y: ring.midY))
        hosted.click("single 0")
        hosted.click("double 0", count: 1)
        hosted.expectShown("pressed 1", "ring 1", "single 1", "double 0")
        hosted.click("double 0", count: 2)
        hosted.expectShown("double 1")
    }

    @Test func dragsReportTranslationAndEnd() {
        let hosted = Hosted(Dragger(), width: 200, height: 200)
        hosted.drag(from: CGPoint(x: 100, y: 100), to: CGPoint(x: 130, y: 80))
        hosted.expectShown("30,-20 true")
    }

    @Test func textFieldsReportTheirTextAndFollowFocus() {
        let hosted = Hosted(Form1())
        let field = hosted.double.fields.first!
        #expect(field.prompt == "Name" && field.flags & 2 == 0)
        hosted.type("Ada", into: field.identifier)
        #expect(hosted.double.fields.first!.text == "Ada")
        hosted.expectShown("typed Ada")
        hosted.click("Focus")
        #expect(hosted.double.fields.first!.flags & 2 == 2, "the kit asks the host to focus the field")
        #expect(hosted.double.fields.first!.identifier == field.identifier, "the same field across renders")
    }

    @Test func appearChangeAndDisappearRunInOrder() {
        let hosted = Hosted(Lifecycle())
        #expect(hosted.text("log appear") != nil, "onAppear's change shows in the first frame")
        hosted.click("bump")
        hosted.click("hide")
        hosted.expectShown("log appear,0>1,disappear")
    }

    @Test func switchAndIfLetChooseBranches() {
        let hosted = Hosted(Switcher())
        hosted.expectShown("mode a", "nobody")
        hosted.click("next")
        hosted.expectShown("mode b", "hi ada")
        hosted.click("next")
        #expect(!hosted.strings.contains { $0.hasPrefix("mode") })
    }

    @Test func customModifiersKeepStatePerUseAndButtonStylesSeeThePress() {
        let hosted = Hosted(Styled())
        hosted.click(hosted.double.texts.filter { $0.string == "card 0" }[1].rect.origin.applying(.init(translationX: 2, y: 2)))
        #expect(hosted.strings.filter { $0.hasPrefix("card") } == ["card 0", "card 1"])
        let styled = hosted.text("styled 0")!.rect
        _ = _zentoroViewPointer(hosted.view, 0, styled.midX, styled.midY, 0, 1)
        hosted.render()
        let pressedFill = hosted.double.fills.last!.paint.color
        #expect(pressedFill.red > 0.9 && pressedFill.blue < 0.3, "pressed: \(pressedFill)")
        _ = _zentoroViewPointer(hosted.view, 2, styled.midX, styled.midY, 0, 1)
        hosted.render()
        hosted.expectShown("styled 1")
    }

    @Test func forEachOverBindingsAndAppStorageWriteThrough() {
        let suite = "dev.vantu.zentoro.kit-test.\(UUID().uuidString)"
        let store = UserDefaults(suiteName: suite)!
        let hosted = Hosted(Stores().defaultAppStorage(store))
        hosted.click("two open")
        hosted.click("launches 0")
        hosted.expectShown("two done", "one open", "launches 1")
        #expect(store.integer(forKey: "launches") == 1)
        #expect(UserDefaults.standard.integer(forKey: "launches") == 0)
        store.removePersistentDomain(forName: suite)
    }

    @Test func subjectsDeliverInOrderUntilCancelled() {
        let subject = PassthroughSubject<Int, Never>()
        var seen: [Int] = []
        let cancellable = subject.filter { $0 % 2 == 0 }.map { $0 * 10 }.removeDuplicates().sink { seen.append($0) }
        [1, 2, 2, 4, 5].forEach(subject.send)
        cancellable.cancel()
        subject.send(6)
        #expect(seen == [20, 40])
    }
}
