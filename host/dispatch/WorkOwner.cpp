#include "host/dispatch/WorkOwner.h"

#include <utility>

namespace host {

namespace {

thread_local WorkOwner* gRunningOwner = nullptr;

} // namespace

WorkOwner* WorkOwner::running() { return gRunningOwner; }

WorkOwner::Running::Running(WorkOwner* owner) : before_(std::exchange(gRunningOwner, owner)) {}

WorkOwner::Running::~Running() { gRunningOwner = before_; }

bool WorkOwner::run(WorkOwner* owner, const std::function<void()>& work) {
    const Running running(owner);
    try {
        work();
        return true;
    } catch (...) {
        if (owner != nullptr) owner->workThrew();
        return false;
    }
}

} // namespace host
