// swift-tools-version:5.9
import PackageDescription

// The kit's own tests: the kit package built as it is, hosted by a double with fixed text
// metrics that records what the kit draws.
let package = Package(
    name: "ZentoroKitTests",
    dependencies: [.package(path: "../../src/resources/Kit")],
    targets: [
        .testTarget(
            name: "SwiftUITests",
            dependencies: [
                .product(name: "SwiftUI", package: "Kit"),
                .product(name: "ZentoroHostInterface", package: "Kit")
            ]
        )
    ],
    swiftLanguageVersions: [.v5]
)
