#pragma once

#include <cstddef>
#include <cstring>
#include <stdexcept>
#include <string>

/// Casts between the interface's opaque classes and the host's values: an fmx::Text is a host::Text, an
/// fmx::Data a host::Data, an fmx::CharacterStyle a host::CharacterStyle, an fmx::CharacterStyle::Color a
/// host::Color, an fmx::FixPt a host::Decimal, an fmx::DateTime a host::DateTime, an fmx::BinaryData a
/// host::Binary, an fmx::Locale a host::Locale, an fmx::QuadChar a host::QuadChar, an fmx::DataVect a
/// host::DataVect, an fmx::RowVect a host::RowVect and an fmx::ExprEnv a host::calc::Environment.

namespace host::bridge {

/// The pointer itself; a null pointer throws std::invalid_argument. A reference of the interface is a pointer
/// in the machine code, and a faulty plug-in may pass null. The compiler assumes that the address of a
/// reference is never null and would remove the check, so the pointer passes through a volatile variable.
template<class Pointee>
Pointee* checked(Pointee* pointer) {
    Pointee* volatile unseen = pointer;
    Pointee* const seen = unseen;
    if (seen == nullptr) throw std::invalid_argument("a null pointer");
    return seen;
}

/// A host value from the interface's pointer; a null pointer throws std::invalid_argument.
template<class Value>
const Value& in(const void* object) {
    return *static_cast<const Value*>(checked(object));
}
template<class Value>
Value& in(void* object) {
    return *static_cast<Value*>(checked(object));
}

/// A copy of a plug-in's UTF-16 units, which the interface declares as unsigned shorts. Null is allowed for a
/// size of 0.
inline std::u16string unitsFrom(const unsigned short* first, std::size_t size) {
    std::u16string units(size, u'\0');
    if (size > 0) std::memcpy(units.data(), checked(first), size * sizeof(char16_t));
    return units;
}

/// A host value as the interface's opaque class.
template<class Opaque, class Value>
const Opaque& out(const Value& value) {
    return *reinterpret_cast<const Opaque*>(&value);
}
template<class Opaque, class Value>
Opaque& out(Value& value) {
    return *reinterpret_cast<Opaque*>(&value);
}

} // namespace host::bridge
