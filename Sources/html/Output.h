#pragma once

/// The last stage: a paragraph as markup, and the style block of a conversion's classes. Output is plain
/// text; lines of it end with a return.

#include "bridge/HostInterface.h"
#include "html/ClassMap.h"
#include "html/Fragment.h"
#include "html/ParamVector.h"

#include <string>
#include <string_view>
#include <vector>

/// The element around a paragraph, without characters. The alignment "none" means no element. The element is
/// what the tag parameters say for the alignment, else "p", which then also tells the alignment, in a class
/// or a declaration, as far as the parameters want it told.
cFragment createParagraphFragment(const std::string& alignment, const ParamVector& tagParams,
                                  const ParamVector& classParams, const ParamVector& styleParams,
                                  ClassMap& classMap);

/// Appends the paragraph with its runs to the output. If the paragraph has an element, what all runs share
/// moves to it first. The source text and the class map are not used.
void produceHTMLfromFragments(const fmx::Text& source, cFragment& paragraph,
                              std::vector<cFragment>& fragments, const ClassMap& classMap,
                              fmx::TextAutoPtr& output);

/// An opening tag; an empty attribute is left out. Values are written as they are.
std::string createTag(std::string_view name, std::string_view classes, std::string_view style);

/// Writes what HTML would take for markup, the no-break space and line breaks within a paragraph as HTML
/// does. Returns and quotation marks stay.
void addEntitiesAndFixEndlines(fmx::Text& text);

/// Appends a style block with all classes in name order; nothing when there are none. `afterOpen` stands
/// behind the opening tag.
void appendCssClasses(const ClassMap& classMap, std::string_view afterOpen, fmx::TextAutoPtr& output);
