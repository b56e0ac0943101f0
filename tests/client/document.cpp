#include "document.h"

#include "qzcore.h"
#include "qzref.h"

bool save_document(IXStream& stream, IParam& settings) { return SaveParamToXStream(&stream, &settings) != 0; }

IParam* load_document(IXStream& stream) {
    auto settings = CQZRef<IParam>::Adopt(new_MemParam());
    LoadParamFromXStream(&stream, settings.Get());
    return settings.Detach();
}
