// The program's name and version as it presents itself to the server.
#pragma once

#include <string>

namespace tarnwick {

// "Tarnwick Toolbar (v1.0.0)": file description, " (v", major.minor.revision, ")".
std::string AgentString();
// "1.0.0"
std::string VersionText();

}  // namespace tarnwick
