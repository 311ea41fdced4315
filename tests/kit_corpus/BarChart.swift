import SwiftUI

struct Sale: Identifiable {
    let id = UUID()
    let month: String
    let amount: Double
}

struct AppRoot: View {
    @State private var data = [
        Sale(month: "Jan", amount: 120), Sale(month: "Feb", amount: 90), Sale(month: "Mar", amount: 150),
        Sale(month: "Apr", amount: 80), Sale(month: "May", amount: 200), Sale(month: "Jun", amount: 170),
    ]
    @State private var highlighted: UUID?

    var maxAmount: Double { data.map(\.amount).max() ?? 1 }

    var body: some View {
        VStack(alignment: .leading) {
            Text("Monthly Sales")
                .font(.title2.bold())
            GeometryReader { geometry in
                HStack(alignment: .bottom, spacing: 12) {
                    ForEach(data) { sale in
                        VStack {
                            Text("\(Int(sale.amount))")
                                .font(.caption)
                            RoundedRectangle(cornerRadius: 6)
                                .fill(highlighted == sale.id ? Color.orange : Color.blue)
                                .frame(height: CGFloat(sale.amount / maxAmount) * (geometry.size.height - 50))
                                .onTapGesture { highlighted = sale.id }
                            Text(sale.month)
                                .font(.caption)
                                .foregroundColor(.secondary)
                        }
                    }
                }
            }
            Button("Shuffle") {
                for index in data.indices { data[index] = Sale(month: data[index].month, amount: Double.random(in: 50...220)) }
            }
        }
        .padding()
    }
}
