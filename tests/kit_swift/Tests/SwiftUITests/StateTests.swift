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

private struct ModelView: View {
    @StateObject private var model = Model()
    @State private var unrelated = 0
    var body: some View {
        VStack {
            Text("\(model.items.count) items")
            Button("Push") { model.items.append("x") }
            Button("Bump \(unrelated)") { unrelated += 1 }
            Child(model: model)
        }
    }
}

private struct Child: View {
    @ObservedObject var model: Model
    var body: some View { Text("last: \(model.items.last ?? "none")") }
}

private struct BindingParent: View {
    @State private var value = 1
    var body: some View {
        VStack {
            Text("parent \(value)")
            Stepper2(value: $value)
        }
    }
}
private struct Stepper2: View {
    @Binding var value: Int
    var body: some View { Button("inc") { value += 1 } }
}

@MainActor @Suite struct StateTests {
    @Test func buttonChangesStateAndRedrawsOnlyItsOwnRoot() {
        let hosted = Hosted(Counter()), other = Hosted(Counter())
        let before = hosted.double.redrawRequests
        hosted.click("Add")
        checkGreaterThan(hosted.double.redrawRequests, before)
        checkNotNil(hosted.text("Count: 1"))
        hosted.click("Add")
        checkNotNil(hosted.text("Count: 2"))
        other.render()
        checkNotNil(other.text("Count: 0"), "two root views of one type keep separate state")
    }

    @Test func stateLivesAsLongAsTheViewAtItsPlace() {
        let hosted = Hosted(Toggler())
        hosted.click("Add")
        checkNotNil(hosted.text("Count: 1"))
        hosted.click("Flip")
        checkNotNil(hosted.text("Off"))
        hosted.click("Flip")
        checkNotNil(hosted.text("Count: 0"), "a view that left and came back starts afresh")
    }

    @Test func forEachKeepsStateWithTheIdentifierNotThePosition() {
        let hosted = Hosted(Rows())
        hosted.click("1:0")
        checkEqual(Array(hosted.strings.prefix(3)), ["1:1", "2:0", "3:0"])
        hosted.click("Reverse")
        checkEqual(Array(hosted.strings.prefix(3)), ["3:0", "2:0", "1:1"])
    }

    @Test func stateObjectIsMadeOnceAndItsChangesRedraw() {
        Model.made = 0
        let hosted = Hosted(ModelView())
        hosted.click("Push")
        hosted.click("Bump 0")
        hosted.click("Push")
        checkNotNil(hosted.text("2 items"))
        checkNotNil(hosted.text("last: x"))
        checkEqual(Model.made, 1)
    }

    @Test func bindingWritesThroughToTheOwner() {
        let hosted = Hosted(BindingParent())
        hosted.click("inc")
        checkNotNil(hosted.text("parent 2"))
    }

    @Test func observationMacroObjectsRedraw() {
        let hosted = Hosted(ObservedCounterView())
        hosted.click("more")
        checkNotNil(hosted.text("value 1"))
    }
}

@Observable private final class ObservedCounter { var value = 0 }
private struct ObservedCounterView: View {
    @State private var counter = ObservedCounter()
    var body: some View {
        VStack { Text("value \(counter.value)"); Button("more") { counter.value += 1 } }
    }
}
