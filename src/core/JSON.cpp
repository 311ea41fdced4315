#include "core/JSON.h"

#include <QStringDecoder>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdlib>
#include <string>
#include <string_view>
#include <unordered_map>

namespace zentoro {

namespace {

// The keys and kinds that every stored item and stream event repeat. Each is held once and
// shared, so a history of thousands of items looks its keys up in a few hot cache lines
// instead of thousands of scattered copies.
const QString *commonWord(std::string_view text)
{
    static const auto words = [] {
        std::unordered_map<std::string_view, QString> table;
        for (const char *word : {"type",
                                 "id",
                                 "call_id",
                                 "name",
                                 "arguments",
                                 "output",
                                 "role",
                                 "content",
                                 "text",
                                 "status",
                                 "summary",
                                 "encrypted_content",
                                 "image_url",
                                 "detail",
                                 "kind",
                                 "title",
                                 "symbol",
                                 "link",
                                 "url",
                                 "imagePath",
                                 "item",
                                 "item_id",
                                 "delta",
                                 "response",
                                 "output_index",
                                 "content_index",
                                 "sequence_number",
                                 "annotations",
                                 "logprobs",
                                 "error",
                                 "code",
                                 "message",
                                 "usage",
                                 "function_call",
                                 "function_call_output",
                                 "reasoning",
                                 "input_text",
                                 "output_text",
                                 "input_image",
                                 "summary_text",
                                 "user",
                                 "assistant",
                                 "developer",
                                 "completed",
                                 "in_progress",
                                 "incomplete",
                                 "tool",
                                 "event"})
            table.emplace(word, QString::fromLatin1(word));
        return table;
    }();
    const auto found = words.find(text);
    return found == words.end() ? nullptr : &found->second;
}

constexpr qsizetype longestCommonWord = 20;

QString shared(QString text)
{
    if (text.size() > longestCommonWord)
        return text;
    char latin1[longestCommonWord];
    for (qsizetype index = 0; index < text.size(); ++index) {
        const char16_t unit = text.at(index).unicode();
        if (unit >= 0x80)
            return text;
        latin1[index] = static_cast<char>(unit);
    }
    const QString *word = commonWord(std::string_view(latin1, text.size()));
    return word ? *word : text;
}

// Keys that are the same shared text are equal without a look at the text.
int compareKeys(const QString &a, const QString &b)
{
    if (a.constData() == b.constData() && a.size() == b.size())
        return 0;
    return QString::compare(a, b);
}

bool keyBefore(const JSON::Object::value_type &member, const QString &key)
{
    return compareKeys(member.first, key) < 0;
}

} // namespace

JSON::Object JSON::Object::fromPairs(std::vector<value_type> members)
{
    const auto notAscending = [](const value_type &a, const value_type &b) {
        return compareKeys(a.first, b.first) >= 0;
    };
    if (std::adjacent_find(members.begin(), members.end(), notAscending) != members.end()) {
        std::stable_sort(members.begin(), members.end(),
                         [](const value_type &a, const value_type &b) { return compareKeys(a.first, b.first) < 0; });
        auto kept = members.begin();
        for (auto member = members.begin(); member != members.end(); ++member) {
            const auto next = member + 1;
            if (next != members.end() && compareKeys(next->first, member->first) == 0)
                continue;
            if (kept != member)
                *kept = std::move(*member);
            ++kept;
        }
        members.erase(kept, members.end());
    }
    Object object;
    object.members_ = std::move(members);
    return object;
}

JSON::Object::const_iterator JSON::Object::find(const QString &key) const
{
    const auto found = std::lower_bound(members_.begin(), members_.end(), key, keyBefore);
    return found != members_.end() && compareKeys(found->first, key) == 0 ? found : members_.end();
}

void JSON::Object::set(QString key, JSON value)
{
    const auto found = std::lower_bound(members_.begin(), members_.end(), key, keyBefore);
    if (found != members_.end() && compareKeys(found->first, key) == 0)
        found->second = std::move(value);
    else
        members_.emplace(found, std::move(key), std::move(value));
}

void JSON::Object::remove(const QString &key)
{
    const auto found = find(key);
    if (found != end())
        members_.erase(found);
}

bool operator==(const JSON::Object &a, const JSON::Object &b)
{
    return a.members_ == b.members_;
}

JSON::JSON(const char *utf8)
{
    const std::string_view text(utf8);
    const QString *word = text.size() <= longestCommonWord ? commonWord(text) : nullptr;
    value_ = word ? *word : QString::fromUtf8(utf8);
}

JSON JSON::number(double value)
{
    JSON result;
    result.value_ = value;
    return result;
}

JSON JSON::array(std::initializer_list<JSON> elements)
{
    return JSON(Array(elements));
}

JSON JSON::object(std::initializer_list<std::pair<QString, JSON>> pairs)
{
    std::vector<Object::value_type> members;
    members.reserve(pairs.size());
    for (const auto &[key, value] : pairs)
        members.emplace_back(shared(key), value);
    return JSON(Object::fromPairs(std::move(members)));
}

std::optional<bool> JSON::boolValue() const
{
    if (auto value = std::get_if<bool>(&value_))
        return *value;
    return std::nullopt;
}

std::optional<double> JSON::numberValue() const
{
    if (auto value = std::get_if<double>(&value_))
        return *value;
    return std::nullopt;
}

std::optional<QString> JSON::stringValue() const
{
    if (auto value = std::get_if<QString>(&value_))
        return *value;
    return std::nullopt;
}

const JSON *JSON::find(const QString &key) const
{
    const Object *object = objectValue();
    if (!object)
        return nullptr;
    auto found = object->find(key);
    return found == object->end() ? nullptr : &found->second;
}

std::optional<QString> JSON::stringAt(const QString &key) const
{
    const JSON *value = find(key);
    return value ? value->stringValue() : std::nullopt;
}

std::optional<double> JSON::numberAt(const QString &key) const
{
    const JSON *value = find(key);
    return value ? value->numberValue() : std::nullopt;
}

std::optional<bool> JSON::boolAt(const QString &key) const
{
    const JSON *value = find(key);
    return value ? value->boolValue() : std::nullopt;
}

const JSON::Array *JSON::arrayAt(const QString &key) const
{
    const JSON *value = find(key);
    return value ? value->arrayValue() : nullptr;
}

const JSON::Object *JSON::objectAt(const QString &key) const
{
    const JSON *value = find(key);
    return value ? value->objectValue() : nullptr;
}

JSON::Array &JSON::mutableArray()
{
    auto *shared = std::get_if<std::shared_ptr<Array>>(&value_);
    if (!shared) {
        value_ = std::make_shared<Array>();
        shared = std::get_if<std::shared_ptr<Array>>(&value_);
    } else if (shared->use_count() > 1) {
        *shared = std::make_shared<Array>(**shared);
    }
    return **shared;
}

JSON::Object &JSON::mutableObject()
{
    auto *shared = std::get_if<std::shared_ptr<Object>>(&value_);
    if (!shared) {
        value_ = std::make_shared<Object>();
        shared = std::get_if<std::shared_ptr<Object>>(&value_);
    } else if (shared->use_count() > 1) {
        *shared = std::make_shared<Object>(**shared);
    }
    return **shared;
}

void JSON::set(const QString &key, JSON value)
{
    mutableObject().set(shared(key), std::move(value));
}

void JSON::remove(const QString &key)
{
    if (objectValue() && objectValue()->contains(key))
        mutableObject().remove(key);
}

void JSON::append(JSON value)
{
    mutableArray().push_back(std::move(value));
}

bool operator==(const JSON &a, const JSON &b)
{
    if (a.kind() != b.kind())
        return false;
    switch (a.kind()) {
    case JSON::Kind::Bool: return *a.boolValue() == *b.boolValue();
    case JSON::Kind::Number: return *a.numberValue() == *b.numberValue();
    case JSON::Kind::String: return std::get<QString>(a.value_) == std::get<QString>(b.value_);
    case JSON::Kind::Array: return a.arrayValue() == b.arrayValue() || *a.arrayValue() == *b.arrayValue();
    case JSON::Kind::Object: return a.objectValue() == b.objectValue() || *a.objectValue() == *b.objectValue();
    case JSON::Kind::Null: return true;
    }
    return false;
}

// MARK: - Writing

namespace {

void writeNumber(QByteArray &out, double value)
{
    if (!std::isfinite(value))
        throw JSON::Error("JSON can't hold the number " + std::to_string(value) + ".");
    char buffer[32];
    std::to_chars_result written;
    if (value == std::nearbyint(value) && std::fabs(value) < 1e15)
        written = std::to_chars(buffer, buffer + sizeof buffer, static_cast<long long>(value));
    else
        written = std::to_chars(buffer, buffer + sizeof buffer, value);
    out.append(buffer, written.ptr - buffer);
}

void writeString(QByteArray &out, const QString &text)
{
    static const char hex[] = "0123456789abcdef";
    out.append('"');
    const QByteArray utf8 = text.toUtf8();
    const char *run = utf8.constData();
    const char *end = run + utf8.size();
    for (const char *p = run; p < end; ++p) {
        const unsigned char c = static_cast<unsigned char>(*p);
        if (c >= 0x20 && c != '"' && c != '\\')
            continue;
        out.append(run, p - run);
        run = p + 1;
        switch (c) {
        case '"': out.append("\\\"", 2); break;
        case '\\': out.append("\\\\", 2); break;
        case '\n': out.append("\\n", 2); break;
        case '\r': out.append("\\r", 2); break;
        case '\t': out.append("\\t", 2); break;
        case '\b': out.append("\\b", 2); break;
        case '\f': out.append("\\f", 2); break;
        default: {
            const char escaped[] = {'\\', 'u', '0', '0', hex[c >> 4], hex[c & 15]};
            out.append(escaped, 6);
        }
        }
    }
    out.append(run, end - run);
    out.append('"');
}

void write(QByteArray &out, const JSON &value)
{
    switch (value.kind()) {
    case JSON::Kind::Bool: out.append(*value.boolValue() ? "true" : "false"); return;
    case JSON::Kind::Number: writeNumber(out, *value.numberValue()); return;
    case JSON::Kind::String: writeString(out, *value.stringValue()); return;
    case JSON::Kind::Array: {
        out.append('[');
        bool first = true;
        for (const JSON &element : *value.arrayValue()) {
            if (!first)
                out.append(',');
            first = false;
            write(out, element);
        }
        out.append(']');
        return;
    }
    case JSON::Kind::Object: {
        out.append('{');
        bool first = true;
        for (const auto &[key, element] : *value.objectValue()) {
            if (!first)
                out.append(',');
            first = false;
            writeString(out, key);
            out.append(':');
            write(out, element);
        }
        out.append('}');
        return;
    }
    case JSON::Kind::Null: out.append("null"); return;
    }
}

// MARK: - Reading

class Reader {
public:
    explicit Reader(QByteArrayView text) : p_(text.data()), end_(text.data() + text.size()) {}

