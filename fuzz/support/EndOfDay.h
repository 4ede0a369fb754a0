#pragma once

#include "host/app/File.h"
#include "host/app/PlugIn.h"
#include "host/app/Session.h"
#include "host/dispatch/MainQueue.h"
#include "host/fmwrapper/Faults.h"
#include "host/values/Clock.h"

/// Ends a day in a plug-in's life: nothing fails any more, files but the first are closed, and the plug-in
/// is told to give up everything. Whatever it was asked to keep, nothing of it is left behind this.
inline void endDay(host::Session& session, host::PlugIn& plugIn) {
    host::faults().disarm();
    host::clock().reset();
    while (session.files().size() > 1)
        session.close(session.files().back()->id());
    session.evaluate(u"Kestrel_SetGlobal ( \"\" ; 1 )");
    plugIn.shutdown();
    host::mainQueue().clear();
    session.runWaitingScripts();
    session.front()->fileVariables().clear();
}
