#include "host/fmwrapper/Application.h"

namespace host {

namespace {

Application* gApplication = nullptr;

} // namespace

Application* Application::current() { return gApplication; }

void Application::setCurrent(Application* application) { gApplication = application; }

} // namespace host
