import SwiftUI

struct AppRoot: View {
    @State private var board = Array(repeating: "", count: 9)
    @State private var isXTurn = true
    @State private var winner: String?

    let columns = Array(repeating: GridItem(.flexible()), count: 3)
    let lines = [[0,1,2],[3,4,5],[6,7,8],[0,3,6],[1,4,7],[2,5,8],[0,4,8],[2,4,6]]

    var body: some View {
        VStack(spacing: 20) {
            Text(winner.map { "\($0) wins!" } ?? "Player \(isXTurn ? "X" : "O")'s turn")
                .font(.title)
            LazyVGrid(columns: columns, spacing: 10) {
                ForEach(0..<9) { index in
                    ZStack {
                        RoundedRectangle(cornerRadius: 10)
                            .fill(Color.gray.opacity(0.2))
                            .frame(height: 90)
                        Text(board[index])
                            .font(.system(size: 48, weight: .bold))
                            .foregroundColor(board[index] == "X" ? .blue : .red)
                    }
                    .onTapGesture { play(index) }
                }
            }
            .frame(width: 300)
            Button("New Game") {
                board = Array(repeating: "", count: 9)
                isXTurn = true
                winner = nil
            }
            .buttonStyle(.borderedProminent)
        }
        .padding()
    }

    func play(_ index: Int) {
        guard board[index].isEmpty, winner == nil else { return }
        board[index] = isXTurn ? "X" : "O"
        for line in lines where line.allSatisfy({ board[$0] == board[index] }) {
            winner = board[index]
        }
        isXTurn.toggle()
    }
}
