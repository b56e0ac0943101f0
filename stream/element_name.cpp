#include "stream/element_name.h"

#include "core/windows_lean.h"
#include "string/multibyte.h"
#include "string/scan.h"

#include <algorithm>

namespace qzr {

// The length is given to the platform so that it writes no terminator, which would not fit behind a cut name.

WideElementName::WideElementName(const char* name) noexcept {
    const char* const begin = name != nullptr ? name : "";
    const char* const end = mb_advance(begin, begin + text_length(begin), kMostElementName, lead_bytes());
    const int bytes = static_cast<int>(end - begin);
    const int units = bytes != 0 ? MultiByteToWideChar(CP_ACP, 0, begin, bytes, text_, kMostElementName) : 0;
    text_[units] = 0;
}

NarrowElementName::NarrowElementName(const wchar_t* name) noexcept {
    const std::size_t length = name != nullptr ? text_length(name) : 0;
    const int units = static_cast<int>(std::min<std::size_t>(length, kMostElementName));
    const int bytes =
        units != 0 ? WideCharToMultiByte(CP_ACP, 0, name, units, text_, kMostElementName, nullptr, nullptr)
                   : 0;
    text_[bytes] = 0;
}

} // namespace qzr
