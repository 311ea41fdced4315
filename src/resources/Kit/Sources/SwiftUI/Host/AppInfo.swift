/// The copy's name, as the program's file is called, which the hosted app may greet the user
/// with. An app that declares an `AppInfo` of its own uses that one instead: declarations of
/// its own module come before the kit's.
public enum AppInfo {
    public static var name: String { copyName }
    /// Set by `ZentoroHosting.makeRootView` before any of the app's code runs.
    nonisolated(unsafe) static var copyName = ""
}
