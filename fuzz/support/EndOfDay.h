#pragma once

#include "host/app/File.h"
#include "host/app/LoadedPlugIn.h"
#include "host/dispatch/MainQueue.h"
#include "host/fmwrapper/Faults.h"
#include "host/values/Clock.h"

/// Ends a fuzzer's run: no host call fails any more, all files except the first are closed, and the plug-in
/// drops its globals and its scripts. It must keep no host object after this.
inline void endDay(host::LoadedPlugIn& loaded) {
    host::Session& session = loaded.session();
    host::faults().disarm();
    host::clock().reset();
    while (session.files().size() > 1)
        session.close(session.files().back()->id());
    session.evaluate(u"Kestrel_SetGlobal ( \"\" ; 1 )");
    loaded.plugIn().shutdown();
    host::mainQueue().clear();
    session.runWaitingScripts();
    session.front()->fileVariables().clear();
}
