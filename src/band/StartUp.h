// The band's start-up steps that the command line runs as well: the updater
// housekeeping, the steps that make transfers possible, asking the server for
// the hashes of its files, and refreshing and loading the two block lists the
// checker works from.
#pragma once

#include <functional>

#include "band/ToolbarProcess.h"
#include "check/CheckURL.h"

namespace tarnwick {

// Runs one start-up step: a step that fails is passed over, with a debug-log
// line, and the next one runs.
void StartUpStep(Log& log, const std::function<void()>& step);

// Probes the program folder (ProbeProgramFolder); when it cannot be written,
// starts the folder's updater.exe with "/i" to repair it, without waiting.
void RunUpdaterHousekeeping(ToolbarProcess& process);

// The installation GUID, about:PhishingSite, the options, the download form
// (which swaps in a downloaded retrieval component) and the shared retrieval
// component, each a step of its own. False when there is no retrieval
// component.
bool StartTransfers(ToolbarProcess& process);

// The hash request for the files of the refresh tables, in their order.
void RequestFileHashes(ToolbarProcess& process);

// Refreshes localblock.dat and xss.dat when the server's hashes differ, then
// hands their text to the checker and the cross-site scripting detector.
void LoadBlockLists(ToolbarProcess& process, CheckURL& checker);

}  // namespace tarnwick
