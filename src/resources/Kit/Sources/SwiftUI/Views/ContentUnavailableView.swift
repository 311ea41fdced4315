import Foundation

/// What a screen shows when it has nothing to show: a large symbol, a title, a description
/// and actions, centred in the room it is given.
public struct ContentUnavailableView<Label: View, Description: View, Actions: View>: View {
    let label: Label
    let description: Description
    let actions: Actions

    public init(
        @ViewBuilder label: () -> Label, @ViewBuilder description: () -> Description = { EmptyView() },
        @ViewBuilder actions: () -> Actions = { EmptyView() }
    ) {
        self.label = label(); self.description = description(); self.actions = actions()
    }

    public var body: some View {
        VStack(spacing: 10) {
            label.labelStyle(LabelStyleKind.unavailable)
            description.font(.callout).foregroundStyle(.secondary).multilineTextAlignment(.center)
            actions.padding(.top, 4)
        }
        .padding(24)
        .frame(maxWidth: .infinity, maxHeight: .infinity)
    }
}

extension ContentUnavailableView where Label == SwiftUI.Label<Text, Image>, Description == Text?, Actions == EmptyView {
    public init(_ titleKey: LocalizedStringKey, systemImage: String, description: Text? = nil) {
        self.init(label: { SwiftUI.Label(titleKey, systemImage: systemImage) }, description: { description })
    }
    @_disfavoredOverload
    public init<S: StringProtocol>(_ title: S, systemImage: String, description: Text? = nil) {
        self.init(label: { SwiftUI.Label(title, systemImage: systemImage) }, description: { description })
    }
    public init(_ titleKey: LocalizedStringKey, image name: String, description: Text? = nil) {
        self.init(label: { SwiftUI.Label(titleKey, systemImage: "photo") }, description: { description })
    }
}

extension ContentUnavailableView
where
    Label == SearchUnavailableContent.Label, Description == SearchUnavailableContent.Description,
    Actions == EmptyView
{
    /// "No Results", with the text searched for when there is one.
    public static var search: Self { search(text: "") }
    public static func search(text: String) -> Self {
        ContentUnavailableView(
            label: { SearchUnavailableContent.Label() }, description: { SearchUnavailableContent.Description(text: text) })
    }
}

public enum SearchUnavailableContent {
    public struct Label: View {
        public var body: some View { SwiftUI.Label("No Results", systemImage: "magnifyingglass") }
    }
    public struct Description: View {
        let text: String
        public var body: some View {
            Text(
                text.isEmpty
                    ? "Check the spelling or try a new search." : "No results for “\(text)”. Check the spelling or try a new search.")
        }
    }
}
