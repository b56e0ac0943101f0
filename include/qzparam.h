/// @file
/// Parameter trees: named, typed values in nested sections.
///
/// **Names** are narrow text, matched by a 32-bit hash over the ASCII-lower-cased bytes (h = h * 257 + signed
/// byte) and by nothing else: case does not matter, and two names of one hash are one entry. Names of one
/// length that differ in up to four adjacent ASCII characters never collide; from five varying characters on
/// ("value00123") some do: nest rather than number.
///
/// **Paths.** In a name given to CreateSubParam, OpenSubParam, GetValue and SetValue the character "\"
/// separates levels. The other operations take a name in this node only.
///
/// **Threads.** A tree is used by one thread at a time.
#pragma once

#include "qzunknown.h"

class CXString;
class IXStream;
struct tagQZVARIANT;

/// A node of a parameter tree. Every IParam* and enumerator that an operation returns carries one reference
/// for the caller. Trees of any depth are built, copied, stored and released without deep recursion.
class IParam : public IQZUnknown {
public:
    /// Creates a child and returns it; one that exists is emptied first. Missing nodes on a path are created,
    /// existing ones are kept. @return null when there is no memory
    virtual IParam* CreateSubParam(const char* name) = 0;

    /// Opens a child. @param create non-zero to create a missing one
    /// @return null when it is missing and create is 0, or there is no memory
    ///
    /// When the first node of a path is missing and create is set, the rest of the path is created right
    /// here, without that first node: "a\b" makes b. Stored settings rely on it.
    virtual IParam* OpenSubParam(const char* name, int create) = 0;

    /// Removes a child and everything under it; who still holds it has an empty node. None is no failure.
    virtual void DeleteSubParam(const char* name) = 0;
    virtual void DeleteAllSubParams() = 0; ///< removes all children

    /// @return the names of the children, first created first in memory. Null when it cannot be made.
    virtual CTEnum<const char*>* EnumSubParams() = 0;

    /// Reads a value. @param name null or empty means the default value "@"
    /// @param out cleared and filled with a copy, which the caller clears; left alone (in memory; other
    ///            backends clear it) when there is no such value
    /// @return 1 when found, else 0
    virtual int GetValue(const char* name, tagQZVARIANT* out) = 0;

    /// Stores a copy of a value, creating the nodes on its path by OpenSubParam(path, 1). Throws
    /// CXMemException when there is no memory; what was stored before is then still there.
    virtual void SetValue(const char* name, const tagQZVARIANT* value) = 0;

    virtual void DeleteValue(const char* name) = 0; ///< none is no failure
    virtual void DeleteAllValues() = 0;             ///< removes all values

    /// @return the names of the values, first stored first in memory. Null when it cannot be made.
    ///
    /// A name that an enumerator handed out stays where it is as long as the enumerator lives; in a tree in
    /// memory also as long as its entry exists, whatever else is stored or deleted. So with EnumSubParams.
    virtual CTEnum<const char*>* EnumValues() = 0;

    virtual void Clear() = 0; ///< removes all values and all children

    virtual ~IParam() = default;
};

/// @return a new, empty tree in memory with one reference for the caller; null when there is no memory. It
///         also answers for IRegisterIface, and through it for every interface registered there.
QZR_API IParam* new_MemParam();

/// Writes a tree in its text form on one line, statements joined by "|". docs/text-form.md describes it.
/// @return 1; 0 when param is null or there is no memory for the text (out is then untouched)
///         Throws CXIFaceException when a node gives no enumerator, CXMemException when there is no memory to
///         walk the tree, and what the tree throws; out is then untouched too.
QZR_API int Param_Param2String(IParam* param, CXString& out);

/// Reads a text form into a tree, adding to what is there. What cannot be understood is left out silently.
/// "#include" opens files as Fio_Open does, by names in the system's code page; those that begin with "." are
/// taken from the current directory.
/// @return 1; 0 when param is null or there is no memory for reading. Throws CXMemException when there is
///         none for a value or the tree gives no node for a section, and what the tree throws. What was read
///         until then is kept in either case.
QZR_API int Param_String2Param(CXString& text, IParam* param);

