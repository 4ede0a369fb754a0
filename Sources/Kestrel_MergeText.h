#pragma once

/// Templates: every calculation between "<<" and ">>" is replaced by its value.

#include "bridge/HostInterface.h"

/// Stores the first value's text, with its placeholders filled in, as text with the result's own locale. All
/// other characters, also single surrogates, are copied with their styles. There is at least one value;
/// further values are not read.
///
/// A placeholder begins with the last "<<" of a run of overlapping ones and ends with the next ">>":
/// "<<<x>>>" keeps one "<" and one ">" around the value of x. When a ">>" comes before the next "<<", that
/// "<<" opens no placeholder and is copied. Text without a ">>" after it is copied.
///
/// Each expression is evaluated in the calculation's context, in order; a repeated expression is evaluated
/// again. Its style is the style of its first character (of the ">" after it, when it is empty). A value
/// whose first character has no style gets the expression's style in addition to its own. An expression that
/// does not evaluate is copied with its delimiters, all in the expression's style. No error is reported.
void PerformMergeText(const fmx::ExprEnv& env, const fmx::DataVect& values, fmx::Data& result);
