#pragma once

#include <functional>

namespace host {

/// The owner of running code and of work on the main queue: a plug-in.
class WorkOwner {
public:
    /// The owner whose code runs on this thread; null when none does.
    static WorkOwner* running();
    /// Runs work as the owner's code; null stands for no owner. False when the work threw; `workThrew` of the
    /// owner is called then.
    static bool run(WorkOwner* owner, const std::function<void()>& work);

    /// Marks code of an owner as running for as long as the mark lives. Marks nest.
    class Running {
    public:
        explicit Running(WorkOwner* owner);
        ~Running();
        Running(const Running&) = delete;
        Running& operator=(const Running&) = delete;

    private:
        WorkOwner* before_;
    };

protected:
    ~WorkOwner() = default;

private:
    virtual void workThrew() = 0;
};

} // namespace host
