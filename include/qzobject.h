/// @file
/// Objects by name: the class registry and factory, persistence in streams, the service container.
///
/// **Threads.** The registry takes no lock: registering, unregistering and creating are serialised by the
/// callers. A container is used by one thread at a time.
#pragma once

#include "qzunknown.h"

class IXStream;

// ---------------------------------------------------------------------------------------- class registry

/// An object factory, exported by a module under the name of the object (`extern "C"`).
/// @param outer the controlling object when the new one is to be aggregated, else null
/// @param iid   the interface wanted
/// @param out   receives it with one reference for the caller
/// @return non-zero on success
typedef int (*QZObjectFactory)(IQZUnknown* outer, const std::type_info& iid, IQZUnknown** out);

/// Registers a class whose factory the module file exports under the class's name. The file is looked up
/// now, by the system's standard search order, and loaded when the first object is created; it is never
/// unloaded.
///
/// Names are matched by a 32-bit hash alone (h = h * 257 + signed byte): two names with one hash are one
/// registration. A null name counts as the empty one.
/// @return 1; also 1, changing nothing and without looking at the path, when the name is taken;
///         0 when the file is not found or memory is refused. Throws nothing.
QZR_API int RegisterObject(const char* name, const char* dllpath);

/// Registers a class whose factory a loaded module exports under the class's name.
/// @return 1; also 1, changing nothing, when the name is taken; 0 when there is no such export or memory is
///         refused. Throws nothing.
QZR_API int RegisterObject(const char* name, HINSTANCE module);

/// Takes a registration out. The module stays loaded. @return 1, or 0 when there was none and during unload
QZR_API int UnregisterObject(const char* name);

/// @return 1 when the name is registered, else 0; loads nothing
QZR_API int IsRegisterObject(const char* name);

/// Creates an object of a registered class, loading its module if need be.
/// @param outer the controlling object, or null
/// @param iid   the interface wanted
/// @param out   receives it with one reference for the caller; null on failure. A null out answers 0.
/// @return the factory's result; 0 when the name is unknown, or the module or its export cannot be had (a
///         module whose export was missing once stays without factory: later calls answer 0 too)
/// Throws whatever the factory throws.
QZR_API int CreateObject(const char* name, IQZUnknown* outer, const std::type_info& iid, IQZUnknown** out);

/// The same under a plain name, for callers that bind with GetProcAddress.
extern "C" QZR_API int CreateObjectC(const char* name, IQZUnknown* outer, const std::type_info& iid,
                                     IQZUnknown** out);

/// @cond
extern const char qzr_module_image __asm__("__ImageBase"); // the linker's, where each module's image begins
/// @endcond

/// @return the handle of the module that this call is compiled into: the program or a DLL
inline HINSTANCE QZThisModule() { return reinterpret_cast<HINSTANCE>(const_cast<char*>(&qzr_module_image)); }

/// Registers a class as long as it lives. A module defines one per class with static storage:
/// @code
/// static CQZObjectRegistrar registrar("MyShape", QZThisModule());
/// @endcode
/// Should the name be taken when the module is loaded, because the program registered it by path, say, then
/// that registration stays; but it goes, too, when the module is freed and the registrar ends.
class CQZObjectRegistrar {
public:
    /// @param name   a text that outlives the registrar, such as a literal
    /// @param module the module that exports the factory under that name
    CQZObjectRegistrar(const char* name, HINSTANCE module) : m_pszName(name) { RegisterObject(name, module); }
    ~CQZObjectRegistrar() { UnregisterObject(m_pszName); }
    CQZObjectRegistrar(const CQZObjectRegistrar&) = delete;
    CQZObjectRegistrar& operator=(const CQZObjectRegistrar&) = delete;

private:
    const char* m_pszName;
};

// ------------------------------------------------------------------------------------------- persistence

/// The base of the persistence interfaces; adds nothing.
class IPersistX : public IQZUnknown {
protected:
    ~IPersistX() = default;
};

// The platform's window header makes GetClassName a macro, and with it another function of every class that
// is written below it. So the header is brought in here, where its turn is over before anything of ours or of
// a program's is named, and what the macro stood for becomes functions: programs call them as ever.
/// @cond
#if !defined(NOUSER)
#include <winbase.h>
#include <wingdi.h>
#include <winuser.h>
#undef GetClassName
inline int GetClassName(HWND window, LPSTR name, int size) { return GetClassNameA(window, name, size); }
inline int GetClassName(HWND window, LPWSTR name, int size) { return GetClassNameW(window, name, size); }
#endif
/// @endcond

