import SwiftUI

struct AppRoot: View {
    @State private var target = Int.random(in: 1...100)
    @State private var guess = ""
    @State private var message = "Guess a number between 1 and 100"
    @State private var attempts = 0
    @State private var showingWin = false

    var body: some View {
        VStack(spacing: 20) {
            Text("🎯 Guess the Number").font(.largeTitle)
            Text(message).font(.title3).multilineTextAlignment(.center)
            TextField("Your guess", text: $guess)
                .textFieldStyle(.roundedBorder)
                .frame(width: 200)
                .onSubmit(check)
            Button("Check", action: check).buttonStyle(.borderedProminent)
            Text("Attempts: \(attempts)").foregroundColor(.gray)
        }
        .padding()
        .alert("You got it!", isPresented: $showingWin) {
            Button("Play again") {
                target = Int.random(in: 1...100)
                attempts = 0
                message = "Guess a number between 1 and 100"
            }
        } message: {
            Text("It took you \(attempts) attempts.")
        }
    }

    func check() {
        guard let value = Int(guess) else { message = "Please enter a number"; return }
        attempts += 1
        if value < target { message = "Too low!" } else if value > target { message = "Too high!" } else { showingWin = true }
        guess = ""
    }
}
