#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

#include <initializer_list>
#include <memory>
#include <optional>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

namespace zentoro {

// The one dynamic JSON value: everything exchanged with the services and the stored
// history. Numbers are doubles only. Arrays and objects are shared until written to,
// so copies are cheap and still independent values.
class JSON {
public:
    using Array = std::vector<JSON>;
    class Object;
    enum class Kind { Bool, Number, String, Array, Object, Null };

    // Raised when text isn't JSON, or a value can't be written (NaN, infinity).
    class Error : public std::runtime_error {
    public:
        using std::runtime_error::runtime_error;
    };

    JSON() : value_(nullptr) {}
    JSON(std::nullptr_t) : value_(nullptr) {}
    JSON(bool value) : value_(value) {}
    template <typename Integer>
    requires(std::is_integral_v<Integer> && !std::is_same_v<Integer, bool> && !std::is_same_v<Integer, char>)
        JSON(Integer value)
        : value_(static_cast<double>(value))
    {
    }
    // Fractions have no implicit form: write JSON::number(x).
    JSON(double) = delete;
    JSON(float) = delete;
    JSON(const QString &value) : value_(value) {}
    JSON(QString &&value) : value_(std::move(value)) {}
    JSON(const char *utf8);
    JSON(char character) : value_(QString(QChar::fromLatin1(character))) {}
    JSON(QChar character) : value_(QString(character)) {}
    JSON(Array value) : value_(std::make_shared<Array>(std::move(value))) {}
    JSON(Object value);

    static JSON number(double value);
    static JSON array(std::initializer_list<JSON> elements = {});
    // Builds an object from pairs; a repeated key keeps its last value.
    static JSON object(std::initializer_list<std::pair<QString, JSON>> pairs = {});

    Kind kind() const { return static_cast<Kind>(value_.index()); }
    bool isNull() const { return kind() == Kind::Null; }

    // A value of another case reads as absent.
    std::optional<bool> boolValue() const;
    std::optional<double> numberValue() const;
    std::optional<QString> stringValue() const;
    // The text held, without a copy: for passes over thousands of items.
    const QString *stringRef() const { return std::get_if<QString>(&value_); }
    const Array *arrayValue() const
    {
        auto value = std::get_if<std::shared_ptr<Array>>(&value_);
        return value ? value->get() : nullptr;
    }
    const Object *objectValue() const
    {
        auto value = std::get_if<std::shared_ptr<Object>>(&value_);
        return value ? value->get() : nullptr;
    }

    // The value under `key` of an object; absent when this isn't an object or lacks the key.
    const JSON *find(const QString &key) const;
    std::optional<QString> stringAt(const QString &key) const;
    std::optional<double> numberAt(const QString &key) const;
    std::optional<bool> boolAt(const QString &key) const;
    const Array *arrayAt(const QString &key) const;
    const Object *objectAt(const QString &key) const;

    // Writers. `set` and `append` turn a value of another case into an empty object or array first.
    void set(const QString &key, JSON value);
    void remove(const QString &key);
    void append(JSON value);

    // Compact JSON text, keys in sorted order. Raises Error for NaN or infinity.
    QByteArray encode() const;
    // Raises Error when `text` isn't one JSON value in UTF-8.
    static JSON decode(QByteArrayView text);

    friend bool operator==(const JSON &a, const JSON &b);

private:
    Array &mutableArray();
    Object &mutableObject();

    std::variant<bool, double, QString, std::shared_ptr<Array>, std::shared_ptr<Object>, std::nullptr_t> value_;
};

// An object's members in ascending order of their keys, side by side: a lookup reads a cache
// line or two instead of chasing a node per key, and printing needs no sorting.
class JSON::Object {
public:
    using value_type = std::pair<QString, JSON>;
    using const_iterator = std::vector<value_type>::const_iterator;

    Object() = default;
    // Members in any order; of a repeated key the last stays.
    static Object fromPairs(std::vector<value_type> members);

    const_iterator begin() const { return members_.begin(); }
    const_iterator end() const { return members_.end(); }
    std::size_t size() const { return members_.size(); }
    bool empty() const { return members_.empty(); }

    // end() when `key` is absent.
    const_iterator find(const QString &key) const;
    bool contains(const QString &key) const { return find(key) != end(); }
    void set(QString key, JSON value);
    void remove(const QString &key);

    friend bool operator==(const Object &a, const Object &b);

private:
    std::vector<value_type> members_;
};

inline JSON::JSON(Object value) : value_(std::make_shared<Object>(std::move(value))) {}

} // namespace zentoro
