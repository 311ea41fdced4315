import SwiftUI

struct AddExpenseSheet: View {
    @ObservedObject var model: BudgetModel
    @Environment(\.dismiss) private var dismiss
    @State private var amount: Double = 0
    @State private var note = ""
    @State private var categoryID: UUID?

    var body: some View {
        VStack(alignment: .leading, spacing: 16) {
            Text("New Expense").font(.title2.bold())
            Form {
                TextField("Amount", value: $amount, format: .number.precision(.fractionLength(2)))
                TextField("Note", text: $note)
                Picker("Category", selection: $categoryID) {
                    ForEach(model.categories) { c in
                        Label(c.name, systemImage: c.icon).tag(Optional(c.id))
                    }
                }
            }
            HStack {
                Spacer()
                Button("Cancel", role: .cancel) { dismiss() }
                Button("Add") {
                    if let categoryID {
                        model.expenses.append(Expense(categoryID: categoryID, amount: amount, note: note, date: Date()))
                    }
                    dismiss()
                }
                .buttonStyle(.borderedProminent)
                .keyboardShortcut(.defaultAction)
                .disabled(amount <= 0 || categoryID == nil)
            }
        }
        .padding(24)
        .frame(width: 380)
        .onAppear { categoryID = model.categories.first?.id }
    }
}

struct LimitsSheet: View {
    @ObservedObject var model: BudgetModel
    @Environment(\.dismiss) private var dismiss
    @State private var newName = ""

    var body: some View {
        VStack(alignment: .leading) {
            Text("Monthly Limits").font(.title2.bold())
            List {
                ForEach($model.categories) { $category in
                    HStack {
                        Image(systemName: category.icon)
                            .frame(width: 20)
                        TextField("Name", text: $category.name)
                        TextField("Limit", value: $category.limit, format: .number)
                            .frame(width: 80)
                            .multilineTextAlignment(.trailing)
                    }
                }
                .onDelete { model.categories.remove(atOffsets: $0) }
            }
            .frame(minHeight: 240)
            HStack {
                TextField("New category", text: $newName)
                    .textFieldStyle(.roundedBorder)
                Button("Add") {
                    model.categories.append(BudgetCategory(name: newName, icon: "tag.fill", limit: 100))
                    newName = ""
                }
                .disabled(newName.isEmpty)
                Spacer()
                Button("Done") { dismiss() }
                    .buttonStyle(.borderedProminent)
            }
        }
        .padding(24)
        .frame(width: 440, height: 400)
    }
}
