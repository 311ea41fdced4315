import SwiftUI

struct AppRoot: View {
    @State private var grid = Array(repeating: Array(repeating: Color.white, count: 16), count: 16)
    @State private var brush = Color.black
    let colors: [Color] = [.black, .red, .yellow, .green, .blue, .white]

    var body: some View {
        VStack {
            HStack {
                ForEach(colors, id: \.self) { color in
                    Rectangle()
                        .fill(color)
                        .frame(width: 30, height: 30)
                        .border(brush == color ? Color.accentColor : Color.gray, width: brush == color ? 3 : 1)
                        .onTapGesture { brush = color }
                }
            }
            Grid(horizontalSpacing: 1, verticalSpacing: 1) {
                ForEach(0..<16, id: \.self) { row in
                    GridRow {
                        ForEach(0..<16, id: \.self) { column in
                            grid[row][column]
                                .frame(width: 20, height: 20)
                                .onTapGesture { grid[row][column] = brush }
                        }
                    }
                }
            }
            .background(Color.gray)
        }
        .padding()
    }
}
