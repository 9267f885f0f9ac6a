// What the entry points of the module share.
#pragma once

namespace vessora {

// Stands for this library among the modules that extend the session with dialogs of their own.
void* moduleInstance();

// Puts the module's jobs (jobs.h) into the system registry. A host whose registry takes nothing has
// the commands alone.
void offerJobs();
// Takes them out again; does nothing when they are not there.
void withdrawJobs();

}  // namespace vessora
