// swift-tools-version:5.9
import PackageDescription

// The hosted UI kit: a module named SwiftUI that hosted apps import, drawn by Zentoro's Qt host
// through the C interface in ZentoroHostInterface. Zentoro compiles these same sources itself
// (without this manifest) into its kit cache; the package lets tests/kit_swift build the kit
// and test it against a host double.
let package = Package(
    name: "ZentoroKit",
    products: [
        .library(name: "SwiftUI", type: .dynamic, targets: ["SwiftUI"]),
        .library(name: "ZentoroHostInterface", targets: ["ZentoroHostInterface"])
    ],
    targets: [
        .target(name: "ZentoroHostInterface"),
        .target(name: "SwiftUI", dependencies: ["ZentoroHostInterface"])
    ],
    swiftLanguageVersions: [.v5]
)
