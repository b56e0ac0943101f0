/// @file
/// User-interface support and translation: dictionaries, translated texts, menus and windows, hooks on the
/// loading of resources.
///
/// A **dictionary** pairs texts with their translations; docs/dictionaries.md describes the file. One
/// dictionary per process grows with every file that is loaded and never shrinks.
///
/// **Keys** are the source texts as wide text, told apart by a 32-bit hash over their units (h = h * 257 +
/// unit) and by nothing else: of two texts with one hash the first loaded answers for both.
///
/// **Threads.** Nothing here is locked. Load dictionaries and install hooks on one thread during start-up;
/// after that any thread may translate, except that Supp_Translate(const char*) may add an entry and then
/// needs the dictionary to itself.
#pragma once

#include "qzexport.h"

// ------------------------------------------------------------------------------------------- dictionaries

/// Loads the process's dictionary and its companion file (the same path with the extension "dlg"), then hooks
/// the class-library modules that are loaded. Only the first success counts: after that the file is not
/// looked at.
/// @param path null means "app.wld"; a relative one starts from the current directory
/// @return 1; 0 when a dictionary was loaded before, or when either file cannot be read: entries read until
///         then stay, no hook is installed, and a later call may try again. Throws CXMemException.
QZR_API int Supp_Init(const wchar_t* path);

/// Adds a dictionary, with its companion file, to what is loaded; a text that is there already keeps its
/// translation. The first dictionary of the process is loaded as by Supp_Init.
/// @return 1; 0 when either file cannot be read: entries read until then stay. Throws CXMemException.
QZR_API int Supp_AddWld(const wchar_t* path);

/// @return the code page of the loaded dictionary, in which narrow text is turned into wide text; 0 stands
///         for the system's ANSI code page and is the answer while no dictionary has named a language, and
///         after one has named a language without such a page
QZR_API unsigned long Supp_GetACP();

/// The switch of the hooks, 1 at first: with 0 they do nothing but call what they replaced. Supp_Translate
/// does not ask it.
QZR_API int Supp_IsTranslationEnable();
QZR_API void Supp_SetTranslationEnable(int enable); ///< the value is kept as it is given

// -------------------------------------------------------------------------------------------- translation
//
// Translations that these return live as long as the library is loaded. An entry whose translation is empty,
// or cannot be converted, translates to its own source text.

/// @return the translation; text itself when there is none; null for a null or empty text
QZR_API const wchar_t* Supp_Translate(const wchar_t* text);

/// Translates a text in a context: the entry of context and text joined, or else that of the text alone.
/// @param context null counts as empty
/// @return the translation; text itself when there is none; null for a null or empty text
QZR_API const wchar_t* Supp_Translate(const wchar_t* text, const wchar_t* context);

/// Translates narrow text of the dictionary's code page. A text without an entry gets one that translates it
/// to itself, so the result stays valid; that entry also wins over dictionaries loaded later.
/// @return the translation; null for a null or empty text. Throws CXMemException.
QZR_API const wchar_t* Supp_Translate(const char* text);

/// Writes every item of a menu that has a text, and those of its sub-menus, back with that text, its command
/// and its grayed and checked states. The texts themselves are not translated: menus get their translations
/// from the hooked loaders. Texts are cut at 255 units; all other states and kinds of items, as the default
/// mark and owner drawing, are lost. An empty dictionary leaves the menu alone. Sub-menus more than 64 levels
/// deep are left alone.
/// @return 1
QZR_API int Supp_Translate(HMENU menu);

/// Replaces the text of a window or control by its translation; both are cut at 1023 units. The text is set
/// in every case, so the window hears of it; an empty dictionary leaves the window alone.
/// @return 1
QZR_API int Supp_Translate(HWND window);

// ------------------------------------------------------------------------------------------ dialogs' fonts

/// @return the font for windows with translated texts: on systems with double-byte characters the system's
///         font for user interfaces, which is not to be deleted; null on all others. Dialogs of templates
///         keep the font that their template names.
QZR_API HFONT Supp_GetFont();

QZR_API void Supp_SetDialogFont(HWND dialog); ///< does nothing; kept so that callers link
QZR_API void Supp_SetDialogPos(HWND dialog, HWND parent, unsigned id); ///< does nothing, as above

// -------------------------------------------------------------------------------------------------- hooks

/// Hooks one module more: its calls that load strings, menus and dialogs and that show message boxes are
/// translated from then on, as soon as a dictionary is loaded.
/// @return 1, also when the module calls none of them or its image is damaged; 0 for null. Throws
///         CXMemException.
QZR_API int Supp_InitResTranslation(HINSTANCE module);
QZR_API int _InitResTranslation(HINSTANCE module); ///< the same

/// Takes the hooks out of one module, those of HookProc_Install too. What somebody else has redirected since
/// stays with him. At unload the library does this for every module.
/// @return 1; 0 for null
QZR_API int _DeInitResTranslation(HINSTANCE module);

/// Redirects a module's calls of one imported function, for hooks of the application's own.
/// @param module   whose import table is changed
/// @param exporter the name of the loaded module that has the function
/// @return the function's own address, for the replacement to call. Null when the exporter is not loaded or
///         lacks the function, when the module's image is damaged, or when a slot of its table cannot be
///         written; slots before that one are redirected then. Of a null module the address of a function
///         that does nothing. Throws CXMemException.
QZR_API void* HookProc_Install(HINSTANCE module, const char* exporter, const char* function,
                               void* replacement);

/// Restores nothing; kept so that callers link.
/// @return null
QZR_API void* HookProc_UnInstall(HINSTANCE module, const char* exporter, const char* function);

/// Loads a string resource without translation.
/// @param size in bytes
/// @return the bytes copied, the zero not counted; 0 when there is no such string
QZR_API int _LoadStringNotTrans(HINSTANCE module, unsigned id, char* buffer, int size);
/// The same for wide text.
/// @param size in units
QZR_API int LoadStringNotTransW(HINSTANCE module, unsigned id, wchar_t* buffer, int size);

/// Shows a message box without translation.
/// @param parameters a MSGBOXPARAMSA; with wide a MSGBOXPARAMSW
/// @return what the message box answers
QZR_API int MessageBoxInternalA(void* parameters, int wide);
