import SwiftUI

@Observable
class CounterModel {
    var count = 0
    var step = 1
    var history: [Int] = []

    func increment() { count += step; history.append(count) }
    func decrement() { count -= step; history.append(count) }
}

struct AppRoot: View {
    @State private var model = CounterModel()

    var body: some View {
        VStack(spacing: 24) {
            Text("\(model.count)")
                .font(.system(size: 96, weight: .bold, design: .rounded))
                .foregroundStyle(model.count >= 0 ? .primary : Color.red)
            HStack(spacing: 20) {
                Button { model.decrement() } label: {
                    Image(systemName: "minus.circle.fill").font(.system(size: 44))
                }
                Button { model.increment() } label: {
                    Image(systemName: "plus.circle.fill").font(.system(size: 44))
                }
            }
            .buttonStyle(.borderless)
            Stepper("Step: \(model.step)", value: $model.step, in: 1...10)
                .frame(width: 200)
            ScrollView(.horizontal) {
                HStack {
                    ForEach(model.history.indices, id: \.self) { i in
                        Text("\(model.history[i])")
                            .padding(6)
                            .background(Capsule().fill(Color.accentColor.opacity(0.2)))
                    }
                }
            }
        }
        .padding()
    }
}
