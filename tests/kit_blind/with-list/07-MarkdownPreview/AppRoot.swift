import SwiftUI

struct AppRoot: View {
    @AppStorage("markdownSource") private var source: String = AppRoot.sample
    @AppStorage("previewFontSize") private var fontSize: Double = 14

    var body: some View {
        VStack(spacing: 0) {
            HStack {
                Text("Markdown")
                    .font(.headline)
                Spacer()
                Text("\(wordCount) words")
                    .font(.caption)
                    .foregroundStyle(.secondary)
                Divider().frame(height: 16)
                Image(systemName: "textformat.size.smaller")
                Slider(value: $fontSize, in: 11...22, step: 1)
                    .frame(width: 120)
                Image(systemName: "textformat.size.larger")
            }
            .padding(.horizontal)
            .padding(.vertical, 8)

            Divider()

            HStack(spacing: 0) {
                ScrollView {
                    TextField("Write some markdown…", text: $source, axis: .vertical)
                        .textFieldStyle(.plain)
                        .font(.system(size: fontSize, design: .monospaced))
                        .padding()
                        .frame(maxWidth: .infinity, alignment: .topLeading)
                }
                .frame(maxWidth: .infinity)
                .background(Color(nsColor: .textBackgroundColor))

                Divider()

                ScrollView {
                    MarkdownPreview(blocks: MarkdownParser.parse(source), baseSize: fontSize)
                        .padding()
                        .frame(maxWidth: .infinity, alignment: .topLeading)
                }
                .frame(maxWidth: .infinity)
            }
        }
    }

    private var wordCount: Int {
        source.split { $0.isWhitespace || $0.isNewline }.count
    }

    static let sample = """
    # Hello, Markdown

    This is a **live** preview. Type on the left and watch it *update*.

    ## Lists
    - Apples
    - Oranges
    - `inline code` works too

    1. First
    2. Second

    > A quote for good measure.

    ```
    let answer = 42
    print(answer)
    ```

    ---
    Made with [SwiftUI](https://developer.apple.com).
    """
}

struct MarkdownPreview: View {
    let blocks: [MarkdownBlock]
    let baseSize: Double

    var body: some View {
        VStack(alignment: .leading, spacing: 10) {
            ForEach(Array(blocks.enumerated()), id: \.offset) { _, block in
                blockView(block)
            }
        }
        .textSelection(.enabled)
    }

    @ViewBuilder
    private func blockView(_ block: MarkdownBlock) -> some View {
        switch block {
        case .heading(let level, let text):
            inline(text)
                .font(.system(size: baseSize * headingScale(level), weight: .bold))
                .padding(.top, level <= 2 ? 6 : 2)
        case .paragraph(let text):
            inline(text)
                .font(.system(size: baseSize))
        case .bullet(let text):
            HStack(alignment: .firstTextBaseline, spacing: 8) {
                Text("•")
                inline(text)
            }
            .font(.system(size: baseSize))
            .padding(.leading, 8)
        case .numbered(let n, let text):
            HStack(alignment: .firstTextBaseline, spacing: 8) {
                Text("\(n).")
                    .monospacedDigit()
                inline(text)
            }
            .font(.system(size: baseSize))
            .padding(.leading, 8)
        case .quote(let text):
            HStack(spacing: 10) {
                Rectangle()
                    .fill(Color.accentColor)
                    .frame(width: 3)
                inline(text)
                    .italic()
                    .foregroundStyle(.secondary)
            }
            .font(.system(size: baseSize))
            .fixedSize(horizontal: false, vertical: true)
        case .code(let code):
            Text(code)
                .font(.system(size: baseSize - 1, design: .monospaced))
                .padding(10)
                .frame(maxWidth: .infinity, alignment: .leading)
                .background(RoundedRectangle(cornerRadius: 6).fill(Color.secondary.opacity(0.12)))
        case .rule:
            Divider()
                .padding(.vertical, 4)
        }
    }

    private func inline(_ text: String) -> Text {
        if let attributed = try? AttributedString(markdown: text) {
            return Text(attributed)
        }
        return Text(text)
    }

    private func headingScale(_ level: Int) -> Double {
        switch level {
        case 1: return 2.0
        case 2: return 1.6
        case 3: return 1.3
        default: return 1.1
        }
    }
}
