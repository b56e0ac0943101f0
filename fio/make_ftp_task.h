// Conversations in the library's own memory.
#pragma once

#include "core/allocator.h"
#include "fio/ftp_session.h"

#include <utility>

namespace qzr {

// Throws CXMemException.
template <class Task, class... Arguments>
std::shared_ptr<Task> make_ftp_task(Arguments&&... arguments) {
    return std::allocate_shared<Task>(HeapAllocator<Task>(), std::forward<Arguments>(arguments)...);
}

} // namespace qzr
