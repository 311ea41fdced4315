import Testing
import ZentoroHostInterface

@testable import SwiftUI

/// A clock the tests move by hand; every hosted view reads it while a test runs.
@MainActor
final class FakeClock {
    static var now = 100.0
    static func install() {
        now = 100
        Motion.clock = { FakeClock.now }
    }
    static func restore() { Motion.clock = { ProcessInfo.processInfo.systemUptime } }
}

private struct Mover: View {
    @State var far = false
    var animation: Animation = .linear(duration: 1)
    var body: some View {
        VStack {
            Button("Go") { withAnimation(animation) { far.toggle() } }
            Button("Snap") { far.toggle() }
            Text(far ? "far" : "near")
            Rectangle()
                .fill(far ? Color.red : Color.blue)
                .frame(width: far ? 200 : 100, height: 20)
                .opacity(far ? 0 : 1)
                .offset(x: far ? 100 : 0)
                .rotationEffect(.degrees(far ? 90 : 0))
        }
    }
}

private struct Wave: Shape {
    var height: Double
    var animatableData: Double {
        get { height }
        set { height = newValue }
    }
    func path(in rect: CGRect) -> Path { Path(CGRect(x: rect.minX, y: rect.minY, width: rect.width, height: height)) }
}

private struct Shapes: View {
    @State var on = false
    var body: some View {
        VStack {
            Button("Flip") { on.toggle() }
            Wave(height: on ? 100 : 0).frame(width: 50, height: 100)
            Circle().trim(from: 0, to: on ? 1 : 0.5).stroke(lineWidth: 2).frame(width: 100, height: 100)
        }
        .animation(.easeInOut(duration: 1), value: on)
    }
}

private struct Arrivals: View {
    @State var shown = false
    var body: some View {
        VStack(spacing: 0) {
            Button("Toggle") { withAnimation(.linear(duration: 1)) { shown.toggle() } }
            if shown {
                Rectangle().fill(Color.green).frame(width: 50, height: 50).transition(.move(edge: .leading).combined(with: .opacity))
            }
        }
    }
}

@MainActor
@Suite struct MotionTests {
    private func element<E: Element>(_ hosted: Hosted, _ type: E.Type) -> E? {
        var found: E?
        hosted.graph.rootElement?.forEach { if let e = $0 as? E { found = e } }
        return found
    }

    private func step(_ hosted: Hosted, to time: Double) {
        FakeClock.now = 100 + time
        hosted.render()
    }

    @Test func curvesAndSpringsRunFromStartToTarget() {
        func a(_ animation: Animation, _ t: Double) -> Double { animation.state(at: t).a }
        checkEqual(a(.linear(duration: 2), 0.5), 0.75, accuracy: 1e-9)
        checkEqual(a(.easeInOut(duration: 1), 0.5), 0.5, accuracy: 1e-6)
        #expect(a(.easeIn(duration: 1), 0.25) > 0.9 && a(.easeOut(duration: 1), 0.25) < 0.7, "ease in starts slow, ease out fast")
        #expect(a(.linear(duration: 1).delay(0.5), 0.4) == 1, "nothing moves during the delay")
        checkEqual(a(.linear(duration: 1).speed(2), 0.25), 0.5, accuracy: 1e-9)
        #expect(Animation.linear(duration: 1).state(at: 1).finished)

        // Springs settle on the target; a bouncy one overshoots on the way, a critically damped one never does.
        for spring in [
            Animation.spring(response: 0.4, dampingFraction: 0.6), .bouncy, .smooth, .snappy,
            .interpolatingSpring(stiffness: 170, damping: 15), .spring(duration: 0.3, bounce: -0.3)
        ] {
            let end = spring.curve.duration
            #expect(end > 0.1 && end < 5, "\(spring) settles in \(end) s")
            #expect(spring.state(at: end + 0.01).finished)
            #expect(!spring.state(at: end / 4).finished)
        }
        let overshoots = stride(from: 0.0, to: 1, by: 0.01).map { a(.bouncy, $0) }.min()!
        #expect(overshoots < -0.02)
        #expect(stride(from: 0.0, to: 1, by: 0.01).allSatisfy { a(.smooth, $0) >= -1e-9 })

        // Repeats run back and forth; for ever never finishes.
        let pulse = Animation.linear(duration: 1).repeatCount(3, autoreverses: true)
        checkEqual(a(pulse, 1.25), 0.25, accuracy: 1e-9)
        checkEqual(a(pulse, 2.25), 0.75, accuracy: 1e-9)
        #expect(pulse.state(at: 3.1).finished && !Animation.linear(duration: 1).repeatForever().state(at: 1e6).finished)
        #expect(pulse.delay(0.5).totalDuration == 3.5 && pulse.speed(2).totalDuration == 1.5)
    }