    JSON document()
    {
        skipSpace();
        JSON value = parse(0);
        skipSpace();
        if (p_ != end_)
            fail("Unexpected text after the JSON value");
        return value;
    }

private:
    static constexpr int maximumDepth = 512;

    [[noreturn]] void fail(const char *what) const
    {
        throw JSON::Error(std::string(what) + " at byte " + std::to_string(offset_(p_)) + ".");
    }
    qsizetype offset_(const char *p) const { return p - (end_ - size_); }

    void skipSpace()
    {
        while (p_ < end_ && (*p_ == ' ' || *p_ == '\n' || *p_ == '\r' || *p_ == '\t'))
            ++p_;
    }

    bool consume(const char *word, qsizetype length)
    {
        if (end_ - p_ < length || memcmp(p_, word, length) != 0)
            return false;
        p_ += length;
        return true;
    }

    JSON parse(int depth)
    {
        if (p_ == end_)
            fail("Unexpected end of JSON");
        switch (*p_) {
        case '{': return parseObject(depth);
        case '[': return parseArray(depth);
        case '"': return JSON(parseString());
        case 't':
            if (consume("true", 4))
                return JSON(true);
            break;
        case 'f':
            if (consume("false", 5))
                return JSON(false);
            break;
        case 'n':
            if (consume("null", 4))
                return JSON(nullptr);
            break;
        default:
            if (*p_ == '-' || (*p_ >= '0' && *p_ <= '9'))
                return parseNumber();
        }
        fail("Invalid JSON value");
    }

