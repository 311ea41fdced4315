import SwiftUI

struct AppRoot: View {
    @State private var game = SnakeGame()

    var body: some View {
        VStack(spacing: 16) {
            HStack {
                Label("\(game.score)", systemImage: "applelogo")
                    .font(.title2.bold())
                    .monospacedDigit()
                Spacer()
                Text("SNAKE")
                    .font(.system(.title, design: .monospaced).weight(.black))
                    .foregroundStyle(.green)
                Spacer()
                Label("\(game.highScore)", systemImage: "trophy.fill")
                    .font(.title2)
                    .monospacedDigit()
                    .foregroundStyle(.orange)
            }
            .frame(maxWidth: 600)

            GeometryReader { geo in
                let cell = min(geo.size.width / CGFloat(game.columns), geo.size.height / CGFloat(game.rows))
                let boardWidth = cell * CGFloat(game.columns)
                let boardHeight = cell * CGFloat(game.rows)

                ZStack {
                    Canvas { context, _ in
                        context.fill(Path(CGRect(x: 0, y: 0, width: boardWidth, height: boardHeight)),
                                     with: .color(Color(red: 0.08, green: 0.12, blue: 0.08)))

                        let appleRect = CGRect(x: CGFloat(game.apple.x) * cell + 2, y: CGFloat(game.apple.y) * cell + 2,
                                               width: cell - 4, height: cell - 4)
                        context.fill(Path(ellipseIn: appleRect), with: .color(.red))

                        for (i, part) in game.snake.enumerated() {
                            let rect = CGRect(x: CGFloat(part.x) * cell + 1, y: CGFloat(part.y) * cell + 1,
                                              width: cell - 2, height: cell - 2)
                            let shade = 1.0 - Double(i) / Double(max(game.snake.count, 1)) * 0.5
                            context.fill(Path(roundedRect: rect, cornerRadius: cell * 0.25),
                                         with: .color(Color(hue: 0.33, saturation: 0.8, brightness: shade)))
                        }
                    }
                    .frame(width: boardWidth, height: boardHeight)
                    .clipShape(RoundedRectangle(cornerRadius: 8))

                    overlayMessage
                }
                .frame(width: geo.size.width, height: geo.size.height)
            }

            HStack(spacing: 8) {
                Button { game.turn(.left) } label: { Image(systemName: "arrow.left") }
                    .keyboardShortcut(.leftArrow, modifiers: [])
                VStack(spacing: 4) {
                    Button { game.turn(.up) } label: { Image(systemName: "arrow.up") }
                        .keyboardShortcut(.upArrow, modifiers: [])
                    Button { game.turn(.down) } label: { Image(systemName: "arrow.down") }
                        .keyboardShortcut(.downArrow, modifiers: [])
                }
                Button { game.turn(.right) } label: { Image(systemName: "arrow.right") }
                    .keyboardShortcut(.rightArrow, modifiers: [])

                Spacer().frame(width: 40)

                Button(game.state == .running ? "Pause" : "Play") {
                    game.togglePause()
                }
                .keyboardShortcut(.space, modifiers: [])
                Button("Restart") {
                    game.reset()
                }
                .keyboardShortcut("r", modifiers: [])
            }
            .controlSize(.small)
        }
        .padding()
        .background(Color.black.opacity(0.9))
        .foregroundStyle(.white)
    }

    @ViewBuilder
    private var overlayMessage: some View {
        switch game.state {
        case .ready:
            messageBox(title: "Ready?", subtitle: "Press an arrow key or space to start")
        case .paused:
            messageBox(title: "Paused", subtitle: "Press space to continue")
        case .over:
            messageBox(title: "Game Over", subtitle: "Score \(game.score) — press space to play again")
        case .running:
            EmptyView()
        }
    }

    private func messageBox(title: String, subtitle: String) -> some View {
        VStack(spacing: 8) {
            Text(title)
                .font(.system(size: 36, weight: .heavy, design: .monospaced))
            Text(subtitle)
                .font(.callout)
                .foregroundStyle(.white.opacity(0.8))
        }
        .padding(24)
        .background(RoundedRectangle(cornerRadius: 12).fill(.black.opacity(0.7)))
    }
}
