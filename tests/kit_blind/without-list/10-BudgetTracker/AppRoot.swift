import SwiftUI

struct AppRoot: View {
    @State private var model = BudgetModel()
    @State private var sortOrder = [KeyPathComparator(\Expense.date, order: .reverse)]
    @State private var selection = Set<Expense.ID>()
    @State private var showingAdd = false

    private var currency: FloatingPointFormatStyle<Double>.Currency {
        .currency(code: Locale.current.currency?.identifier ?? "USD")
    }

    private var sortedExpenses: [Expense] {
        model.expenses.sorted(using: sortOrder)
    }

    var body: some View {
        VStack(spacing: 0) {
            summary
                .padding()

            Table(sortedExpenses, selection: $selection, sortOrder: $sortOrder) {
                TableColumn("Date", value: \.date) { expense in
                    Text(expense.date, format: .dateTime.day().month(.abbreviated).year())
                }
                .width(min: 90, ideal: 110)

                TableColumn("Description", value: \.title)

                TableColumn("Category", value: \.category) { expense in
                    HStack(spacing: 6) {
                        Circle()
                            .fill(expense.category.color)
                            .frame(width: 8, height: 8)
                        Text(expense.category.rawValue)
                    }
                }
                .width(min: 110, ideal: 130)

                TableColumn("Amount", value: \.amount) { expense in
                    Text(expense.amount, format: currency)
                        .monospacedDigit()
                        .frame(maxWidth: .infinity, alignment: .trailing)
                }
                .width(min: 80, ideal: 100)
            }
            .contextMenu(forSelectionType: Expense.ID.self) { ids in
                Button("Delete", role: .destructive) {
                    model.expenses.removeAll { ids.contains($0.id) }
                }
            }
            .onDeleteCommand {
                model.expenses.removeAll { selection.contains($0.id) }
                selection.removeAll()
            }
        }
        .frame(minWidth: 680, minHeight: 480)
        .toolbar {
            ToolbarItem(placement: .primaryAction) {
                Button {
                    showingAdd = true
                } label: {
                    Label("Add Expense", systemImage: "plus")
                }
            }
        }
        .sheet(isPresented: $showingAdd) {
            AddExpenseView { expense in
                model.expenses.append(expense)
            }
        }
    }

    private var summary: some View {
        HStack(alignment: .top, spacing: 24) {
            VStack(alignment: .leading, spacing: 8) {
                Text("This Month")
                    .font(.headline)
                HStack {
                    Text("Budget")
                    TextField("Budget", value: $model.monthlyBudget, format: currency)
                        .textFieldStyle(.roundedBorder)
                        .frame(width: 120)
                }
                ProgressView(value: min(model.spentThisMonth, model.monthlyBudget), total: max(model.monthlyBudget, 1))
                    .tint(model.remaining < 0 ? .red : (model.remaining < model.monthlyBudget * 0.2 ? .orange : .green))
                    .frame(width: 260)
                HStack {
                    Text("Spent \(model.spentThisMonth, format: currency)")
                    Spacer()
                    Text(model.remaining >= 0 ? "Left \(model.remaining.formatted(currency))" : "Over by \((-model.remaining).formatted(currency))")
                        .foregroundStyle(model.remaining < 0 ? .red : .secondary)
                }
                .font(.caption)
                .frame(width: 260)
            }

            Divider().frame(height: 100)

            VStack(alignment: .leading, spacing: 4) {
                Text("By Category")
                    .font(.headline)
                ForEach(model.totals(), id: \.0) { category, total in
                    HStack {
                        Circle().fill(category.color).frame(width: 8, height: 8)
                        Text(category.rawValue)
                        Spacer()
                        Text(total, format: currency)
                            .monospacedDigit()
                    }
                    .font(.callout)
                }
                if model.thisMonth.isEmpty {
                    Text("No expenses yet this month")
                        .foregroundStyle(.secondary)
                        .font(.callout)
                }
            }
            .frame(maxWidth: 260)

            Spacer()
        }
    }
}

struct AddExpenseView: View {
    @Environment(\.dismiss) var dismiss
    @State private var title = ""
    @State private var amount: Double?
    @State private var date = Date()
    @State private var category: ExpenseCategory = .groceries

    var onAdd: (Expense) -> Void

    var body: some View {
        VStack(alignment: .leading) {
            Text("New Expense")
                .font(.title2.bold())
                .padding(.bottom, 4)
            Form {
                TextField("Description", text: $title)
                TextField("Amount", value: $amount, format: .number.precision(.fractionLength(2)))
                Picker("Category", selection: $category) {
                    ForEach(ExpenseCategory.allCases) { Text($0.rawValue).tag($0) }
                }
                DatePicker("Date", selection: $date, displayedComponents: .date)
            }
            HStack {
                Spacer()
                Button("Cancel") { dismiss() }
                    .keyboardShortcut(.cancelAction)
                Button("Add") {
                    onAdd(Expense(date: date, title: title, category: category, amount: amount ?? 0))
                    dismiss()
                }
                .keyboardShortcut(.defaultAction)
                .disabled(title.isEmpty || (amount ?? 0) <= 0)
            }
            .padding(.top)
        }
        .padding(20)
        .frame(width: 360)
    }
}
