#include "html/Css.h"

namespace {

/// A later row overwrites the value that an earlier row sets for the same property.
const struct {
    std::string_view formatting, property;
    std::string_view value;  ///< empty: the formatting's own value
    bool isAppended = false; ///< to the property's earlier value
} kDeclarations[] = {
    {"bold", "font-weight", "bold"},
    {"italic", "font-style", "italic"},
    {"highlight", "background-color", "#FFFF00"},
    {"underline", "text-decoration", "underline"},
    {"doubleunderline", "text-decoration", "underline"},
    {"doubleunderline", "text-decoration-style", "double"},
    {"doubleunderline", "-webkit-text-decoration-style", "double"},
    {"strikethrough", "text-decoration", "line-through", true},
    {"condense", "letter-spacing", "-2px"},
    {"extend", "letter-spacing", "2px"},
    {"superscript", "vertical-align", "super"},
    {"subscript", "vertical-align", "sub"},
    {"smallcaps", "font-variant", "small-caps"},
    {"uppercase", "text-transform", "uppercase"},
    {"lowercase", "text-transform", "lowercase"},
    {"titlecase", "text-transform", "capitalize"},
    {"color", "color", ""},
    {"font", "font-family", ""},
    {"size", "font-size", ""},
};

} // namespace

InlineStyles CSSFromFormattings(const Formattings& formattings) {
    InlineStyles styles;
    for (const auto& [name, property, value, isAppended] : kDeclarations) {
        const auto formatting = formattings.find(name);
        if (formatting == formattings.end()) continue;
        std::string& declared = styles[std::string(property)];
        if (isAppended && !declared.empty())
            declared.append(" ").append(value);
        else
            declared = value.empty() ? formatting->second : value;
    }
    return styles;
}

std::string serialize_CSS(const InlineStyles& styles, std::string_view separator) {
    std::string css;
    for (const auto& [property, value] : styles)
        css.append(property).append(":").append(value).append(";").append(separator);
    return css;
}
