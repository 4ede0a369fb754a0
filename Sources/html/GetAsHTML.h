#pragma once

/// The conversion of a styled text to HTML, from the parameters as text to the result.

#include "bridge/HostInterface.h"
#include "html/ClassMap.h"
#include "html/Fragment.h"
#include "html/ParamVector.h"

#include <string>
#include <vector>

/// The lines of a parameter. With values, a line is key=value; the line "all" means all=kst; other lines are
/// ignored. Without values, a line is a key. Keys are lower-cased, values are not.
ParamVector parseTagOrClassOrStyleParam(const fmx::Text& text, bool hasValues);

/// Adds the default elements of formattings that have no element yet.
void addDefaultFormattingsForTag(ParamVector& tagParams);

/// True for each value that ends a paragraph: a return ends it, or the next value has another alignment.
/// Lines and values are matched by their index, although a soft line break ends a line and no value.
std::vector<bool> determineParagraphEnds(const Units& lineEndings,
                                         const std::vector<std::string>& alignments);

/// Passes the runs of one paragraph through the later stages, which change them, and appends the paragraph to
/// the output. The source text and the environment are not used.
void transformRichtextToHTML(const fmx::Text& source, const std::string& alignment, ParamVector tagParams,
                             ParamVector classParams, ParamVector styleParams, const fmx::ExprEnv& env,
                             std::vector<cFragment>& fragments, ClassMap& classMap, fmx::TextAutoPtr& output);

/// Appends the HTML of the text, the style block first. A text that begins with "$" is evaluated. When its
/// value is not empty, that value is converted, with the host's alignment of its paragraphs. Any other text
/// is itself converted.
void transformRichtextToHTMLWithEvaluate(const fmx::Text& text, const fmx::Text& tags,
                                         const fmx::Text& classes, const fmx::Text& styles,
                                         const fmx::ExprEnv& env, fmx::TextAutoPtr& output);
