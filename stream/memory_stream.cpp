// CMemStream: a growable stream in process memory.
#include "qzref.h"
#include "stream/line_run.h"
#include "stream/memory_block.h"
#include "stream/progress.h"
#include "stream/seek.h"
#include "stream/stream_slots.h"

#include <algorithm>
#include <new>

namespace qzr {

class CMemStream final : public StreamSlots<CMemStream>, public IMemBlock {
public:
    static constexpr WideTextCount kWideTextCount = WideTextCount::kFirstHalf;

    explicit CMemStream(QZRFC::IProgress* sink) : sink_(CQZRef<QZRFC::IProgress>::Share(sink)) {}

    unsigned AddRef() override { return InternalAddRef(); }
    unsigned Release() override { return InternalRelease(); }
    int QueryInterface(const std::type_info& iid, IQZUnknown** out) override {
        return InternalQueryInterface(iid, out);
    }
    int InternalQueryInterface(const std::type_info& iid, IQZUnknown** out) override {
        if (CQZUnknownImpl::InternalQueryInterface(iid, out) != 0) return 1;
        return AnswerQuery(iid == typeid(IMemBlock) ? static_cast<IMemBlock*>(this) : nullptr, out);
    }

    unsigned Read(void* buffer, unsigned count) override {
        if (at_end()) return 0;
        unsigned n = count;
        if (count <= block_.size() - position_) { // a size known to the caller is known here, once inlined
            if (count != 0) std::memmove(buffer, block_.data() + position_, count);
        } else {
            n = block_.size() - position_;
            std::memmove(buffer, block_.data() + position_, n);
        }
        position_ += n;
        check_progress(sink_.Get());
        return n;
    }

    int Write(const void* buffer, unsigned count) override {
        block_.store(position_, buffer, count);
        position_ += count;
        check_progress(sink_.Get());
        return static_cast<int>(count);
    }

    unsigned Seek(int offset, unsigned origin) override {
        return position_ = seek_within(*this, offset, origin);
    }
    unsigned GetPosition() override { return position_; }
    unsigned GetSize() override { return block_.size(); } // of the stream and of the block
    const wchar_t* GetName() override { return L"Memory stream"; }

    int ReadLineW(wchar_t* buffer, int max) override {
        return read_stream_line(*this, buffer, max, take_line_run(buffer, max));
    }
    int ReadLine(char* buffer, int max) override {
        return read_stream_line(*this, buffer, max, take_line_run(buffer, max));
    }

    void* GetData() override { return block_.data(); }
    void SetData(const void* data, unsigned length) override { block_.replace(data, length); }

private:
    // Positions and sizes count as signed numbers: from a position below 2 GiB a stream of 2 GiB and more has
    // nothing to read. SetData may have left the position beyond the end.
    bool at_end() const {
        const unsigned size = block_.size();
        return static_cast<int>(position_) >= static_cast<int>(size) || position_ >= size;
    }

    // Reads in one go what can be read before a line ends. A sink is to be asked after every character, so
    // with one nothing is read ahead. @return the number of characters
    template <class Char>
    std::int64_t take_line_run(Char* buffer, int max) {
        if (sink_ || max <= 0 || at_end()) return 0;
        const std::size_t left = (block_.size() - position_) / sizeof(Char);
        const unsigned char* from = block_.data() + position_;
        const std::size_t run =
            line_run<Char, Char(0), Char(10)>(from, std::min(left, static_cast<std::size_t>(max)));
        std::memcpy(buffer, from, run * sizeof(Char));
        position_ += static_cast<unsigned>(run * sizeof(Char));
        return static_cast<std::int64_t>(run);
    }

    MemoryBlock block_;
    unsigned position_ = 0;
    CQZRef<QZRFC::IProgress> sink_; // null for most; declared last, so released first
};

} // namespace qzr

IXStream* new_StreamOnMemory() { return new_StreamOnMemory(nullptr); }

IXStream* new_StreamOnMemory(QZRFC::IProgress* progress) {
    return new (std::nothrow) qzr::CMemStream(progress);
}
