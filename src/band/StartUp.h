// The band's start-up steps that the command line runs as well: the updater
// housekeeping, asking the server for the hashes of its files, and
// refreshing and loading the two block lists the checker works from.
#pragma once

#include "band/ToolbarProcess.h"
#include "check/CheckURL.h"

namespace tarnwick {

// Probes the program folder (ProbeProgramFolder); when it cannot be written,
// starts the folder's updater.exe with "/i" to repair it, without waiting.
void RunUpdaterHousekeeping(ToolbarProcess& process);

// The hash request for the files of the refresh tables, in their order.
void RequestFileHashes(ToolbarProcess& process);

// Refreshes localblock.dat and xss.dat when the server's hashes differ, then
// hands their text to the checker and the cross-site scripting detector.
void LoadBlockLists(ToolbarProcess& process, CheckURL& checker);

}  // namespace tarnwick
