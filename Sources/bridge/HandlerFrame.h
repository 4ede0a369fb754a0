#pragma once

/// The frame around every calculation function.

#include "bridge/HostInterface.h"
#include "bridge/LastError.h"
#include "bridge/fmlib.h"

#include <exception>

namespace kst {

/// Runs a handler's body, `fmx::errcode()`, and returns its result for the host. An exception of the body
/// becomes the number 2400 in the result and a last-error record. When the host fails while that is written,
/// 2400 is returned and becomes the calculation's error. Nothing is ever thrown into the host.
template<typename Body>
fmx::errcode runHandler(const fmx::ExprEnv& env, fmx::Data& result, const Body& body) noexcept {
    try {
        try {
            return body();
        } catch (const std::exception& e) {
            return ProcessSTDException(e, result, env, true);
        } catch (...) {
            return ProcessFatalException(result, env, true);
        }
    } catch (...) {
        return kUnexpectedError;
    }
}

/// Does the same as runHandler, but records nothing.
template<typename Body>
fmx::errcode runHandlerWithoutRecord(fmx::Data& result, const Body& body) noexcept {
    try {
        try {
            return body();
        } catch (...) {
            fmlib::FMErrCode2FMData(kUnexpectedError, result);
            return 0;
        }
    } catch (...) {
        return kUnexpectedError;
    }
}

} // namespace kst
