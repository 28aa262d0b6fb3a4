// The library's own log lines on a workstation.
#ifndef XVKFC_TOOLS_RUN_LIBRARY_LOG_H_
#define XVKFC_TOOLS_RUN_LIBRARY_LOG_H_

namespace tool {

// With `verbose`, routes every liblog line of the process (the library logs
// at debug priority under "FC_Native") to standard error as
// "FC_Native D: <message>". Without it, the library's lines are dropped.
void routeLibraryLog(bool verbose);

}  // namespace tool

#endif  // XVKFC_TOOLS_RUN_LIBRARY_LOG_H_