/// Writes a tree in its binary form at the stream's position. docs/stream-form.md describes it.
/// @return 1; 0 when a CXFileException interrupted the writing. Other exceptions pass.
QZR_API int SaveParamToXStream(IXStream* stream, IParam* param);

/// Empties the tree, then reads the binary form from the stream's position.
/// @return 1, also when the data ends early (what was read is kept); 0 after a CXFileException (the tree is
///         empty then). Other exceptions pass.
QZR_API int LoadParamFromXStream(IXStream* stream, IParam* param);

/// Tells whether b holds everything that a holds: every value, equal, and every child, by the same rule. What
/// only b has does not matter: trees are equal when it holds both ways.
/// @return 1 or 0; 0 when either is null. Throws CXIFaceException when a node of a gives no enumerator.
QZR_API int Param_Cmp(IParam* a, IParam* b);

/// Copies src's children and values into dst, over what is there; nothing of dst is removed. dst may lie
/// below src: nodes made by this call are not copied again.
/// Throws CXIFaceException when a node gives no enumerator, CXMemException when dst gives no node for a
/// child, and what the trees throw; what was copied until then is kept.
QZR_API void Param_CopyTo(IParam* src, IParam* dst);

/// Writes the names of the tree's values and children to the debugger: " %s \n" for a value, "--- %s ---\n"
/// for a child, followed by the child's own. Throws CXIFaceException when a node gives no enumerator.
QZR_API void Dump_Param(IParam* param);

// ----------------------------------------------------------------------------------------- other backends

class IXStorage;

/// Opens an INI file as a live tree: every operation goes straight to the file through the platform's
/// private-profile functions, nothing is cached, and what they cannot do is not reported. Each node is a
/// section. docs/ini-form.md describes the file.
///
/// Where the platform's files differ from other trees: each node lists a value "@" from the start;
/// CreateSubParam does not empty a child that exists; a path names one section, so that the nodes on the way
/// are listed and do not open; a value, a name or a section of more than 32,766 characters is not stored; of
/// a list or a text, 64,000 bytes are read.
/// @param fileName give a full path: the platform takes others to be in the Windows directory
/// @return the root node with one reference; null when there is no memory. The file and its directory are
///         created when missing. Throws CXFileException with QZOP_CREATE_DIRECTORY when that fails.
extern "C" QZR_API IParam* new_IParamIniFile(const wchar_t* fileName);

/// Reads a whole file in the text form into a tree, adding to what is there. Names in "#include" that begin
/// with "." are taken from the file's directory.
/// @return as Param_String2Param. Throws CXFileException when the file does not open.
QZR_API int Param_IniFile2Param(const wchar_t* fileName, IParam* param);

/// Writes a tree into a file in the text form; the file is replaced as a whole, safely.
/// @return 1; 0 when param is null (nothing is written). Throws CXFileException and CXException when the file
///         cannot be written, CXMemException, CXIFaceException when a node gives no enumerator, and what the
///         tree throws; the file is then as it was.
QZR_API int Param_Param2IniFile(IParam* param, const wchar_t* fileName);

/// Opens an existing key below HKEY_CURRENT_USER as a live tree: sub-keys are children, nothing is cached,
/// and what the registry refuses is not reported. docs/registry-form.md describes the layout.
///
/// Names are the registry's: "\" is an ordinary character in a value's name and separates levels in a
/// sub-key's, also in DeleteSubParam; null and empty name the key's default value, and no sub-key. Clear
/// keeps the sub-keys, empty. A name of more than 512 characters ends a list.
/// @return the node with one reference; null when the key does not open (nothing is created)
extern "C" QZR_API IParam* new_IParamCUReg(const wchar_t* subKey);
/// The same below HKEY_LOCAL_MACHINE.
extern "C" QZR_API IParam* new_IParamLMReg(const wchar_t* subKey);

/// Presents a storage as a tree: children are storages, values are streams of one variant each. Query a node
/// for `typeid(IXStorage)` to get its storage. docs/storage-form.md describes the mapping.
/// @param storage gets a reference; committing is its owner's business (Clear alone commits)
/// @return the root node with one reference; null when there is no memory
QZR_API IParam* new_IXStorParam(IXStorage* storage);