    @Test func changesInWithAnimationMoveOnScreenWhileStateIsFinal() {
        FakeClock.install()
        defer { FakeClock.restore() }
        let hosted = Hosted(Mover())
        #expect(hosted.graph.motion.nextFrame == nil, "an idle view wants no frames")
        hosted.click("Go")
        hosted.expectShown("far")
        step(hosted, to: 0.25)
        #expect(hosted.graph.motion.nextFrame != nil)
        checkEqual(element(hosted, OpacityElement.self)!.opacity, 0.75, accuracy: 1e-6)
        checkEqual(element(hosted, OffsetElement.self)!.offset.width, 25, accuracy: 1e-6)
        checkEqual(element(hosted, FixedFrameElement.self)!.width!, 125, accuracy: 1e-6)
        let color = element(hosted, ShapeElement.self)!.color!
        #expect(color.red > 0.2 && color.red < 0.5 && color.blue > 0.5, "the fill is on its way from blue to red")

        // A change back mid-way starts from where the value is drawn.
        hosted.click("Go")
        checkEqual(element(hosted, OpacityElement.self)!.opacity, 0.75, accuracy: 0.02)
        step(hosted, to: 0.75)
        checkEqual(element(hosted, OpacityElement.self)!.opacity, 0.875, accuracy: 0.01)
        step(hosted, to: 2)
        #expect(element(hosted, OpacityElement.self)!.opacity == 1 && element(hosted, ShapeElement.self)!.color == nil)
        #expect(hosted.graph.motion.nextFrame == nil, "frames stop when nothing moves")

        // A change without an animation jumps.
        hosted.click("Snap")
        #expect(element(hosted, OpacityElement.self)!.opacity == 0)
    }

    @Test func springsRetargetWithTheirSpeed() {
        FakeClock.install()
        defer { FakeClock.restore() }
        let hosted = Hosted(Mover(animation: .spring(response: 0.5, dampingFraction: 0.8)))
        hosted.click("Go")
        var last = 0.0
        for frame in 1...6 {
            step(hosted, to: Double(frame) / 60)
            last = element(hosted, OffsetElement.self)!.offset.width
        }
        hosted.click("Go")
        step(hosted, to: 7.0 / 60)
        #expect(element(hosted, OffsetElement.self)!.offset.width > last, "the spring keeps its way a moment before it turns")
        step(hosted, to: 3)
        #expect(element(hosted, OffsetElement.self)!.offset.width == 0)
    }

    @Test func customAnimatableShapesAndTrimFollowAnimationScopes() {
        FakeClock.install()
        defer { FakeClock.restore() }
        let hosted = Hosted(Shapes())
        hosted.click("Flip")
        let half = hosted.double.strokes.last!
        step(hosted, to: 0.25)
        let wave = hosted.double.fills.map(\.bounds).first { $0.width == 50 }!
        checkEqual(wave.height, 100 * (1 - Animation.easeInOut(duration: 1).state(at: 0.25).a), accuracy: 0.5)
        let ring = hosted.double.strokes.last!
        step(hosted, to: 1.5)
        checkEqual(hosted.double.fills.map(\.bounds).first { $0.width == 50 }!.height, 100, accuracy: 0.01)
        let whole = hosted.double.strokes.last!
        #expect(ring != half && ring != whole, "the trimmed ring grows on the way: \(half) \(ring) \(whole)")
    }

