#pragma once

#include "host/sql/Translator.h"

namespace host::sql {

/// Makes a scope the innermost one.
class Translator::Entered {
public:
    Entered(Scope*& current, Scope& scope) : current_(current) {
        scope.outer = current;
        current = &scope;
    }
    ~Entered() { current_ = current_->outer; }
    Entered(const Entered&) = delete;
    Entered& operator=(const Entered&) = delete;

private:
    Scope*& current_;
};

} // namespace host::sql
