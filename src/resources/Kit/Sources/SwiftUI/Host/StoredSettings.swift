import Foundation

/// Stored settings reach the disk. On Linux, Foundation writes `UserDefaults` only when it is
/// asked to, so each `@AppStorage` change is written a moment after it is made; a burst of
/// changes (a slider being dragged) becomes one write. What the app keeps in `UserDefaults`
/// directly is written by the host, through `zentoro_kit_save_settings`, now and then and
/// before every orderly end.
enum StoredSettings {
    static let delay: TimeInterval = 0.25
    private static let lock = NSLock()
    nonisolated(unsafe) private static var waiting: [UserDefaults] = []

    static func changed(_ store: UserDefaults) {
        lock.lock()
        let first = waiting.isEmpty
        if !waiting.contains(where: { $0 === store }) { waiting.append(store) }
        lock.unlock()
        if first {
            DispatchQueue.main.asyncAfter(deadline: .now() + delay) { write() }
        }
    }

    private static func write() {
        lock.lock()
        let stores = waiting
        waiting = []
        lock.unlock()
        for store in stores { store.synchronize() }
    }
}

@_cdecl("zentoro_kit_save_settings")
public func _zentoroKitSaveSettings(_ suite: UnsafePointer<CChar>?) {
    UserDefaults.standard.synchronize()
    if let suite { UserDefaults(suiteName: String(cString: suite))?.synchronize() }
}
