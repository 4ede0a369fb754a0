#include "host/values/Json.h"

#include <algorithm>
#include <charconv>

namespace host {

namespace {

using Kind = JsonStep::Kind;

/// The index that digits give; nothing for any other text.
std::optional<std::size_t> indexOf(std::string_view digits) {
    std::size_t index = 0;
    const char* const begin = digits.data();
    const char* const end = begin + digits.size();
    const auto [stop, error] = std::from_chars(begin, end, index);
    return error == std::errc() && stop == end ? std::optional(index) : std::nullopt;
}

/// Takes a step in brackets off the start of `path`, which begins after the opening bracket.
std::optional<JsonStep> takeBracket(std::string_view& path) {
    const bool isKey = path.starts_with('\'');
    const std::size_t size = isKey ? path.find("']", 1) : path.find(']');
    if (size == std::string_view::npos) return std::nullopt;
    const std::string_view inside = path.substr(isKey ? 1 : 0, isKey ? size - 1 : size);
    path.remove_prefix(size + (isKey ? 2 : 1));
    if (isKey) return JsonStep{.kind = Kind::key, .key = std::string(inside)};
    if (inside == ":") return JsonStep{.kind = Kind::last, .key = {}};
    if (inside == "+") return JsonStep{.kind = Kind::append, .key = {}};
    const auto index = indexOf(inside);
    return index ? std::optional(JsonStep{.kind = Kind::index, .key = {}, .index = index}) : std::nullopt;
}

/// The place of a step in an array, which may be its end; nothing for a step that leads into no array.
std::optional<std::size_t> placeIn(const JsonArray& array, const JsonStep& step) {
    switch (step.kind) {
    case Kind::last: return array.empty() ? 0 : array.size() - 1;
    case Kind::append: return array.size();
    default: return step.index;
    }
}

template<typename Element>
Element* child(Element& element, const JsonStep& step) {
    if (auto* array = std::get_if<JsonArray>(&element.value)) {
        const auto place = placeIn(*array, step);
        return place && *place < array->size() ? &(*array)[*place] : nullptr;
    }
    auto* const object = std::get_if<JsonObject>(&element.value);
    if (object == nullptr || step.kind != Kind::key) return nullptr;
    const auto member = object->find(step.key);
    return member == object->end() ? nullptr : &member->second;
}

template<typename Element>
Element* find(Element& root, JsonSteps steps) {
    Element* element = &root;
    for (const JsonStep& step : steps)
        if (element = child(*element, step); element == nullptr) break;
    return element;
}

Json* makeChild(Json& element, const JsonStep& step, std::size_t& nulls) {
    const bool isArray = std::holds_alternative<JsonArray>(element.value);
    if (step.kind == Kind::key && !(isArray && step.index)) {
        if (!std::holds_alternative<JsonObject>(element.value)) element.value = JsonObject();
        return &std::get<JsonObject>(element.value)[step.key];
    }
    if (!isArray) element.value = JsonArray();
    auto& array = std::get<JsonArray>(element.value);
    const std::size_t place = placeIn(array, step).value_or(0);
    if (place >= array.size()) {
        if (place - array.size() > nulls) return nullptr;
        nulls -= place - array.size();
        array.resize(place + 1);
    }
    return &array[place];
}

} // namespace

std::optional<std::vector<JsonStep>> readJsonPath(std::string_view path) {
    std::vector<JsonStep> steps;
    while (!path.empty()) {
        if (steps.size() == kMostJsonLevels) return std::nullopt;
        if (path.front() == '[') {
            path.remove_prefix(1);
            auto step = takeBracket(path);
            if (!step) return std::nullopt;
            steps.push_back(*std::move(step));
            continue;
        }
        if (path.front() == '.') path.remove_prefix(1);
        const std::string_view key = path.substr(0, std::min(path.find_first_of(".["), path.size()));
        path.remove_prefix(key.size());
        if (!key.empty())
            steps.push_back({.kind = Kind::key, .key = std::string(key), .index = indexOf(key)});
    }
    return steps;
}

const Json* findElement(const Json& root, JsonSteps steps) { return find(root, steps); }

void removeElement(Json& root, JsonSteps steps) {
    if (steps.empty()) return;
    Json* const parent = find(root, steps.first(steps.size() - 1));
    if (parent == nullptr || child(*parent, steps.back()) == nullptr) return;
    auto* array = std::get_if<JsonArray>(&parent->value);
    if (array == nullptr)
        std::get<JsonObject>(parent->value).erase(steps.back().key);
    else if (const auto place = placeIn(*array, steps.back()))
        array->erase(array->begin() + static_cast<std::ptrdiff_t>(*place));
}

Json* makeElement(Json& root, JsonSteps steps, std::size_t& nulls) {
    Json* element = &root;
    for (const JsonStep& step : steps)
        if (element = makeChild(*element, step, nulls); element == nullptr) break;
    return element;
}

} // namespace host
