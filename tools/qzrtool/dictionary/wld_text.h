// Texts of dictionaries: code pages, escapes, hashes.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace tool {

/// A code page, and which bytes begin a double-byte character in it.
class CodePage {
public:
    /// @param number 0 stands for the system's. Fails when the system does not have it.
    explicit CodePage(unsigned number);

    unsigned number() const { return number_; }

    /// @return the number of bytes of the character at the start of a text that is not empty
    std::size_t character_size(std::string_view text) const;

    /// @return nothing when bytes are no characters
    std::optional<std::wstring> decode(std::string_view bytes) const;

    /// As decode, with replacement characters in the place of what is none.
    std::wstring decode_anyway(std::string_view bytes) const;

    /// @return nothing when a character has no place in the code page
    std::optional<std::string> encode(std::wstring_view text) const;

private:
    unsigned number_;
    std::array<bool, 256> leads_{};
};

/// @return the ANSI code page of a locale identifier; nothing when the system does not know it
std::optional<unsigned> code_page_of_language(unsigned language);

/// What the library makes of an entry's bytes.
std::string unescaped(std::string_view bytes, const CodePage& page);

/// @return the text as an entry's bytes; nothing when the file cannot hold it: characters without a place in
/// the code page, or backslashes where they would be taken for escapes
std::optional<std::string> escaped(std::wstring_view text, const CodePage& page);

/// The hash by which the library finds texts.
unsigned hash_of(std::wstring_view text);

/// A key of a dictionary, taken apart. The context ends in two letters, U+044D each, or is empty.
struct Key {
    std::wstring_view context;
    std::wstring_view text;
};
Key take_apart(std::wstring_view key);

/// Whether a source begins with a context as code page 1251 has it: at least two marks, then the two letters.
bool begins_with_context(std::string_view source);

inline constexpr unsigned kPageOfContexts = 1251; // has the letters that end contexts
inline constexpr std::wstring_view kContextEnd = L"\x044D\x044D";
inline constexpr char kLanguageKey[] = "QZ_WLD_LANG_ID";

} // namespace tool
