#include "tally.h"

#include <qzexception.h>
#include <qzref.h>
#include <qzstream.h>

namespace {

class Tally final : public CQZUnknownImpl<ITally> {
public:
    int InternalQueryInterface(const std::type_info& iid, IQZUnknown** out) override {
        const bool persistence = iid == typeid(IPersistXStream) || iid == typeid(IPersistX);
        return persistence ? AnswerQuery(this, out) : CQZUnknownImpl::InternalQueryInterface(iid, out);
    }

    void Add(int n) override { total_ += n; }
    int Total() override { return total_; }

    const char* GetClassName() override { return "PackageTally"; }
    unsigned GetSizeMax() override { return 4; }
    int Save(IXStream* stream) override {
        stream->WriteDWord(static_cast<unsigned>(total_));
        return 1;
    }
    int Load(IXStream* stream) override {
        total_ = static_cast<int>(stream->ReadDWord());
        if (total_ < 0) throw CXException(QZERR_FORMAT); // reaches the program through the library
        return 1;
    }

private:
    int total_ = 0;
};

} // namespace

extern "C" __attribute__((dllexport)) int PackageTally(IQZUnknown* outer, const std::type_info& iid,
                                                       IQZUnknown** out) {
    *out = nullptr;
    if (outer != nullptr) return 0;
    return CQZRef<ITally>::Adopt(new Tally)->QueryInterface(iid, out);
}
