#include "runtime/BuildSteps.h"

#include "core/Text.h"

#include <QDir>

namespace zentoro::BuildSteps {

QString swiftLiteral(const QString &text)
{
    QString literal = QStringLiteral("\"");
    for (const QChar character : text) {
        switch (character.unicode()) {
        case u'\\':
            literal += QStringLiteral("\\\\");
            break;
        case u'"':
            literal += QStringLiteral("\\\"");
            break;
        case u'\n':
            literal += QStringLiteral("\\n");
            break;
        case u'\r':
            literal += QStringLiteral("\\r");
            break;
        case u'\t':
            literal += QStringLiteral("\\t");
            break;
        default:
            if (character.unicode() < 0x20 || character.unicode() == 0x7f)
                literal += QStringLiteral("\\u{%1}").arg(character.unicode(), 0, 16);
            else
                literal += character;
        }
    }
    return literal + u'"';
}

QString entryFile(const QString &copyName, const QString &defaultsSuite)
{
    return QStringLiteral("import SwiftUI\n"
                          "enum AppInfo { static let name = %1 }\n"
                          "extension UserDefaults { static let app = UserDefaults(suiteName: %2)! }\n"
                          "@_cdecl(\"zentoro_make_root_view\")\n"
                          "public func zentoro_make_root_view() -> UnsafeMutableRawPointer { "
                          "ZentoroHosting.makeRootView(AppRoot()) }")
        .arg(swiftLiteral(copyName), swiftLiteral(defaultsSuite));
}

QString targetTriple()
{
#if defined(__aarch64__)
    return QStringLiteral("aarch64-unknown-linux-gnu");
#elif defined(__x86_64__)
    return QStringLiteral("x86_64-unknown-linux-gnu");
#else
#error "Zentoro loads hosted code built for its own processor: x86-64 or arm64."
#endif
}

QStringList compilerArguments(const CompileInputs &inputs)
{
    QStringList arguments{QStringLiteral("-emit-library"),
                          QStringLiteral("-parse-as-library"),
                          QStringLiteral("-module-name"),
                          inputs.module,
                          QStringLiteral("-target"),
                          targetTriple(),
                          // On Linux "-sdk" names the Swift runtime's root, not the
                          // system's; the sysroot goes by its own flag.
                          QStringLiteral("-sysroot"),
                          inputs.sdk,
                          QStringLiteral("-swift-version"),
                          QStringLiteral("5"),
                          QStringLiteral("-Onone"),
                          QStringLiteral("-g"),
                          QStringLiteral("-diagnostic-style"),
                          QStringLiteral("llvm"),
                          QStringLiteral("-module-cache-path"),
                          inputs.moduleCache,
                          QStringLiteral("-o"),
                          inputs.output};
    arguments += inputs.kitFlags;
    arguments += inputs.files;
    return arguments;
}

QString clean(const QString &output, const QString &sources, const QString &entry)
{
    QString text = output;
    text.remove(QDir::cleanPath(sources) + u'/');
    text.replace(entry, QStringLiteral("<Zentoro's generated entry point>"));
    text = text.trimmed();
    if (Text::characterCount(text) <= outputLimit)
        return text;
    return Text::firstCharacters(text, outputLimit) + QStringLiteral("\n… (output truncated)");
}

} // namespace zentoro::BuildSteps
