import Foundation

// What SwiftUI has and this kit does not. Each is declared so that the compiler's message
// names what to write instead, rather than saying it cannot find the name.

@available(
    *, unavailable,
    message:
        "Chart isn't in Zentoro's SwiftUI: draw bars as Rectangles in an HStack scaled by GeometryReader, or a line as a Path; label axes with Text"
)
public struct Chart<Content: View>: View {
    public init(@ViewBuilder content: () -> Content) { fatalError() }
    public init<Data: RandomAccessCollection, C: View>(_ data: Data, @ViewBuilder content: @escaping (Data.Element) -> C) { fatalError() }
    public typealias Body = Never
}
@available(*, unavailable, message: "BarMark isn't in Zentoro's SwiftUI: draw bars as Rectangles in an HStack scaled by GeometryReader")
public struct BarMark: View {
    public init<X, Y>(x: X, y: Y) { fatalError() }
    public typealias Body = Never
}
@available(*, unavailable, message: "LineMark isn't in Zentoro's SwiftUI: draw the line as a Path through the points in a GeometryReader")
public struct LineMark: View {
    public init<X, Y>(x: X, y: Y) { fatalError() }
    public typealias Body = Never
}
@available(*, unavailable, message: "SectorMark isn't in Zentoro's SwiftUI: draw the slices with Path.addArc in a Canvas or Shape")
public struct SectorMark: View {
    public init<A>(angle: A) { fatalError() }
    public typealias Body = Never
}
@available(
    *, unavailable,
    message: "Map isn't in Zentoro's SwiftUI (there are no maps on this desktop): show the place's name and coordinates as Text"
)
public struct Map<Content: View>: View {
    public init(@ViewBuilder content: () -> Content) { fatalError() }
    public typealias Body = Never
}
@available(*, unavailable, message: "VideoPlayer isn't in Zentoro's SwiftUI: show a placeholder with Image(systemName: \"play.rectangle\")")
public struct VideoPlayer: View {
    public init<P>(player: P?) { fatalError() }
    public typealias Body = Never
}
@available(*, unavailable, message: "PhotosPicker isn't in Zentoro's SwiftUI: let the user pick from a grid of colours or symbols instead")
public struct PhotosPicker<Label: View>: View {
    public init<S>(selection: S, @ViewBuilder label: () -> Label) { fatalError() }
    public typealias Body = Never
}
@available(
    *, unavailable,
    message:
        "AsyncImage isn't in Zentoro's SwiftUI yet: show Image(systemName: \"photo\") or a coloured placeholder; load data with URLSession for anything else"
)
public struct AsyncImage<Content: View>: View {
    public init(url: URL?, scale: CGFloat = 1) { fatalError() }
    public init<I: View, P: View>(
        url: URL?, scale: CGFloat = 1, @ViewBuilder content: @escaping (Image) -> I, @ViewBuilder placeholder: @escaping () -> P
    ) {
        fatalError()
    }
    public init(url: URL?, scale: CGFloat = 1, @ViewBuilder content: @escaping (AsyncImagePhase) -> Content) { fatalError() }
    public typealias Body = Never
}
public enum AsyncImagePhase {
    case empty, success(Image), failure(Error)
}
@available(
    *, unavailable,
    message: "ViewThatFits isn't in Zentoro's SwiftUI yet: choose the layout yourself with GeometryReader and an if on the width"
)
public struct ViewThatFits<Content: View>: View {
    public init(in axes: Axis.Set = [.horizontal, .vertical], @ViewBuilder content: () -> Content) { fatalError() }
    public typealias Body = Never
}
@available(
    *, unavailable,
    message:
        "custom Layout isn't in Zentoro's SwiftUI: arrange views with HStack, VStack, Grid or LazyVGrid, or place them with .position inside a GeometryReader"
)
public protocol Layout {}
@available(*, unavailable, message: "AnyLayout isn't in Zentoro's SwiftUI: switch between an HStack and a VStack with if/else")
public struct AnyLayout {
    public init<L>(_ layout: L) { fatalError() }
}
@available(
    *, unavailable,
    message:
        "ImageRenderer isn't in Zentoro's SwiftUI: a view can't be turned into an image here; share its data as text with ShareLink instead"
)
public final class ImageRenderer<Content: View> {
    public init(content: Content) { fatalError() }
}
@available(
    *, unavailable,
    message:
        "Zentoro runs the app's AppRoot view in its own window: remove the App and its WindowGroup, and keep the content view as `struct AppRoot: View`"
)
public protocol App {}
@available(
    *, unavailable,
    message:
        "Zentoro runs the app's AppRoot view in its own window: remove the Scene and its WindowGroup, and keep the content view as `struct AppRoot: View`"
)
public protocol Scene {}
@available(
    *, unavailable,
    message:
        "Zentoro runs the app's AppRoot view in its own window: remove the WindowGroup and keep the content view as `struct AppRoot: View`"
)
public struct WindowGroup<Content: View> {
    public init(@ViewBuilder content: () -> Content) { fatalError() }
}
@available(*, unavailable, message: "MenuBarExtra isn't in Zentoro's SwiftUI: put the commands in the window, in a .toolbar or a Menu")
public struct MenuBarExtra<Content: View> {
    public init(_ title: String, systemImage: String, @ViewBuilder content: () -> Content) { fatalError() }
}
@available(*, unavailable, message: "@SceneStorage isn't in Zentoro's SwiftUI: use @AppStorage, which keeps the value for this app")
@propertyWrapper
public struct SceneStorage<Value> {
    public init(wrappedValue: Value, _ key: String) { fatalError() }
    public var wrappedValue: Value { fatalError() }
}
@available(
    *, unavailable,
    message: "@FocusedValue isn't in Zentoro's SwiftUI: pass the value down, or share it through an @Observable model in the environment"
)
@propertyWrapper
public struct FocusedValue<Value> {
    public init<K>(_ keyPath: K) { fatalError() }
    public var wrappedValue: Value? { fatalError() }
}
@available(
    *, unavailable,
    message:
        "UIViewRepresentable isn't in Zentoro's SwiftUI (no UIKit on this desktop): build the view from SwiftUI views, Shapes or a Canvas"
)
public protocol UIViewRepresentable {}
@available(
    *, unavailable,
    message: "NSViewRepresentable isn't in Zentoro's SwiftUI (no AppKit on Linux): build the view from SwiftUI views, Shapes or a Canvas"
)
public protocol NSViewRepresentable {}
@available(
    *, unavailable, message: "UIImage isn't in Zentoro's SwiftUI (no UIKit on this desktop): use Image(systemName:) or draw with Shapes"
)
public final class UIImage {}
@available(*, unavailable, message: "NSImage isn't in Zentoro's SwiftUI (no AppKit on Linux): use Image(systemName:) or draw with Shapes")
public final class NSImage {}