    // Members and elements gather on one stack shared by every level, so each object and
    // array is allocated once, at its final size.
    JSON parseObject(int depth)
    {
        if (depth >= maximumDepth)
            fail("JSON nested too deeply");
        ++p_;
        const std::size_t first = members_.size();
        skipSpace();
        if (p_ < end_ && *p_ == '}') {
            ++p_;
            return JSON(JSON::Object());
        }
        for (;;) {
            skipSpace();
            if (p_ == end_ || *p_ != '"')
                fail("Expected a key in quotes");
            QString key = parseString();
            skipSpace();
            if (p_ == end_ || *p_ != ':')
                fail("Expected ':' after a key");
            ++p_;
            skipSpace();
            JSON value = parse(depth + 1);
            members_.emplace_back(std::move(key), std::move(value));
            skipSpace();
            if (p_ < end_ && *p_ == ',') {
                ++p_;
                continue;
            }
            if (p_ < end_ && *p_ == '}') {
                ++p_;
                return JSON(JSON::Object::fromPairs(takeFrom(members_, first)));
            }
            fail("Expected ',' or '}' in an object");
        }
    }

    JSON parseArray(int depth)
    {
        if (depth >= maximumDepth)
            fail("JSON nested too deeply");
        ++p_;
        const std::size_t first = elements_.size();
        skipSpace();
        if (p_ < end_ && *p_ == ']') {
            ++p_;
            return JSON(JSON::Array());
        }
        for (;;) {
            skipSpace();
            JSON element = parse(depth + 1);
            elements_.push_back(std::move(element));
            skipSpace();
            if (p_ < end_ && *p_ == ',') {
                ++p_;
                continue;
            }
            if (p_ < end_ && *p_ == ']') {
                ++p_;
                return JSON(takeFrom(elements_, first));
            }
            fail("Expected ',' or ']' in an array");
        }
    }

