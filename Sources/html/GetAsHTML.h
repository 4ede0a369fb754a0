#pragma once

/// A styled text as HTML, from its parameters as text to the result.

#include "bridge/HostInterface.h"
#include "html/ClassMap.h"
#include "html/Fragment.h"
#include "html/ParamVector.h"

#include <string>
#include <vector>

/// A parameter's lines. With values, a line is key=value, and "all" alone is all=kst; other lines are left
/// out. Without, a line is a key. Keys are lower-cased, values are kept as written.
ParamVector parseTagOrClassOrStyleParam(const fmx::Text& text, bool hasValues);

/// Adds the usual elements of the formattings that have none yet.
void addDefaultFormattingsForTag(ParamVector& tagParams);

/// Which values end a paragraph: those that a return ends, and those whose successor is aligned otherwise.
/// Lines and values are matched by their index, although a soft line break ends a line and no value.
std::vector<bool> determineParagraphEnds(const Units& lineEndings,
                                         const std::vector<std::string>& alignments);

/// Takes the runs of one paragraph through the later stages, which use them up, and appends the paragraph to
/// the output. The source text and the environment are not used.
void transformRichtextToHTML(const fmx::Text& source, const std::string& alignment, ParamVector tagParams,
                             ParamVector classParams, ParamVector styleParams, const fmx::ExprEnv& env,
                             std::vector<cFragment>& fragments, ClassMap& classMap, fmx::TextAutoPtr& output);

/// Appends the HTML of the text, the style block first. A text that begins with "$" and has a value that is
/// not empty stands for that value, whose paragraphs are then aligned as the host says; any other is itself
/// converted.
void transformRichtextToHTMLWithEvaluate(const fmx::Text& text, const fmx::Text& tags,
                                         const fmx::Text& classes, const fmx::Text& styles,
                                         const fmx::ExprEnv& env, fmx::TextAutoPtr& output);
