// Numbers from text, as the runtime's scanner reads them with one conversion: white space first, then as much
// as belongs to the number; what follows does not matter. Plain numbers are read here, everything else goes
// to the scanner itself, so the result is always its result, the process's locale included.
#pragma once

namespace qzr {

// @return true when a number was read
bool scan_int(const char* text, int& out);
bool scan_int(const wchar_t* text, int& out);
bool scan_unsigned(const char* text, unsigned& out);
bool scan_unsigned(const wchar_t* text, unsigned& out);
bool scan_double(const char* text, double& out);
bool scan_double(const wchar_t* text, double& out);
bool scan_float(const char* text, float& out);
bool scan_float(const wchar_t* text, float& out);

} // namespace qzr
