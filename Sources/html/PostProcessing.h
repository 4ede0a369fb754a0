#pragma once

/// From what runs look like to what HTML can carry: elements, classes and declarations. Then neighbours that
/// have come to look the same are joined, and what all runs of a paragraph share moves up to the paragraph.

#include "html/ClassMap.h"
#include "html/Fragment.h"
#include "html/ParamVector.h"

#include <cstdint>
#include <vector>

/// Sends every formatting of every run to its place: an element if a tag parameter asks for it, else a class,
/// else a declaration if the style parameters allow it, else nowhere. Parameters are served in their order;
/// after a class parameter for "all" no other is.
void fragmentsPostProcessing(std::vector<cFragment>& fragments, ClassMap& classMap,
                             const ParamVector& tagParams, const ParamVector& classParams,
                             const ParamVector& styleParams);

/// True when elements, classes (both in order) and declarations are equal.
bool fragmentsHaveEqualAppearance(const cFragment& a, const cFragment& b);

/// Moves the text of a run into the next one when both look equal; the former stays, empty, with its look.
/// Gives how many were moved. A chain of equal runs takes time by its characters. When merges are logged,
/// each writes a line to standard output.
std::int64_t mergeFragments(std::vector<cFragment>& fragments);

/// These three move what every run has, also the emptied ones, from the runs to the paragraph.
/// A block element replaces a "p".
void escalateSharedBlockElement(cFragment& paragraph, std::vector<cFragment>& fragments);
void escalateSharedCssClasses(cFragment& paragraph, std::vector<cFragment>& fragments);
void escalateSharedCssStyles(cFragment& paragraph, std::vector<cFragment>& fragments);
