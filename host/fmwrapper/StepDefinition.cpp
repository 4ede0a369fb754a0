#include "host/fmwrapper/StepDefinition.h"

#include "host/values/Encoding.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <libxml/parser.h>
#include <libxml/tree.h>
#include <memory>
#include <stdexcept>

namespace host {

namespace {

struct FreeDocument {
    void operator()(xmlDoc* document) const { xmlFreeDoc(document); }
};
using Document = std::unique_ptr<xmlDoc, FreeDocument>;

/// The text, which the library leaves to the caller to free.
std::string taken(xmlChar* text) {
    const std::unique_ptr<xmlChar, void (*)(void*)> owned(text, xmlFree);
    return owned ? reinterpret_cast<const char*>(owned.get()) : std::string();
}

std::string attribute(const xmlNode* element, const char* name) {
    return taken(xmlGetProp(element, reinterpret_cast<const xmlChar*>(name)));
}

bool isElement(const xmlNode* node, std::string_view name) {
    return node->type == XML_ELEMENT_NODE && reinterpret_cast<const char*>(node->name) == name;
}

struct TypeName {
    std::string_view name;
    StepParameter::Type type;
};
constexpr std::array typeNames{
    TypeName{"calc", StepParameter::Type::calculation}, TypeName{"bool", StepParameter::Type::boolean},
    TypeName{"list", StepParameter::Type::list}, TypeName{"target", StepParameter::Type::target}};

bool isTrue(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return text == "true" || text == "1";
}

int numberOf(const std::string& text) {
    int number = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (fault != std::errc() || end != text.data() + text.size() || number < 0)
        throw std::runtime_error("the ID \"" + text + "\" of a parameter is no number");
    return number;
}

StepParameter parameterOf(const xmlNode* element) {
    StepParameter parameter;
    const std::string type = attribute(element, "Type");
    const auto* row = std::find_if(typeNames.begin(), typeNames.end(),
                                   [&](const TypeName& named) { return named.name == type; });
    if (row == typeNames.end())
        throw std::runtime_error("a parameter's Type is \"" + type + "\", not calc, bool, list or target");
    parameter.type = row->type;
    parameter.id = numberOf(attribute(element, "ID"));
    parameter.label = fromUtf8(attribute(element, "Label"));
    parameter.dataType = fromUtf8(attribute(element, "DataType"));
    parameter.defaultValue = fromUtf8(attribute(element, "Default"));
    parameter.showsInline = isTrue(attribute(element, "ShowInline"));
    for (const xmlNode* child = element->children; child != nullptr; child = child->next)
        if (isElement(child, "Value")) parameter.values.push_back(fromUtf8(taken(xmlNodeGetContent(child))));
    return parameter;
}

} // namespace

std::vector<StepParameter> readStepDefinition(std::u16string_view xml) {
    constexpr std::size_t mostBytes = 1 << 20, mostParameters = 10;
    const std::string utf8 = toUtf8(xml);
    if (utf8.size() > mostBytes) throw std::runtime_error("the definition is longer than 1 MiB");
    const Document document(xmlReadMemory(utf8.data(), static_cast<int>(utf8.size()), nullptr, "UTF-8",
                                          XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING));
    // A document type could define entities that grow without limit.
    const xmlNode* root =
        document && document->intSubset == nullptr ? xmlDocGetRootElement(document.get()) : nullptr;
    if (root == nullptr) throw std::runtime_error("the definition is no XML");
    if (!isElement(root, "PluginStep")) throw std::runtime_error("the definition's root is not PluginStep");
    std::vector<StepParameter> parameters;
    for (const xmlNode* child = root->children; child != nullptr; child = child->next)
        if (isElement(child, "Parameter")) parameters.push_back(parameterOf(child));
    if (parameters.size() > mostParameters)
        throw std::runtime_error("the definition has more than ten parameters");
    const auto id = [](const StepParameter& parameter) { return parameter.id; };
    std::ranges::stable_sort(parameters, {}, id);
    if (std::ranges::adjacent_find(parameters, {}, id) != parameters.end())
        throw std::runtime_error("two parameters have the same ID");
    return parameters;
}

} // namespace host
