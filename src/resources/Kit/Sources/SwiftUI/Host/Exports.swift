@_exported import Dispatch
// As on Apple's systems, `import SwiftUI` alone brings Foundation, Dispatch and Observation.
@_exported import Foundation
@_exported import Observation
