#pragma once

#include <QString>

// Assistant text is Markdown read for inline syntax only: emphasis, strong, strike-through,
// code spans, links and autolinks. Block syntax (headings, lists, quotes) stays as typed, and
// white space is kept as it stands.
namespace zentoro::InlineMarkdown {

// Rich text for a label: escaped, with the inline syntax turned into markup, in a span that
// keeps white space and line ends.
QString html(const QString &markdown);

} // namespace zentoro::InlineMarkdown
