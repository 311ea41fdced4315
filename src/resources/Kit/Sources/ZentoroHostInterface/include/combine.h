/* Nothing: Combine's types live in the SwiftUI module (see module.modulemap). */