    template <typename T>
    static std::vector<T> takeFrom(std::vector<T> &stack, std::size_t first)
    {
        std::vector<T> taken(std::make_move_iterator(stack.begin() + first), std::make_move_iterator(stack.end()));
        stack.resize(first);
        return taken;
    }

    JSON parseNumber()
    {
        const char *start = p_;
        if (*p_ == '-')
            ++p_;
        if (p_ == end_)
            fail("Invalid number");
        if (*p_ == '0') {
            ++p_;
        } else if (*p_ >= '1' && *p_ <= '9') {
            while (p_ < end_ && *p_ >= '0' && *p_ <= '9')
                ++p_;
        } else {
            fail("Invalid number");
        }
        if (p_ < end_ && *p_ == '.') {
            ++p_;
            if (p_ == end_ || *p_ < '0' || *p_ > '9')
                fail("Invalid number");
            while (p_ < end_ && *p_ >= '0' && *p_ <= '9')
                ++p_;
        }
        if (p_ < end_ && (*p_ == 'e' || *p_ == 'E')) {
            ++p_;
            if (p_ < end_ && (*p_ == '+' || *p_ == '-'))
                ++p_;
            if (p_ == end_ || *p_ < '0' || *p_ > '9')
                fail("Invalid number");
            while (p_ < end_ && *p_ >= '0' && *p_ <= '9')
                ++p_;
        }
        double value = 0;
        auto [ptr, error] = std::from_chars(start, p_, value);
        if (error == std::errc::result_out_of_range) {
            // Underflow reads as zero, as other decoders do; overflow has no double.
            if (std::isinf(std::strtod(std::string(start, p_).c_str(), nullptr)))
                fail("Number out of range");
            value = 0;
        } else if (error != std::errc() || ptr != p_) {
            fail("Invalid number");
        }
        return JSON::number(value);
    }

