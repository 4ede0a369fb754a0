#pragma once

#include "FMWrapper/FMXClient.h"
#include "FMWrapper/FMXExtern.h"
#include "host/calc/Engine.h"
#include "host/fmwrapper/Bridge.h"
#include "host/fmwrapper/Faults.h"
#include "host/fmwrapper/ObjectCounts.h"

#include <new>
#include <utility>

/// The frame of every FM_… function.

namespace host::gate {

/// Makes the call fail when a fault is armed for it, and turns exceptions into codes of the error slot: 1 for
/// lack of memory, 2 for everything else. A failing call gives `fallback`.
template<class Answer, class Body>
Answer call(fmx::_fmxcpt& slot, Answer fallback, Body&& body) {
    slot.m_code = faults().next();
    if (slot.m_code != 0) return fallback;
    try {
        return std::forward<Body>(body)();
    } catch (const std::bad_alloc&) {
        slot.m_code = fmx::_fmxcpt::kBadAlloc;
    } catch (...) {
        slot.m_code = fmx::_fmxcpt::kUnknown;
    }
    return fallback;
}

template<class Body>
void call(fmx::_fmxcpt& slot, Body&& body) {
    call(slot, false, [&] {
        std::forward<Body>(body)();
        return true;
    });
}

/// A call that gives a number, 0 when it fails. The body's number is narrowed to the interface's type.
template<class Number, class Body>
Number number(fmx::_fmxcpt& slot, Body&& body) {
    return call(slot, Number{}, [&] { return static_cast<Number>(std::forward<Body>(body)()); });
}

/// A call that gives an error code, 1200 when it fails.
template<class Body>
fmx::errcode code(fmx::_fmxcpt& slot, Body&& body) {
    return call(slot, fmx::errcode{calc::error::unspecific},
                [&] { return static_cast<fmx::errcode>(std::forward<Body>(body)()); });
}

/// An empty value, the result of a failing call that gives a reference. A caller that reads the reference
/// before the error slot sees an empty value.
template<class Value>
const Value& empty() {
    static const Value value{};
    return value;
}

template<class Opaque, class Value, class Body>
const Opaque* refer(fmx::_fmxcpt& slot, Body&& body) {
    return &bridge::out<Opaque>(*call(slot, &empty<Value>(), [&] { return &std::forward<Body>(body)(); }));
}

/// An assignment operator; gives the object that was assigned to.
template<class Value, class Opaque>
const Opaque* assign(fmx::_fmxcpt& slot, void* self, const Opaque& that) {
    return refer<Opaque, Value>(
        slot, [&]() -> const Value& { return bridge::in<Value>(self) = bridge::in<Value>(&that); });
}

/// Creates an object that the plug-in owns; null when the call fails.
template<class Opaque, ObjectClass which, class Body>
Opaque* construct(fmx::_fmxcpt& slot, Body&& body) {
    using Value = decltype(body());
    return reinterpret_cast<Opaque*>(call(slot, static_cast<Value*>(nullptr), [&] {
        auto* object = new Value(std::forward<Body>(body)());
        countObject(which, 1);
        return object;
    }));
}

/// Destroys an object of the plug-in. The call never fails; null is allowed.
template<class Value, ObjectClass which>
void destroy(void* object, fmx::_fmxcpt& slot) {
    slot.m_code = 0;
    if (object == nullptr) return;
    countObject(which, -1);
    delete static_cast<Value*>(object);
}

} // namespace host::gate
