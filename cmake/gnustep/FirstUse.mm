/// Uses the classes before main. The function is in its own file, linked after LeakChecks.mm: that file must
/// be registered with the runtime before it sends messages.

void useFoundationFirst();

namespace {

__attribute__((constructor)) void start() { useFoundationFirst(); }

} // namespace