    static int hexValue(char c)
    {
        if (c >= '0' && c <= '9')
            return c - '0';
        if (c >= 'a' && c <= 'f')
            return c - 'a' + 10;
        if (c >= 'A' && c <= 'F')
            return c - 'A' + 10;
        return -1;
    }

    char16_t parseHex4()
    {
        if (end_ - p_ < 4)
            fail("Invalid \\u escape");
        int value = 0;
        for (int i = 0; i < 4; ++i) {
            const int digit = hexValue(p_[i]);
            if (digit < 0)
                fail("Invalid \\u escape");
            value = value * 16 + digit;
        }
        p_ += 4;
        return static_cast<char16_t>(value);
    }

    // Appends UTF-8 bytes [from, to) to `out`, failing on bytes that aren't UTF-8.
    void appendUtf8(QString &out, const char *from, const char *to, bool ascii)
    {
        if (from == to)
            return;
        if (ascii) {
            out.append(QLatin1StringView(from, to - from));
            return;
        }
        QStringDecoder decoder(QStringDecoder::Utf8, QStringDecoder::Flag::Stateless);
        QString decoded = decoder.decode(QByteArrayView(from, to - from));
        if (decoder.hasError())
            fail("Text that isn't UTF-8");
        out.append(decoded);
    }

    QString parseString()
    {
        ++p_;
        const char *close = p_;
        while (close < end_ && close - p_ <= longestCommonWord && *close != '"' && *close != '\\' &&
               static_cast<unsigned char>(*close) >= 0x20 && static_cast<unsigned char>(*close) < 0x80)
            ++close;
        if (close < end_ && *close == '"') {
            if (const QString *word = commonWord(std::string_view(p_, close - p_))) {
                p_ = close + 1;
                return *word;
            }
        }
        QString out;
        const char *run = p_;
        bool ascii = true;
        for (;;) {
            if (p_ == end_)
                fail("Unterminated string");
            const unsigned char c = static_cast<unsigned char>(*p_);
            if (c == '"') {
                appendUtf8(out, run, p_, ascii);
                ++p_;
                return out;
            }
            if (c < 0x20)
                fail("Control character in a string");
            if (c >= 0x80) {
                ascii = false;
                ++p_;
                continue;
            }
            if (c != '\\') {
                ++p_;
                continue;
            }
            appendUtf8(out, run, p_, ascii);
            ascii = true;
            ++p_;
            if (p_ == end_)
                fail("Unterminated string");
            const char escape = *p_++;
            switch (escape) {
            case '"': out.append(u'"'); break;
            case '\\': out.append(u'\\'); break;
            case '/': out.append(u'/'); break;
            case 'b': out.append(u'\b'); break;
            case 'f': out.append(u'\f'); break;
            case 'n': out.append(u'\n'); break;
            case 'r': out.append(u'\r'); break;
            case 't': out.append(u'\t'); break;
            case 'u': {
                const char16_t unit = parseHex4();
                if (QChar::isHighSurrogate(unit) && end_ - p_ >= 6 && p_[0] == '\\' && p_[1] == 'u') {
                    const char *back = p_;
                    p_ += 2;
                    const char16_t low = parseHex4();
                    if (QChar::isLowSurrogate(low)) {
                        out.append(QChar(unit));
                        out.append(QChar(low));
                        break;
                    }
                    p_ = back;
                }
                // A lone surrogate can't stand in valid text.
                out.append(QChar::isSurrogate(unit) ? QChar(QChar::ReplacementCharacter) : QChar(unit));
                break;
            }
            default: fail("Invalid escape in a string");
            }
            run = p_;
        }
    }

    const char *p_;
    const char *end_;
    const qsizetype size_ = end_ - p_;
    std::vector<JSON::Object::value_type> members_;
    JSON::Array elements_;
};

} // namespace

QByteArray JSON::encode() const
{
    QByteArray out;
    write(out, *this);
    return out;
}

JSON JSON::decode(QByteArrayView text)
{
    return Reader(text).document();
}

} // namespace zentoro
