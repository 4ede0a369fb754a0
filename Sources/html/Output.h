#pragma once

/// The last stage: a paragraph as markup, and the style block of a conversion's classes. Output is plain
/// text; lines of it end with a return.

#include "HostInterface.h"
#include "html/Fragment.h"
#include "html/PostProcessing.h"

#include <string>
#include <string_view>
#include <vector>

/// Makes a paragraph of runs, which are used up, and appends it to the output.
void transformRichtextToHTML(const std::string& alignment, Conversion& conversion,
                             std::vector<cFragment>& fragments, fmx::TextAutoPtr& output);

/// The element around a paragraph, without characters. The alignment "none" means no element. The element is
/// what the tag parameters say for the alignment, else "p", which then also tells the alignment, in a class
/// or a declaration, as far as the parameters want it told.
cFragment createParagraphFragment(const std::string& alignment, Conversion& conversion);

/// Appends the paragraph with its runs to the output. What the runs share has moved to the paragraph, if it
/// has an element.
void produceHTMLfromFragments(cFragment paragraph, std::vector<cFragment>& fragments,
                              fmx::TextAutoPtr& output);

/// An opening tag; an empty attribute is left out. Values are written as they are.
std::string createTag(std::string_view name, std::string_view classes, std::string_view style);

/// Writes what HTML would take for markup, the no-break space and line breaks within a paragraph as HTML
/// does. Returns and quotation marks stay.
void addEntitiesAndFixEndlines(fmx::Text& text);

/// Appends a style block with all classes in name order; nothing when there are none. `afterOpen` stands
/// behind the opening tag.
void appendCssClasses(const ClassMap& classMap, std::string_view afterOpen, fmx::TextAutoPtr& output);