/// An object that saves itself into a stream.
class IPersistXStream : public IPersistX {
public:
    /// @return the name under which the class is registered, at most 259 bytes, without line feed; it
    ///         belongs to the object
    virtual const char* GetClassName() = 0;
    /// @return the number of bytes that Save will write
    virtual unsigned GetSizeMax() = 0;
    /// Reads the object's data from the current position, exactly as many bytes as Save wrote.
    virtual int Load(IXStream* stream) = 0;
    /// Writes the object's data at the current position.
    virtual int Save(IXStream* stream) = 0;

protected:
    ~IPersistXStream() = default;
};

/// Writes one record: the class name with its terminator, the data's length (32 bits), the data. The stream
/// must be seekable; the length is what Save really wrote. A null object is a single zero byte, and so is one
/// whose class name is empty or null.
/// @return 1. Throws what the stream and the object throw.
QZR_API int WriteObjectToXStream(IXStream* stream, IPersistXStream* obj);

/// Reads one record and creates the object by its class name. When the class is not registered, or cannot be
/// made, a stand-in takes its place that keeps name and bytes and writes them back unchanged (it answers for
/// IPersistX and IPersistXStream).
/// @param out receives the object's IQZUnknown with one reference for the caller, or null
/// @return 1; 0 for the null record
/// Throws CXEofException in a record cut short; CXException QZERR_LENGTH when the data of an unknown class
/// would reach past the end of the stream; and what the class's factory and its Load throw. The object is
/// released then, also one that a factory stored before it threw.
QZR_API int ReadObjectFromXStream(IXStream* stream, IQZUnknown** out);

/// @return the size of the record by what the object says of itself, in bytes; 1 for null
QZR_API unsigned SizeOfObject(IPersistXStream* obj);

/// Steps over one record without creating anything. Not for the null record: its single zero byte is taken
/// for an empty name, and a length is read after it.
/// @return the position at which the record began. Throws CXEofException in a record cut short.
QZR_API unsigned SkipObjectToXStream(IXStream* stream);

// ------------------------------------------------------------------------------------- service container

/// A directory of objects that one part of an application offers to the others. Names are matched by hash
/// alone, as in the class registry. Made by `CreateObject("CLSID_OFSERVICECONTAINER", ...)`.
class IQZServiceContainer : public IQZUnknown {
public:
    /// Makes an enumerator (CTEnum<IQZUnknown*>) of those services that answer for iid, as that interface,
    /// in the order of the map. It must not outlive the container. A fetch that runs off the end starts
    /// over at the next call: fetch one at a time. @return 1, or 0 when it cannot be made
    virtual int EnumServices(const std::type_info& iid, IQZUnknown** out) = 0;
    /// Makes an enumerator (CTEnum<const char*>) of the names; it must not outlive the container.
    virtual int EnumServiceNames(IQZUnknown** out) = 0;
    /// Finds a service. @param out receives it with a reference; null only asks. @return 1 or 0
    virtual int GetService(const char* name, IQZUnknown** out) = 0;
    /// Adds a service and a reference to it, and tells it when it is an IQZServiceSink.
    /// @return 1, or 0 when the name is taken or service is null
    virtual int AddService(const char* name, IQZUnknown* service) = 0;
    /// Removes a service and tells it when it is an IQZServiceSink. @return 1, or 0 when there is none
    ///
    /// This call, AddService and RemoveAllServices hold a reference on the container until they return, so a
    /// sink may give up the last one of others. The container's own end releases the services untold; while
    /// it goes on, the container answers them as an empty one.
    virtual int RemoveService(const char* name) = 0;
    /// Tells every service that is a sink, then removes them all.
    virtual void RemoveAllServices() = 0;

protected:
    ~IQZServiceContainer() = default;
};

/// A service that wants to know when it joins or leaves a container (told once per name).
class IQZServiceSink : public IQZUnknown {
public:
    virtual void OnServiceAdded(IQZServiceContainer* container) = 0;   ///< it is in the container now
    virtual void OnServiceRemoved(IQZServiceContainer* container) = 0; ///< it is no longer

protected:
    ~IQZServiceSink() = default;
};

/// The factory of the service container, registered by the library under this very name.
/// @return 0 when outer is given and iid is not IQZUnknown (*out is null then)
extern "C" QZR_API int CLSID_OFSERVICECONTAINER(IQZUnknown* outer, const std::type_info& iid,
                                                IQZUnknown** out);
