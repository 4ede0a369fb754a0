#pragma once

/// The last stage: a paragraph as markup, and the style block of a conversion's classes. The output is plain
/// text. Its lines end with a return.

#include "bridge/HostInterface.h"
#include "html/ClassMap.h"
#include "html/Fragment.h"
#include "html/ParamVector.h"

#include <string>
#include <string_view>
#include <vector>

/// The element around a paragraph, as a run without characters. The alignment "none" means no element. The
/// tag parameter of the alignment gives the element. Without one it is "p", with the alignment in a class or
/// a declaration when the class or style parameters ask for it.
cFragment createParagraphFragment(const std::string& alignment, const ParamVector& tagParams,
                                  const ParamVector& classParams, const ParamVector& styleParams,
                                  ClassMap& classMap);

/// Appends the paragraph with its runs to the output. When the paragraph has an element, the block element,
/// classes and declarations common to all runs move to it first. The source text and the class map are not
/// used.
void produceHTMLfromFragments(const fmx::Text& source, cFragment& paragraph,
                              std::vector<cFragment>& fragments, const ClassMap& classMap,
                              fmx::TextAutoPtr& output);

/// An opening tag. An empty attribute is left out. Values are written without escaping.
std::string createTag(std::string_view name, std::string_view classes, std::string_view style);

/// Replaces "&", "<", ">", the no-break space and line breaks within a paragraph by their HTML. Returns and
/// quotation marks stay.
void addEntitiesAndFixEndlines(fmx::Text& text);

/// Appends a style block with all classes in name order. Without classes it appends nothing. `afterOpen` is
/// written after the opening tag.
void appendCssClasses(const ClassMap& classMap, std::string_view afterOpen, fmx::TextAutoPtr& output);
