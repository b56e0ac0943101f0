#include "fio/file_state.h"
#include "qzfile.h"

void Fio_LockFile(const wchar_t* path, bool exclusive) { qzr::file_state().locks.lock(path, exclusive); }

void Fio_UnlockFile(const wchar_t* path, bool exclusive) { qzr::file_state().locks.unlock(path, exclusive); }

int Fio_LockCount(const wchar_t* path, bool exclusive) {
    return static_cast<int>(qzr::file_state().locks.count(path, exclusive));
}

void Fio_ChangeNELock(const wchar_t* path, bool release) {
    qzr::LockRegistry& locks = qzr::file_state().locks;
    release ? locks.let_go(path) : locks.take_back(path);
}

int Fio_EnableLocking(int on) { return qzr::file_state().locks.set_enabled(on); }