    @Test func insertedAndRemovedViewsRunTheirTransitions() {
        FakeClock.install()
        defer { FakeClock.restore() }
        let hosted = Hosted(Arrivals())
        func green() -> [CGRect] { hosted.double.fills.filter { $0.paint.color.green > 0.7 && $0.paint.color.red < 0.3 }.map(\.bounds) }
        hosted.click("Toggle")
        let pass = hosted.graph.pass
        step(hosted, to: 0.5)
        #expect(hosted.graph.pass == pass, "a frame that only moves a transition along resolves nothing")
        let arriving = element(hosted, TransitionElement.self)!
        checkEqual(arriving.progress, 0.5, accuracy: 1e-6)
        let placed = arriving.frame
        checkEqual(green().first!.minX, placed.minX - 25, accuracy: 0.5)
        step(hosted, to: 1.5)
        checkEqual(green().first!.minX, placed.minX, accuracy: 0.01)

        hosted.click("Toggle")
        #expect(element(hosted, TransitionElement.self) == nil, "the removed view is gone from the tree at once")
        step(hosted, to: 1.75)
        checkEqual(green().first!.minX, placed.minX - 12.5, accuracy: 0.5)
        // Inserted again while leaving: it comes back from where it is.
        hosted.click("Toggle")
        checkEqual(element(hosted, TransitionElement.self)!.progress, 0.75, accuracy: 0.02)
        hosted.click("Toggle")
        step(hosted, to: 4)
        #expect(green().isEmpty && hosted.graph.motion.nextFrame == nil)
    }
}

private struct Bar: View, Animatable {
    var fraction: Double
    var animatableData: Double {
        get { fraction }
        set { fraction = newValue }
    }
    var body: some View { Text("\(Int(fraction * 100))%") }
}

private struct Grow: AnimatableModifier {
    var width: Double
    var animatableData: Double {
        get { width }
        set { width = newValue }
    }
    func body(content: Content) -> some View { content.frame(width: width, height: 10) }
}

private struct Progress: View {
    @State var done = false
    var body: some View {
        VStack {
            Button("Finish") { withAnimation(.linear(duration: 1)) { done = true } }
            Bar(fraction: done ? 1 : 0)
            Color.blue.modifier(Grow(width: done ? 200 : 0))
        }
    }
}

extension MotionTests {
    @Test func appsOwnAnimatableViewsAndModifiersSeeEachStep() {
        FakeClock.install()
        defer { FakeClock.restore() }
        let hosted = Hosted(Progress())
        hosted.click("Finish")
        step(hosted, to: 0.5)
        hosted.expectShown("50%")
        #expect(hosted.double.fills.contains { $0.bounds.width == 100 && $0.bounds.height == 10 })
    }
}

private struct Shelf: View {
    @State var items = ["a", "b"]
    var body: some View {
        VStack(spacing: 0) {
            Button("Add") { withAnimation(.linear(duration: 1)) { items.insert("z", at: 0) } }
            ForEach(items, id: \.self) { Text($0).frame(height: 40) }
        }
    }
}

extension MotionTests {
    @Test func rowsSlideToTheirNewPlaceWhenOneIsInsertedAbove() {
        FakeClock.install()
        defer { FakeClock.restore() }
        let hosted = Hosted(Shelf())
        let before = hosted.text("a")!.rect.minY
        hosted.click("Add")
        // The stack grows by a row and stays centred: "a" ends 20 points lower.
        step(hosted, to: 0.5)
        checkEqual(hosted.text("a")!.rect.minY, before + 10, accuracy: 0.5)
        step(hosted, to: 2)
        checkEqual(hosted.text("a")!.rect.minY, before + 20, accuracy: 0.01)
        #expect(hosted.graph.motion.nextFrame == nil)
    }
}
