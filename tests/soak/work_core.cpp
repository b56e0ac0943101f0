// Sections, events, heaps, objects.
#include "qzexception.h"
#include "qzheap.h"
#include "qzobject.h"
#include "qzref.h"
#include "qzstream.h"
#include "qzsync.h"
#include "soak/refusal.h"
#include "soak/work.h"

#include <cstring>
#include <vector>

#include <windows.h>

namespace {

// The section excludes all other threads, or the shared count comes out wrong.
void count_under_section(Work& work) {
    const unsigned times = 1 + static_cast<unsigned>(work.random.below(20));
    for (unsigned i = 0; i < times; ++i) {
        work.shared.section->Lock();
        work.shared.section->Lock(); // again
        const unsigned long long before = work.shared.counted;
        SwitchToThread();
        work.shared.counted = before + 1;
        work.shared.section->Unlock();
        work.shared.section->Unlock();
    }
    work.shared.expected += times;
}

CQZRef<IQZUnknown> new_container() {
    CQZRef<IQZUnknown> object;
    CreateObject("CLSID_OFSERVICECONTAINER", nullptr, typeid(IQZServiceContainer), object.Put());
    return object;
}

// A record of a class that nobody registered comes back byte for byte.
void through_stand_in(Work& work) {
    const std::string bytes(work.random.below(3000), 's');
    const auto stream = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
    stream->WriteString("soak.NoSuchClass");
    stream->WriteDWord(static_cast<unsigned>(bytes.size()));
    stream->Write(bytes.data(), static_cast<unsigned>(bytes.size()));
    CQZRef<IQZUnknown> object;
    for (bool read = false; !read;) {
        stream->Seek(0, 0);
        try {
            const Refusing refusing(work.refusal_random, work.refusals);
            read = ReadObjectFromXStream(stream.Get(), object.Put()) == 1;
        } catch (const CXMemException&) {
        }
    }
    const auto copy = CQZRef<IXStream>::Adopt(new_StreamOnMemory());
    WriteObjectToXStream(copy.Get(), CQZRef<IPersistXStream>::Require(object.Get()).Get());
    const auto before = CQZRef<IMemBlock>::Require(stream.Get()),
               after = CQZRef<IMemBlock>::Require(copy.Get());
    work.require(before->GetSize() == after->GetSize() &&
                     std::memcmp(before->GetData(), after->GetData(), after->GetSize()) == 0,
                 "a record changed on its way");
}

} // namespace

void work_sections(Work& work) {
    count_under_section(work);
    const std::lock_guard guard(work.shared.one_thread); // creating and releasing is for one thread
    {
        const auto own = CQZRef<ICritSect>::Adopt(CriticalSection_New());
        own->Lock();
        own->Unlock();
        work.require(Wait_All(-1) == QZWAIT_SIGNALLED, "the wait for all did not end well");
        Wait_Release();
    }
    const auto event = CQZRef<IEvent>::Adopt(Event_New(1));
    work.require(event->Wait(0) == QZWAIT_SIGNALLED, "the event was not set");
    work.require(event->Wait(0) == QZWAIT_TIMEOUT, "the event did not reset itself");
}

void work_heaps(Work& work) {
    const auto heap = CQZRef<IHeap>::Adopt(new_MemoryHeap(work.random.below(100000)));
    std::vector<std::pair<unsigned char*, std::size_t>> blocks;
    for (int i = 0; i < 300; ++i) {
        const std::size_t size = work.random.below(work.random.one_in(20) ? 70000 : 400);
        const auto fill = static_cast<unsigned char>(i);
        void* block = nullptr;
        try {
            const Refusing refusing(work.refusal_random, work.refusals);
            block = heap->Alloc(size);
        } catch (const CXMemException&) {
            continue;
        }
        std::memset(block, fill, size);
        blocks.emplace_back(static_cast<unsigned char*>(block), size);
        auto& [bytes, length] = blocks[work.random.below(blocks.size())];
        const unsigned char first = length != 0 ? bytes[0] : 0;
        try {
            const Refusing refusing(work.refusal_random, work.refusals);
            bytes = static_cast<unsigned char*>(heap->Realloc(bytes, length + 64));
            length += 64;
        } catch (const CXMemException&) {
        }
        work.require(length <= 64 || bytes[0] == first, "a block lost its bytes");
        work.require(heap->GetSize(bytes) == static_cast<int>(length), "a block has another size");
    }
    for (std::size_t i = 0; i < blocks.size(); i += 2) // the heap frees the others
        work.require(heap->Free(blocks[i].first) != 0, "a block cannot be freed");
}

void work_objects(Work& work) {
    const std::lock_guard guard(work.shared.one_thread); // creating by name is for one thread
    through_stand_in(work);
    const auto container = CQZRef<IQZServiceContainer>::Require(new_container().Get());
    std::size_t added = 0;
    for (int i = 0; i < 50; ++i) {
        const auto service = new_container();
        const std::string name = "s" + std::to_string(work.random.below(40));
        const bool known = container->GetService(name.c_str(), nullptr) != 0;
        work.require((container->AddService(name.c_str(), service.Get()) != 0) == !known,
                     "a service not added");
        added += known ? 0 : 1;
        if (work.random.one_in(3)) added -= container->RemoveService(name.c_str()) != 0 ? 1 : 0;
    }
    CQZRef<IQZUnknown> object;
    work.require(container->EnumServiceNames(object.Put()) == 1, "no names");
    const auto names = CQZRef<CTEnum<const char*>>::Require(object.Get());
    std::size_t listed = 0;
    for (const char* name = nullptr; names->Next(1, &name, nullptr) != 0;)
        ++listed;
    work.require(listed == added, "another number of services");
    if (work.random.one_in(2)) container->RemoveAllServices();
}
