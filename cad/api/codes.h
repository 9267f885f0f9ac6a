// Result and type codes of the editor functions and of result chains, with the host interface's
// values.
#pragma once

constexpr int RTNONE = 5000;    // end of a list
constexpr int RTREAL = 5001;    // real
constexpr int RTPOINT = 5002;   // point
constexpr int RTSHORT = 5003;   // 16-bit integer
constexpr int RTSTR = 5005;     // text
constexpr int RTENAME = 5006;   // selection name
constexpr int RTPICKS = 5007;   // selection set
constexpr int RTLONG = 5010;    // 32-bit integer
constexpr int RTDXF0 = 5020;    // entity type item of a filter
constexpr int RTNORM = 5100;    // success of an editor call
constexpr int RTERROR = -5001;  // failure
constexpr int RTCAN = -5002;    // the user cancelled (Esc)
constexpr int RTREJ = -5003;    // request refused
constexpr int RTFAIL = -5004;
constexpr int RTKWORD = -5005;  // a keyword was entered instead of a value
