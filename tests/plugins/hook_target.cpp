// A module that calls one function of the system through two imports.
#include <windows.h>

extern "C" {
__declspec(dllimport) int WINAPI ForwardedMulDiv(int, int, int);

__declspec(dllexport) int target_mul_div(int a, int b, int c) { return MulDiv(a, b, c); }
__declspec(dllexport) int target_forwarded_mul_div(int a, int b, int c) { return ForwardedMulDiv(a, b, c); }
}
