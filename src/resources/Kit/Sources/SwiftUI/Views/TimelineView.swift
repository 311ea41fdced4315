import Foundation

/// Redraws its content on a schedule: `TimelineView(.periodic(from: .now, by: 1)) { context in ... }`.
public struct TimelineView<Schedule: TimelineSchedule, Content: View>: View, PrimitiveView {
    public typealias Body = Never
    public typealias Context = TimelineViewDefaultContext
    let schedule: Schedule
    let content: (Context) -> Content
    public init(_ schedule: Schedule, @ViewBuilder content: @escaping (Context) -> Content) {
        self.schedule = schedule; self.content = content
    }
    func resolve(_ context: ResolveContext) -> [Element] {
        let (node, isNew) = context.graph.storage(at: context.child(.id("timeline")).path)
        if let animation = schedule as? AnimationTimelineSchedule {
            // Frames of the host's display timer, for as long as the timeline shows and runs.
            if !animation.paused { context.graph.motion.requestFrames(every: animation.interval) }
        } else if isNew {
            let graph = context.graph
            let interval = max(1.0 / 60, schedule.interval)
            let timer = Timer(timeInterval: interval, repeats: true) { [weak graph] _ in
                MainActor.assumeIsolated { graph?.invalidate() }
            }
            RunLoop.main.add(timer, forMode: .common)
            node.cancellables.append(AnyCancellable { timer.invalidate() })
        }
        let now = Date()
        return resolveView(
            content(Context(date: now, cadence: schedule.interval >= 60 ? .minutes : schedule.interval >= 1 ? .seconds : .live)),
            context.child(.index(0)))
    }
}

public struct TimelineViewDefaultContext {
    public let date: Date
    public let cadence: Cadence
    public enum Cadence: Comparable, Sendable { case live, seconds, minutes }
}

public protocol TimelineSchedule {
    var interval: TimeInterval { get }
}
public struct PeriodicTimelineSchedule: TimelineSchedule {
    public let interval: TimeInterval
    public init(from startDate: Date, by interval: TimeInterval) { self.interval = interval }
}
public struct EveryMinuteTimelineSchedule: TimelineSchedule { public var interval: TimeInterval { 60 } }
public struct AnimationTimelineSchedule: TimelineSchedule {
    public let interval: TimeInterval
    let paused: Bool
    public init(minimumInterval: Double? = nil, paused: Bool = false) {
        interval = minimumInterval ?? 1.0 / 60
        self.paused = paused
    }
}
extension TimelineSchedule where Self == PeriodicTimelineSchedule {
    public static func periodic(from startDate: Date, by interval: TimeInterval) -> PeriodicTimelineSchedule {
        PeriodicTimelineSchedule(from: startDate, by: interval)
    }
}
extension TimelineSchedule where Self == EveryMinuteTimelineSchedule {
    public static var everyMinute: EveryMinuteTimelineSchedule { EveryMinuteTimelineSchedule() }
}
extension TimelineSchedule where Self == AnimationTimelineSchedule {
    public static var animation: AnimationTimelineSchedule { AnimationTimelineSchedule() }
    public static func animation(minimumInterval: Double? = nil, paused: Bool = false) -> AnimationTimelineSchedule {
        AnimationTimelineSchedule(minimumInterval: minimumInterval, paused: paused)
    }
}
