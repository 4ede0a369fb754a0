#include "host/fmwrapper/Application.h"

#include <algorithm>

namespace host {

namespace {

Application* gApplication = nullptr;

} // namespace

void RegisteredFunction::describe(std::u16string_view description) {
    const std::size_t bar = description.find(u'|');
    words = description.substr(0, bar);
    sentence = bar == std::u16string_view::npos ? std::u16string_view() : description.substr(bar + 1);
    if (!words.empty()) return;
    words = name;
    std::replace(words.begin(), words.end(), u'_', u' ');
}

Application* Application::current() { return gApplication; }

void Application::setCurrent(Application* application) { gApplication = application; }

} // namespace host
