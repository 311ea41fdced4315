import SwiftUI

struct AppRoot: View {
    @State private var email = ""
    @State private var password = ""
    @State private var rememberMe = false
    @State private var isLoading = false
    @State private var errorMessage: String?
    @State private var loggedIn = false

    var body: some View {
        if loggedIn {
            VStack {
                Image(systemName: "checkmark.seal.fill").font(.system(size: 60)).foregroundColor(.green)
                Text("Welcome back!").font(.title)
                Button("Log out") { loggedIn = false }
            }
        } else {
            VStack(alignment: .leading, spacing: 14) {
                Text("Sign In").font(.largeTitle).bold()
                TextField("Email", text: $email)
                    .textFieldStyle(.roundedBorder)
                SecureField("Password", text: $password)
                    .textFieldStyle(.roundedBorder)
                Toggle("Remember me", isOn: $rememberMe)
                if let errorMessage {
                    Text(errorMessage).foregroundColor(.red).font(.footnote)
                }
                Button {
                    login()
                } label: {
                    if isLoading {
                        ProgressView().frame(maxWidth: .infinity)
                    } else {
                        Text("Log In").frame(maxWidth: .infinity)
                    }
                }
                .buttonStyle(.borderedProminent)
                .disabled(email.isEmpty || password.isEmpty)
            }
            .padding(40)
            .frame(width: 400)
        }
    }

    func login() {
        isLoading = true
        errorMessage = nil
        Task {
            try? await Task.sleep(nanoseconds: 500_000_000)
            isLoading = false
            if email.contains("@") { loggedIn = true } else { errorMessage = "Please enter a valid email." }
        }
    }
}
