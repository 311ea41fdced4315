import SwiftUI

struct AppRoot: View {
    @StateObject private var model = BudgetModel()
    @State private var showingAddExpense = false
    @State private var showingLimits = false

    var body: some View {
        NavigationStack {
            HStack(alignment: .top, spacing: 0) {
                ScrollView {
                    VStack(alignment: .leading, spacing: 16) {
                        MonthHeader(model: model)
                        SummaryCard(spent: model.totalSpent, limit: model.totalLimit)
                        ForEach(model.categories) { category in
                            CategoryProgressRow(category: category, spent: model.spent(in: category))
                        }
                    }
                    .padding()
                }
                .frame(minWidth: 320, maxWidth: .infinity)

                Divider()

                List {
                    Section("Expenses this month") {
                        if model.monthExpenses.isEmpty {
                            Text("No expenses yet")
                                .foregroundStyle(.secondary)
                        }
                        ForEach(model.monthExpenses) { expense in
                            HStack {
                                Image(systemName: model.category(for: expense.categoryID)?.icon ?? "questionmark")
                                    .frame(width: 24)
                                    .foregroundStyle(.tint)
                                VStack(alignment: .leading) {
                                    Text(expense.note.isEmpty ? (model.category(for: expense.categoryID)?.name ?? "Expense") : expense.note)
                                    Text(expense.date, style: .date)
                                        .font(.caption)
                                        .foregroundStyle(.secondary)
                                }
                                Spacer()
                                Text(expense.amount, format: .currency(code: "EUR"))
                                    .monospacedDigit()
                            }
                            .contextMenu {
                                Button("Delete", role: .destructive) { model.deleteExpense(expense) }
                            }
                        }
                        .onDelete { offsets in
                            let items = offsets.map { model.monthExpenses[$0] }
                            items.forEach(model.deleteExpense)
                        }
                    }
                }
                .frame(minWidth: 280, maxWidth: 360)
            }
            .navigationTitle("Budget")
            .toolbar {
                ToolbarItemGroup {
                    Button {
                        showingLimits = true
                    } label: {
                        Label("Edit Limits", systemImage: "slider.horizontal.3")
                    }
                    Button {
                        showingAddExpense = true
                    } label: {
                        Label("Add Expense", systemImage: "plus")
                    }
                    .keyboardShortcut("e", modifiers: .command)
                }
            }
            .sheet(isPresented: $showingAddExpense) {
                AddExpenseSheet(model: model)
            }
            .sheet(isPresented: $showingLimits) {
                LimitsSheet(model: model)
            }
        }
    }
}

struct MonthHeader: View {
    @ObservedObject var model: BudgetModel

    var body: some View {
        HStack {
            Button { model.shiftMonth(by: -1) } label: { Image(systemName: "chevron.left") }
                .buttonStyle(.borderless)
            Text(model.month.formatted(.dateTime.month(.wide).year()))
                .font(.title2.bold())
                .frame(minWidth: 180)
            Button { model.shiftMonth(by: 1) } label: { Image(systemName: "chevron.right") }
                .buttonStyle(.borderless)
            Spacer()
        }
    }
}

struct SummaryCard: View {
    let spent: Double
    let limit: Double

    var body: some View {
        let remaining = limit - spent
        VStack(alignment: .leading, spacing: 8) {
            Text("Left to spend")
                .font(.subheadline)
                .foregroundStyle(.secondary)
            Text(remaining, format: .currency(code: "EUR"))
                .font(.system(size: 36, weight: .bold, design: .rounded))
                .foregroundStyle(remaining < 0 ? .red : .primary)
            ProgressView(value: min(spent, limit), total: max(limit, 1))
                .tint(spent > limit ? .red : .green)
            Text("\(spent, format: .currency(code: "EUR")) of \(limit, format: .currency(code: "EUR"))")
                .font(.caption)
                .foregroundStyle(.secondary)
        }
        .padding()
        .background(.regularMaterial, in: RoundedRectangle(cornerRadius: 12))
    }
}

struct CategoryProgressRow: View {
    let category: BudgetCategory
    let spent: Double

    private var fraction: Double { category.limit > 0 ? spent / category.limit : 0 }
    private var barColor: Color {
        if fraction > 1 { return .red }
        if fraction > 0.8 { return .orange }
        return .accentColor
    }

    var body: some View {
        VStack(alignment: .leading, spacing: 6) {
            HStack {
                Label(category.name, systemImage: category.icon)
                Spacer()
                Text("\(spent, specifier: "%.2f") / \(category.limit, specifier: "%.0f")")
                    .font(.callout.monospacedDigit())
                    .foregroundStyle(fraction > 1 ? .red : .secondary)
            }
            GeometryReader { geo in
                ZStack(alignment: .leading) {
                    Capsule().fill(Color.secondary.opacity(0.15))
                    Capsule()
                        .fill(barColor)
                        .frame(width: geo.size.width * min(fraction, 1))
                }
            }
            .frame(height: 8)
        }
    }
}
