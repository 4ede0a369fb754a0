/// Before main, but in a file of its own, linked behind the other: no message can be sent from a file whose
/// own start has not made it known to the runtime.

void useFoundationFirst();

namespace {

__attribute__((constructor)) void start() { useFoundationFirst(); }

} // namespace
