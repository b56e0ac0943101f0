// Factories that fail, each in its way.
#include "plugin_failure.h"

#include "qzstring.h"
#include "qzunknown.h"

#define FACTORY(name)                                                                                        \
    extern "C" __declspec(dllexport) int name([[maybe_unused]] IQZUnknown* outer,                            \
                                              [[maybe_unused]] const std::type_info& iid,                    \
                                              [[maybe_unused]] IQZUnknown** out)

FACTORY(SampleRefusal) { return 0; }
FACTORY(SampleFileFailure) { throw CXFileException(QZERR_SHARING, QZOP_WRITE, L"plugin data.bin"); }
FACTORY(SampleOwnFailure) { throw PluginFailure(4711); }
FACTORY(SampleTextFailure) { throw CXString("the plug-in's words"); }
FACTORY(SampleIfaceFailure) { throw CXIFaceException(iid); }
