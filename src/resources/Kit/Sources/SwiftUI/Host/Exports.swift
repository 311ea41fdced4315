@_exported import Dispatch
// As on Apple's systems, `import SwiftUI` alone brings Foundation, Dispatch and Observation,
// and with them URLSession and URLRequest, which Linux keeps in FoundationNetworking.
@_exported import Foundation
@_exported import Observation

#if canImport(FoundationNetworking)
    @_exported import FoundationNetworking
#endif
