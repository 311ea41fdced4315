import SwiftUI

struct AppRoot: View {
    @StateObject private var store = RecipeStore()
    @State private var searchText = ""
    @State private var categoryFilter: RecipeCategory?
    @State private var favoritesOnly = false
    @State private var selectedID: Recipe.ID?
    @State private var editingRecipe: Recipe?

    private var results: [Recipe] {
        store.recipes
            .filter { categoryFilter == nil || $0.category == categoryFilter }
            .filter { !favoritesOnly || $0.isFavorite }
            .filter { recipe in
                searchText.isEmpty
                || recipe.name.localizedCaseInsensitiveContains(searchText)
                || recipe.ingredients.contains { $0.localizedCaseInsensitiveContains(searchText) }
            }
            .sorted { $0.name < $1.name }
    }

    var body: some View {
        NavigationSplitView {
            List(selection: $selectedID) {
                Section {
                    ForEach(results) { recipe in
                        HStack {
                            Image(systemName: recipe.category.symbol)
                                .foregroundStyle(.secondary)
                                .frame(width: 20)
                            VStack(alignment: .leading) {
                                Text(recipe.name)
                                Text("\(recipe.minutes) min · \(recipe.category.rawValue)")
                                    .font(.caption)
                                    .foregroundStyle(.secondary)
                            }
                            Spacer()
                            if recipe.isFavorite {
                                Image(systemName: "heart.fill")
                                    .foregroundStyle(.pink)
                            }
                        }
                        .tag(recipe.id)
                    }
                    .onDelete { offsets in
                        let ids = offsets.map { results[$0].id }
                        store.recipes.removeAll { ids.contains($0.id) }
                    }
                } header: {
                    Text("\(results.count) recipes")
                }
            }
            .searchable(text: $searchText, prompt: "Name or ingredient")
            .navigationSplitViewColumnWidth(min: 240, ideal: 280)
            .safeAreaInset(edge: .bottom) {
                HStack {
                    Picker("Category", selection: $categoryFilter) {
                        Text("All").tag(RecipeCategory?.none)
                        Divider()
                        ForEach(RecipeCategory.allCases) { category in
                            Label(category.rawValue, systemImage: category.symbol)
                                .tag(Optional(category))
                        }
                    }
                    .labelsHidden()
                    Toggle(isOn: $favoritesOnly) {
                        Image(systemName: favoritesOnly ? "heart.fill" : "heart")
                    }
                    .toggleStyle(.button)
                    .help("Show favourites only")
                }
                .padding(8)
                .background(.bar)
            }
            .toolbar {
                Button {
                    editingRecipe = Recipe(name: "", category: .dinner, minutes: 30, servings: 2, ingredients: [], steps: [])
                } label: {
                    Label("New Recipe", systemImage: "plus")
                }
            }
        } detail: {
            if let id = selectedID, let binding = binding(for: id) {
                RecipeDetail(recipe: binding) {
                    editingRecipe = binding.wrappedValue
                }
            } else if results.isEmpty && !searchText.isEmpty {
                ContentUnavailableView.search(text: searchText)
            } else {
                ContentUnavailableView("Select a Recipe", systemImage: "fork.knife")
            }
        }
        .sheet(item: $editingRecipe) { recipe in
            RecipeForm(recipe: recipe) { saved in
                if let index = store.recipes.firstIndex(where: { $0.id == saved.id }) {
                    store.recipes[index] = saved
                } else {
                    store.recipes.append(saved)
                    selectedID = saved.id
                }
            }
        }
        .frame(minWidth: 760, minHeight: 500)
    }

    private func binding(for id: Recipe.ID) -> Binding<Recipe>? {
        guard let index = store.recipes.firstIndex(where: { $0.id == id }) else { return nil }
        return $store.recipes[index]
    }
}

struct RecipeDetail: View {
    @Binding var recipe: Recipe
    var onEdit: () -> Void

