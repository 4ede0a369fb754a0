#pragma once

/// Templates: every calculation between "<<" and ">>" gives way to its value.

#include "bridge/HostInterface.h"

/// Stores the first value's text, its placeholders filled in, as text with the result's own locale. All else,
/// halves of surrogate pairs too, is copied with its looks. The values are not empty; further ones are not
/// read.
///
/// A placeholder reaches from the last of directly neighbouring "<<" to the next ">>": "<<<x>>>" keeps one
/// "<" and one ">" around the value of x. A "<<" that comes behind a ">>" without a partner opens nothing and
/// stays, and so does all up to the next "<<". What has no ">>" behind it stays.
///
/// Each expression is evaluated where the calculation stands, one after the other, also one that occurs
/// again. Its look is that of its first character (for an empty one, of the ">" behind it). A value whose
/// first character has no look of its own gets the expression's look laid over it. An expression that does
/// not evaluate stays, with its delimiters, and gets its look laid over all of them; no error is reported.
void PerformMergeText(const fmx::ExprEnv& env, const fmx::DataVect& values, fmx::Data& result);
