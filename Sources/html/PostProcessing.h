#pragma once

/// Turns formattings into elements, classes and declarations. Then neighbours of equal appearance are merged.
/// Elements, classes and declarations common to all runs of a paragraph move to the paragraph.

#include "html/ClassMap.h"
#include "html/Fragment.h"
#include "html/ParamVector.h"

#include <cstdint>
#include <vector>

/// Turns every formatting of every run into an element when a tag parameter asks for it, else into a class,
/// else into a declaration when the style parameters allow it, else into nothing. Parameters are applied in
/// order. After a class parameter for "all" no other class parameter is applied.
void fragmentsPostProcessing(std::vector<cFragment>& fragments, ClassMap& classMap,
                             const ParamVector& tagParams, const ParamVector& classParams,
                             const ParamVector& styleParams);

/// True when elements, classes (both in order) and declarations are equal.
bool fragmentsHaveEqualAppearance(const cFragment& a, const cFragment& b);

/// Moves the text of a run into the next one when both have equal appearance. The first run stays, empty,
/// with its appearance. Returns the number of merges. The time for a chain of equal runs is linear in its
/// characters. When merges are logged, each writes a line to standard output.
std::int64_t mergeFragments(std::vector<cFragment>& fragments);

/// These three functions move an element, class or declaration of every run, also of empty ones, from the
/// runs to the paragraph. A block element replaces a "p".
void escalateSharedBlockElement(cFragment& paragraph, std::vector<cFragment>& fragments);
void escalateSharedCssClasses(cFragment& paragraph, std::vector<cFragment>& fragments);
void escalateSharedCssStyles(cFragment& paragraph, std::vector<cFragment>& fragments);
