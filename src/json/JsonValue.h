#pragma once

#include "json/FieldNames.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <unordered_map>

namespace tallyglass {

/// One value of a parsed text, as far as the readers need it.
///
/// Only an object or array that holds one of the fields that the reader wants, in itself or further
/// in, has contents: an object's members of known names and those that again have contents,
/// together with what may replace these; an array's elements that have contents.
///
/// A value and what lies in it stand in a row, each before what it holds.
class JsonValue
{
public:
    enum class Kind : std::uint8_t {
        Other, ///< true, false, or a value that no reader asks for
        Null,
        Integer, ///< a number without fraction and exponent; 0 when it exceeds 64 bits
        Decimal, ///< any other number; finite
        String,
        Array,
        Object,
    };

    Kind kind() const { return static_cast<Kind>(m_sizeAndKind & 7); }
    bool isContainer() const { return kind() >= Kind::Array; }
    /// As a member of an object.
    std::string_view name() const { return {m_name, m_nameLengthAndField >> 6}; }

    /// The name's index among all that readers know, or FieldKey::none.
    std::size_t field() const { return m_nameLengthAndField & 63; }
    bool isCalled(FieldKey key) const { return field() == key.index(); }

    std::int64_t integer() const { return m_integer; }
    double decimal() const { return m_decimal; }
    std::string_view text() const { return {m_text, size()}; }

    /// Whether an object has one of these fields.
    bool hasAnyOf(FieldSet fields) const { return fields.hasAnyOf(m_fields); }

    /// The last member of an object that is called \a key; null when it has none.
    const JsonValue *find(FieldKey key) const
    {
        if ((m_fields >> key.index() & 1) == 0)
            return nullptr;
        const JsonValue *found = nullptr;
        for (const JsonValue &member : *this) {
            if (member.isCalled(key))
                found = &member;
        }
        return found;
    }

    class Iterator
    {
    public:
        explicit Iterator(const JsonValue *value)
            : m_value(value)
        {
        }

        const JsonValue &operator*() const { return *m_value; }
        Iterator &operator++()
        {
            m_value = m_value->behind();
            return *this;
        }
        bool operator==(const Iterator &) const = default;

    private:
        const JsonValue *m_value;
    };

    /// Of a string: bytes; of a container: all values in it.
    std::size_t size() const { return m_sizeAndKind >> 3; }

    /// The members of an object or the elements of an array.
    Iterator begin() const { return Iterator(this + 1); }
    Iterator end() const { return Iterator(behind()); }

private:
    friend class JsonParser;
    friend class JsonValues;

    static_assert(fieldNames.size() <= FieldKey::none && FieldKey::none < 64);

    const JsonValue *behind() const { return this + 1 + (isContainer() ? size() : 0); }

    void setInteger(std::int64_t integer)
    {
        m_integer = integer;
        set(Kind::Integer);
    }
    void setDecimal(double decimal)
    {
        m_decimal = decimal;
        set(Kind::Decimal);
    }
    void setString(std::string_view text)
    {
        m_text = text.data();
        set(Kind::String, text.size());
    }
    void setObject(std::uint64_t fields, std::size_t size)
    {
        m_fields = fields;
        set(Kind::Object, size);
    }
    void setArray(std::size_t size) { set(Kind::Array, size); }
    void set(Kind kind, std::size_t size = 0)
    {
        m_sizeAndKind = static_cast<std::uint32_t>(size << 3 | static_cast<std::size_t>(kind));
    }

    const char *m_name;
    union {
        std::int64_t m_integer;
        double m_decimal;
        const char *m_text;
        std::uint64_t m_fields; ///< of an object: a bit for each field that it has
    };
    std::uint32_t m_nameLengthAndField;
    std::uint32_t m_sizeAndKind;
};

/// Values in a row. What was cut off stays in memory, to be written over.
class JsonValues
{
public:
    JsonValue &operator[](std::size_t index) { return m_values.get()[index]; }
    std::size_t size() const { return m_size; }

    /// Appends a value that is nothing yet, and gives its index.
    std::size_t append(std::string_view name, std::size_t field)
    {
        if (m_size == m_capacity)
            grow();
        JsonValue &value = m_values.get()[m_size];
        value.m_name = name.data();
        value.m_nameLengthAndField = static_cast<std::uint32_t>(name.size() << 6 | field);
        value.set(JsonValue::Kind::Other);
        return m_size++;
    }

    void cutTo(std::size_t size) { m_size = size; }

private:
    void grow();

    struct Free
    {
        void operator()(JsonValue *values) const { std::free(values); }
    };

    // Not a vector: large memory grows where it is, without a second one to copy from.
    std::unique_ptr<JsonValue, Free> m_values;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

/// Calls \a visit(member) for each member that is an object or an array, in their order. Of members
/// with the same name only the last counts, whatever it is.
template<typename Visit>
void forEachContainer(const JsonValue &object, Visit visit)
{
    // Comparing pairs is fastest for the few members that objects have, but would take seconds for
    // the tens of thousands that one can have.
    constexpr std::size_t manyValues = 32;
    std::unordered_map<std::string_view, const JsonValue *> lastOfName;
    const bool hasMany = object.size() > manyValues;
    if (hasMany) {
        for (const JsonValue &member : object)
            lastOfName.insert_or_assign(member.name(), &member);
    }

    const auto isRepeatedAfter = [&object](JsonValue::Iterator member) {
        const std::string_view name = (*member).name();
        for (++member; member != object.end(); ++member) {
            if ((*member).name() == name)
                return true;
        }
        return false;
    };
    for (auto it = object.begin(); it != object.end(); ++it) {
        const JsonValue &member = *it;
        if (!member.isContainer())
            continue;
        if (hasMany ? lastOfName.at(member.name()) == &member : !isRepeatedAfter(it))
            visit(member);
    }
}

} // namespace tallyglass
