import SwiftUI

struct AppRoot: View {
    @State private var store = RecipeStore()
    @State private var path: [Recipe.ID] = []
    @State private var showingNew = false
    @State private var categoryFilter: RecipeCategory?

    private var visibleRecipes: [Recipe] {
        guard let categoryFilter else { return store.recipes }
        return store.recipes.filter { $0.category == categoryFilter }
    }

    var body: some View {
        NavigationStack(path: $path) {
            List {
                ForEach(RecipeCategory.allCases) { category in
                    let items = visibleRecipes.filter { $0.category == category }
                    if !items.isEmpty {
                        Section(category.rawValue) {
                            ForEach(items) { recipe in
                                NavigationLink(value: recipe.id) {
                                    RecipeRow(recipe: recipe)
                                }
                            }
                        }
                    }
                }
            }
            .navigationTitle("Recipe Box")
            .navigationDestination(for: Recipe.ID.self) { id in
                if let index = store.recipes.firstIndex(where: { $0.id == id }) {
                    RecipeDetailView(recipe: $store.recipes[index]) {
                        store.recipes.remove(at: index)
                        path.removeAll()
                    }
                }
            }
            .toolbar {
                ToolbarItemGroup {
                    Menu {
                        Button("All") { categoryFilter = nil }
                        Divider()
                        ForEach(RecipeCategory.allCases) { c in
                            Button(c.rawValue) { categoryFilter = c }
                        }
                    } label: {
                        Label(categoryFilter?.rawValue ?? "All", systemImage: "line.3.horizontal.decrease.circle")
                    }
                    Button {
                        showingNew = true
                    } label: {
                        Label("New Recipe", systemImage: "plus")
                    }
                }
            }
            .sheet(isPresented: $showingNew) {
                RecipeEditor { recipe in
                    store.recipes.append(recipe)
                }
            }
        }
    }
}

struct RecipeRow: View {
    let recipe: Recipe

    var body: some View {
        HStack(spacing: 12) {
            Image(systemName: recipe.category.symbol)
                .font(.title2)
                .frame(width: 40, height: 40)
                .background(Circle().fill(Color.orange.opacity(0.2)))
                .foregroundStyle(.orange)
            VStack(alignment: .leading) {
                Text(recipe.title)
                    .font(.headline)
                Text("\(recipe.minutes) min · serves \(recipe.servings)")
                    .font(.caption)
                    .foregroundStyle(.secondary)
            }
            Spacer()
            if recipe.isFavorite {
                Image(systemName: "heart.fill")
                    .foregroundStyle(.pink)
            }
        }
        .padding(.vertical, 4)
    }
}

struct RecipeDetailView: View {
    @Binding var recipe: Recipe
    var onDelete: () -> Void
    @State private var servings: Int = 0
    @State private var confirmDelete = false

    private var scale: Double {
        Double(servings) / Double(max(recipe.servings, 1))
    }

    var body: some View {
        ScrollView {
            VStack(alignment: .leading, spacing: 20) {
                HStack(alignment: .firstTextBaseline) {
                    Text(recipe.title)
                        .font(.largeTitle.bold())
                    Spacer()
                    Button {
                        recipe.isFavorite.toggle()
                    } label: {
                        Image(systemName: recipe.isFavorite ? "heart.fill" : "heart")
                            .foregroundStyle(.pink)
                            .font(.title2)
                    }
                    .buttonStyle(.plain)
                }

                HStack(spacing: 20) {
                    Label("\(recipe.minutes) min", systemImage: "clock")
                    Label(recipe.category.rawValue, systemImage: recipe.category.symbol)
                    Stepper("Servings: \(servings)", value: $servings, in: 1...24)
                        .fixedSize()
                }
                .foregroundStyle(.secondary)

                GroupBox {
                    VStack(alignment: .leading, spacing: 6) {
                        ForEach(recipe.ingredients) { ing in
                            HStack {
                                Text(formatAmount(ing.amount * scale) + (ing.unit.isEmpty ? "" : " \(ing.unit)"))
                                    .monospacedDigit()
                                    .frame(width: 90, alignment: .trailing)
                                    .fontWeight(.semibold)
                                Text(ing.name)
                                Spacer()
                            }
                        }
                    }
                    .padding(4)
                } label: {
                    Text("Ingredients").font(.headline)
                }

                VStack(alignment: .leading, spacing: 12) {
                    Text("Steps").font(.headline)
                    ForEach(Array(recipe.steps.enumerated()), id: \.offset) { i, step in
                        HStack(alignment: .top, spacing: 10) {
                            Text("\(i + 1)")
                                .font(.caption.bold())
                                .foregroundStyle(.white)
                                .frame(width: 22, height: 22)
                                .background(Circle().fill(Color.orange))
                            Text(step)
                                .fixedSize(horizontal: false, vertical: true)
                        }
                    }
                }
            }
            .padding(24)
            .frame(maxWidth: 700, alignment: .leading)
        }
        .navigationTitle(recipe.title)
        .toolbar {
            ToolbarItem {
                Button(role: .destructive) {
                    confirmDelete = true
                } label: {
                    Label("Delete", systemImage: "trash")
                }
            }
        }
        .confirmationDialog("Delete \(recipe.title)?", isPresented: $confirmDelete) {
            Button("Delete", role: .destructive, action: onDelete)
        }
        .onAppear { servings = recipe.servings }
    }

    private func formatAmount(_ value: Double) -> String {
        if value == value.rounded() {
            return String(Int(value))
        }
        return String(format: "%.1f", value)
    }
}