extension Image {
    @available(*, unavailable, message: "Image(uiImage:) isn't in Zentoro's SwiftUI: use Image(systemName:) or draw with Shapes")
    public init(uiImage: Any) { fatalError() }
    @available(*, unavailable, message: "Image(nsImage:) isn't in Zentoro's SwiftUI: use Image(systemName:) or draw with Shapes")
    public init(nsImage: Any) { fatalError() }
}

extension View {
    @available(
        *, unavailable,
        message:
            "navigationDestination(isPresented:) isn't in Zentoro's SwiftUI yet: use NavigationLink(value:) with .navigationDestination(for:), or a .sheet"
    )
    public func navigationDestination<V: View>(isPresented: Binding<Bool>, @ViewBuilder destination: () -> V) -> EmptyView { fatalError() }
    @available(
        *, unavailable,
        message:
            "navigationDestination(item:) isn't in Zentoro's SwiftUI yet: use NavigationLink(value:) with .navigationDestination(for:), or .sheet(item:)"
    )
    public func navigationDestination<D: Hashable, C: View>(item: Binding<D?>, @ViewBuilder destination: @escaping (D) -> C) -> EmptyView {
        fatalError()
    }
    @available(
        *, unavailable,
        message: "fileExporter isn't in Zentoro's SwiftUI: write the file into URL.documentsDirectory and tell the user where it went"
    )
    public func fileExporter<D>(
        isPresented: Binding<Bool>, document: D?, contentType: UTType, defaultFilename: String? = nil,
        onCompletion: @escaping (Result<URL, Error>) -> Void
    ) -> EmptyView { fatalError() }
}