    var body: some View {
        ScrollView {
            VStack(alignment: .leading, spacing: 18) {
                HStack(alignment: .firstTextBaseline) {
                    Text(recipe.name)
                        .font(.largeTitle.bold())
                    Spacer()
                    Button {
                        withAnimation(.spring(response: 0.3, dampingFraction: 0.5)) {
                            recipe.isFavorite.toggle()
                        }
                    } label: {
                        Image(systemName: recipe.isFavorite ? "heart.fill" : "heart")
                            .font(.title2)
                            .foregroundStyle(.pink)
                            .symbolEffect(.bounce, value: recipe.isFavorite)
                    }
                    .buttonStyle(.plain)
                }

                HStack(spacing: 16) {
                    Label(recipe.category.rawValue, systemImage: recipe.category.symbol)
                    Label("\(recipe.minutes) min", systemImage: "clock")
                    Label("Serves \(recipe.servings)", systemImage: "person.2")
                }
                .foregroundStyle(.secondary)

                GroupBox {
                    VStack(alignment: .leading, spacing: 6) {
                        ForEach(recipe.ingredients, id: \.self) { item in
                            Label(item, systemImage: "circle.fill")
                                .labelStyle(BulletLabelStyle())
                        }
                    }
                    .frame(maxWidth: .infinity, alignment: .leading)
                } label: {
                    Text("Ingredients").font(.headline)
                }

                Text("Method").font(.headline)
                ForEach(Array(recipe.steps.enumerated()), id: \.offset) { index, step in
                    HStack(alignment: .top, spacing: 10) {
                        Text("\(index + 1)")
                            .font(.callout.bold())
                            .frame(width: 24, height: 24)
                            .background(Circle().fill(Color.accentColor.opacity(0.2)))
                        Text(step)
                            .fixedSize(horizontal: false, vertical: true)
                    }
                }
            }
            .padding(24)
            .frame(maxWidth: .infinity, alignment: .leading)
        }
        .toolbar {
            Button("Edit", action: onEdit)
        }
    }
}

struct BulletLabelStyle: LabelStyle {
    func makeBody(configuration: Configuration) -> some View {
        HStack(alignment: .firstTextBaseline, spacing: 8) {
            configuration.icon
                .font(.system(size: 5))
                .foregroundStyle(.secondary)
            configuration.title
        }
    }
}

struct RecipeForm: View {
    @Environment(\.dismiss) private var dismiss
    @State var recipe: Recipe
    @State private var ingredientsText = ""
    @State private var stepsText = ""
    let onSave: (Recipe) -> Void

    var body: some View {
        Form {
            TextField("Name", text: $recipe.name)
            Picker("Category", selection: $recipe.category) {
                ForEach(RecipeCategory.allCases) { Text($0.rawValue).tag($0) }
            }
            Stepper("Time: \(recipe.minutes) min", value: $recipe.minutes, in: 1...600, step: 5)
            Stepper("Servings: \(recipe.servings)", value: $recipe.servings, in: 1...20)
            Section("Ingredients (one per line)") {
                TextEditor(text: $ingredientsText)
                    .frame(minHeight: 80)
            }
            Section("Steps (one per line)") {
                TextEditor(text: $stepsText)
                    .frame(minHeight: 100)
            }
        }
        .formStyle(.grouped)
        .frame(width: 460, height: 520)
        .onAppear {
            ingredientsText = recipe.ingredients.joined(separator: "\n")
            stepsText = recipe.steps.joined(separator: "\n")
        }
        .toolbar {
            ToolbarItem(placement: .cancellationAction) {
                Button("Cancel") { dismiss() }
            }
            ToolbarItem(placement: .confirmationAction) {
                Button("Save") {
                    recipe.ingredients = lines(ingredientsText)
                    recipe.steps = lines(stepsText)
                    onSave(recipe)
                    dismiss()
                }
                .disabled(recipe.name.isEmpty)
            }
        }
    }

    private func lines(_ text: String) -> [String] {
        text.split(separator: "\n")
            .map { $0.trimmingCharacters(in: .whitespaces) }
            .filter { !$0.isEmpty }
    }
}
