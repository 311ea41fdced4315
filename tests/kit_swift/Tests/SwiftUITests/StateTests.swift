import Testing

@testable import SwiftUI

private struct Counter: View {
    @State private var count = 0
    var body: some View {
        VStack {
            Text("Count: \(count)")
            Button("Add") { count += 1 }
        }
    }
}

private struct Toggler: View {
    @State private var on = true
    var body: some View {
        VStack {
            Button("Flip") { on.toggle() }
            if on { Counter() } else { Text("Off") }
        }
    }
}

private struct Row: View, Identifiable {
    let id: Int
    @State private var taps = 0
    var body: some View { Button("\(id):\(taps)") { taps += 1 } }
}

private struct Rows: View {
    @State var order = [1, 2, 3]
    var body: some View {
        VStack {
            ForEach(order, id: \.self) { Row(id: $0) }
            Button("Reverse") { order.reverse() }
        }
    }
}

private final class Model: ObservableObject {
    static var made = 0
    @Published var items: [String] = []
    init() { Model.made += 1 }
}

@Observable private final class ObservedCounter { var value = 0 }

/// Each way of owning state outside a plain @State value, side by side.
private struct Owners: View {
    @StateObject private var model = Model()
    @State private var unrelated = 0
    @State private var counter = ObservedCounter()
    var body: some View {
        VStack {
            Text("\(model.items.count) items")
            Button("Push") { model.items.append("x") }
            Button("Bump \(unrelated)") { unrelated += 1 }
            Child(model: model)
            Text("unrelated \(unrelated)")
            Stepper2(value: $unrelated)
            Text("value \(counter.value)")
            Button("more") { counter.value += 1 }
        }
    }
}

private struct Child: View {
    @ObservedObject var model: Model
    var body: some View { Text("last: \(model.items.last ?? "none")") }
}

private struct Stepper2: View {
    @Binding var value: Int
    var body: some View { Button("inc") { value += 1 } }
}

@MainActor @Suite struct StateTests {
    @Test func stateLivesAsLongAsTheViewAtItsPlace() {
        let hosted = Hosted(Toggler())
        hosted.click("Add")
        hosted.expectShown("Count: 1")
        hosted.click("Flip")
        hosted.expectShown("Off")
        hosted.click("Flip")
        #expect(hosted.text("Count: 0") != nil, "a view that left and came back starts afresh")
    }

    @Test func forEachKeepsStateWithTheIdentifierNotThePosition() {
        let hosted = Hosted(Rows())
        hosted.click("1:0")
        #expect(Array(hosted.strings.prefix(3)) == ["1:1", "2:0", "3:0"])
        hosted.click("Reverse")
        #expect(Array(hosted.strings.prefix(3)) == ["3:0", "2:0", "1:1"])
    }

    @Test func stateObjectsAreMadeOnceAndBindingsAndObservableObjectsRedraw() {
        Model.made = 0
        let hosted = Hosted(Owners())
        hosted.click("Push")
        hosted.click("Bump 0")
        hosted.click("Push")
        hosted.click("inc")
        hosted.click("more")
        hosted.expectShown("2 items", "last: x", "unrelated 2", "value 1")
        #expect(Model.made == 1)
    }
}
