/// @file
/// Critical sections, events, threads, and the library-wide wait.
///
/// **The system mutex.** Every critical section, on every lock, first takes one named mutex of the system,
/// shared by all processes of the log-on session that use this library; Wait_All takes the same one. It
/// exists as long as any critical section of the process does. docs/locking.md tells what that costs.
///
/// **Threads.** Locking, setting and waiting are for any thread. Creating and releasing these objects is for
/// one thread at a time: the counts are plain integers.
#pragma once

#include "qzunknown.h"

/// Results of IEvent::Wait and Wait_All.
enum QZWaitResult {
    QZWAIT_SIGNALLED = 1, ///< also when the wait itself failed
    QZWAIT_TIMEOUT = 2,
    QZWAIT_ABANDONED = 3, ///< the owner ended without letting go; the caller owns it now
};

/// A critical section. QueryInterface answers 0 to everything, IQZUnknown included.
class ICritSect : public IQZUnknown {
public:
    /// Takes the system mutex, then the section; waits for ever. The owner may lock again.
    virtual void Lock() = 0;
    /// Gives back one Lock, in the opposite order.
    virtual void Unlock() = 0;

protected:
    ~ICritSect() = default;
};

/// An event that resets itself when a wait ends. QueryInterface answers 0 to everything.
class IEvent : public IQZUnknown {
public:
    virtual int Set() = 0;   ///< @return non-zero on success
    virtual int Reset() = 0; ///< @return non-zero on success
    /// @param timeout milliseconds; 0xFFFFFFFF waits for ever. @return one of QZWaitResult
    virtual int Wait(unsigned timeout) = 0;

protected:
    ~IEvent() = default;
};

/// @return a new critical section with one reference for the caller; null when memory is refused. The system
///         mutex is then taken into use even so, and stays so for the life of the process: Wait_All waits
///         for it from then on.
QZR_API ICritSect* CriticalSection_New();

/// Builds a critical section in memory of the caller's. The memory must come from
/// Mem_DefaultHeap(0)->Alloc: the last Release frees it there.
/// @param memory null only asks for the size
/// @param size   receives the bytes needed when memory is null; may be null
/// @return the section with one reference; null when memory is null
QZR_API ICritSect* _CriticalSection_New_For_Core(void* memory, int* size);

/// @param initialState non-zero for an event that starts signalled
/// @return a new event with one reference for the caller; null when memory for it is refused. Throws
///         CXMemException when the system has no event.
QZR_API IEvent* Event_New(int initialState);

/// Starts a thread and waits, one second at most, until it says that it runs: it builds the event name with
/// QZCreateObjName(name, buffer, 0), opens that event and sets it. A thread that does not makes the caller
/// wait the whole second.
/// @param name a key: its address, not its text, makes the event's name
/// @param id   receives the thread's id; may be null
/// @return the thread's handle, which the caller closes; null when there is no thread
QZR_API void* QZCreateThread(const char* name, unsigned (*proc)(void*), void* arg, unsigned long* id);

/// Writes the name of the start event: the low 32 bits of name's address in decimal, followed by the process
/// id in decimal. It is the same for every thread of the process.
/// @param buffer room for 22 characters
/// @param id     not looked at
QZR_API void QZCreateObjName(const char* name, char* buffer, unsigned long id);

/// Takes the system mutex: until Wait_Release no other thread enters any critical section.
/// @param timeout milliseconds; -1 waits for ever
/// @return one of QZWaitResult; QZWAIT_SIGNALLED at once when no critical section is alive
QZR_API int Wait_All(int timeout);

/// Gives the system mutex back once, if it exists. Pairs with a successful Wait_All.
QZR_API void Wait_Release();
