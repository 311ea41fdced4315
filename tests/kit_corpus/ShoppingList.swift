import SwiftUI

struct Item: Identifiable {
    let id = UUID()
    var name: String
    var quantity: Int
    var category: String
    var bought = false
}

struct AppRoot: View {
    @State private var items = [
        Item(name: "Apples", quantity: 6, category: "Produce"),
        Item(name: "Milk", quantity: 1, category: "Dairy"),
        Item(name: "Bread", quantity: 2, category: "Bakery"),
        Item(name: "Cheese", quantity: 1, category: "Dairy"),
    ]
    var categories: [String] { Array(Set(items.map(\.category))).sorted() }

    var body: some View {
        NavigationStack {
            List {
                ForEach(categories, id: \.self) { category in
                    Section(header: Text(category)) {
                        ForEach($items.filter { $0.wrappedValue.category == category }) { $item in
                            HStack {
                                Toggle(isOn: $item.bought) {
                                    Text(item.name).strikethrough(item.bought)
                                }
                                Spacer()
                                Stepper("\(item.quantity)", value: $item.quantity, in: 1...99)
                                    .fixedSize()
                            }
                        }
                    }
                }
            }
            .listStyle(.inset)
            .navigationTitle("Shopping")
        }
    }
}
