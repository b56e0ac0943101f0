// The kinds of stored trees: one table, with a row for each.
#pragma once

#include "formats/address.h"
#include "formats/limits.h"
#include "system/diagnostics.h"
#include "trees/edit.h"

#include <span>
#include <string>
#include <string_view>

namespace tool {

struct LoadOptions {
    bool salvage = false; // use what can be read of damaged data
};

struct SaveOptions {
    bool compact = false; // for files that people read: as the library writes it, without line breaks
};

/// What an address of a kind names.
enum class Place { file, file_or_standard, storage, registry };

struct Kind {
    const char* name;
    const char* argument; // for people: what follows the colon
    Place place;
    const char* extensions; // with their dots, parted by blanks
    const char* description;
    Form form;
    bool keeps_other_contents; // a tree that is saved replaces only a part of the file

    /// @return whether the contents of a file look like this kind; null for a kind that is always named
    bool (*recognises)(std::string_view bytes);

    /// Reads a whole tree. What the reader cannot use is told to the diagnostics; what makes the whole
    /// useless fails.
    CQZRef<IParam> (*load)(const Address& address, const LoadOptions& options, Diagnostics& diagnostics);

    /// Writes a whole tree, or leaves what is there as it was.
    void (*save)(const Address& address, IParam& tree, const SaveOptions& options);

    /// @return the tree that a reader would find after save
    CQZRef<IParam> (*rehearse)(IParam& tree, const SaveOptions& options);

    /// Changes one entry where it is kept and leaves everything else alone, or leaves what is there as it
    /// was. Fails when the kind cannot hold the value.
    void (*edit)(const Address& address, IParam& loaded, const Edit& edit);
};

/// All kinds.
std::span<const Kind* const> kinds();
const Kind* kind_named(std::string_view name); // null when there is none
const Kind*
kind_with_extension(std::string_view extension);      // in lower case, with its dot; null when there is none
const Kind* kind_of_contents(std::string_view bytes); // null for no bytes at all
std::string kind_names();                             // parted by commas

/// Reads the tree at an address; under --strict, warnings end the command here.
CQZRef<IParam> load_tree(const Address& address, const LoadOptions& options, Diagnostics& diagnostics);

struct Losses {
    static constexpr std::size_t kMostTexts = 100;
    std::size_t count = 0; // of entries
    std::vector<std::string>
        texts; // each names an entry and says why it is not held; no more than kMostTexts
};

/// What would be different after saving the tree as this kind and reading it back.
Losses losses(const Kind& kind, IParam& tree, const SaveOptions& options);

/// Fails when the address's kind cannot hold the value that an edit sets.
void refuse_lost_value(const Address& address, const Edit& edit);

/// For kinds that are rewritten as a whole: makes the change, proves in memory that it reads back, and saves.
void edit_by_rewriting(const Address& address, IParam& loaded, const Edit& edit);

extern const Kind kTextKind;
extern const Kind kStreamKind;
extern const Kind kIniKind;
extern const Kind kLiveKind;
extern const Kind kStorageKind;
extern const Kind kRegistryKind;

} // namespace tool
