// swift-tools-version:5.9
import PackageDescription

// The hosted UI kit: a module named SwiftUI that hosted apps import, drawn by Zentoro's Qt host
// through the C interface in ZentoroHostInterface. Zentoro compiles these same sources itself
// (without this manifest) into its kit cache; the package exists so `swift test` runs the tests.
let package = Package(
    name: "ZentoroKit",
    products: [
        .library(name: "SwiftUI", type: .dynamic, targets: ["SwiftUI"]),
    ],
    targets: [
        .target(name: "ZentoroHostInterface"),
        .target(
            name: "SwiftUI",
            dependencies: ["ZentoroHostInterface"],
            swiftSettings: [.unsafeFlags(["-swift-version", "5"])]
        ),
        .testTarget(
            name: "SwiftUITests",
            dependencies: ["SwiftUI", "ZentoroHostInterface"],
            swiftSettings: [.unsafeFlags(["-swift-version", "5"])]
        ),
    ]
)
