// The commands on dictionaries.
#include "cli/json.h"
#include "cli/progress.h"
#include "commands/commands.h"
#include "dictionary/wld_check.h"
#include "dictionary/wld_po.h"
#include "dictionary/wld_resources.h"
#include "qzsupp.h"
#include "system/encoding.h"
#include "system/files.h"

#include <algorithm>
#include <iterator>
#include <unordered_set>

namespace tool {

namespace {

namespace fs = std::filesystem;

WldFile open_dictionary(Invocation& invocation, const std::wstring& argument) {
    return {argument, invocation.options.code_page};
}

// --- files that are written

struct Target {
    explicit Target(const std::wstring& argument)
        : path(fs::absolute(native_path(argument))), shown(printable(utf8(argument))) {}

    fs::path path;
    std::string shown;
};

// A dictionary holds work; a skeleton must not replace it.
Target new_target(const std::wstring& argument) {
    Target target(argument);
    std::error_code ignored;
    if (fs::exists(target.path, ignored))
        fail(target.shown + ": exists already; write into another file and use qzrtool wld merge");
    return target;
}

// The page that a new file is written in.
CodePage new_page(const Options& options, unsigned otherwise) {
    if (options.code_page != 0) return CodePage(options.code_page);
    if (options.language == 0) return CodePage(otherwise);
    const auto page = code_page_of_language(options.language);
    if (!page) fail(std::to_string(options.language) + " is no language that the system knows");
    return CodePage(*page);
}

// The pairs of a new dictionary, as lines. What the file cannot hold is told and left out.
class NewPairs {
public:
    NewPairs(const CodePage& page, const std::string& shown, Diagnostics& diagnostics)
        : page_(page), shown_(shown), diagnostics_(diagnostics) {}

    void add_language(unsigned language) { lines_ += wld_lines_of(kLanguageKey, std::to_string(language)); }

    // @return false for a source whose hash was there already, and for what the file cannot hold
    bool add(const std::wstring& source, const std::wstring& translation) {
        const auto raw_source = escaped(source, page_);
        const auto raw_translation = escaped(translation, page_);
        if (!raw_source || !raw_translation) {
            diagnostics_.warn(shown_, "left out, as code page " + std::to_string(page_.number()) +
                                          " or the escapes cannot hold it: " + printable(utf8(source)));
            complete_ = false;
            return false;
        }
        if (!known_.insert(hash_of(source)).second) return false;
        lines_ += wld_lines_of(*raw_source, *raw_translation);
        ++count_;
        return true;
    }
    void know(const std::wstring& source) { known_.insert(hash_of(source)); }

    const std::string& lines() const { return lines_; }
    std::size_t count() const { return count_; }
    bool complete() const { return complete_; }

private:
    const CodePage& page_;
    const std::string& shown_;
    Diagnostics& diagnostics_;
    std::unordered_set<unsigned> known_;
    std::string lines_;
    std::size_t count_ = 0;
    bool complete_ = true;
};

std::wstring wide(const std::string& utf8_text, const std::string& place) {
    static constexpr unsigned kUtf8 = 65001;
    const auto text = CodePage(kUtf8).decode(utf8_text);
    if (!text) fail(place + ": is not UTF-8");
    return *text;
}

std::string counted(std::size_t n, const char* what) {
    return std::to_string(n) + " " + what + (n == 1 ? "" : "s");
}

unsigned long long size_of(const std::wstring& file) {
    std::error_code error;
    const auto size = fs::file_size(native_path(file), error);
    return error ? 0 : size;
}

CQZRef<Progress> progress_over(Invocation& invocation, const char* what,
                               std::span<const std::wstring> files) {
    unsigned long long total = 0;
    for (const std::wstring& file : files)
        total += size_of(file);
    auto progress = make_progress(invocation.options.progress, what);
    progress->begin(total);
    return progress;
}

void finish(Progress& progress, const std::wstring& file) {
    progress.advance(size_of(file));
    progress.check();
}

std::vector<ResourceText> texts_of(Invocation& invocation, std::span<const std::wstring> modules) {
    std::vector<ResourceText> all;
    const auto progress = progress_over(invocation, "reading", modules);
    for (const std::wstring& module : modules) {
        const auto warn = [&](const std::string& text) {
            invocation.diagnostics.warn(printable(utf8(module)), text);
        };
        auto texts = texts_of_module(module, warn);
        std::move(texts.begin(), texts.end(), std::back_inserter(all));
        finish(*progress, module);
    }
    return all;
}

std::unordered_set<unsigned> hashes_of(const WldFile& file) {
    std::unordered_set<unsigned> hashes;
    for (const WldPair& pair : file.pairs())
        hashes.insert(hash_of(file.source(pair)));
    return hashes;
}

} // namespace

ExitCode run_wld_check(Invocation& invocation) {
    std::size_t problems = 0;
    const auto progress = progress_over(invocation, "checking", invocation.arguments);
    for (const std::wstring& argument : invocation.arguments) {
        const WldFile file = open_dictionary(invocation, argument);
        check_dictionary(file, [&](unsigned line, const std::string& problem) {
            ++problems;
            invocation.out.write((line != 0 ? file.place(line) : file.shown()) + ": " + problem + "\n");
        });
        finish(*progress, argument);
    }
    return problems == 0 ? kOk : kNo;
}

ExitCode run_wld_extract(Invocation& invocation) {
    const std::span<const std::wstring> arguments = invocation.arguments;
    const Target target = new_target(arguments.back());
    const CodePage page = new_page(invocation.options, kPageOfContexts);
    NewPairs pairs(page, target.shown, invocation.diagnostics);
    if (invocation.options.language != 0) pairs.add_language(invocation.options.language);
    for (const ResourceText& text : texts_of(invocation, arguments.first(arguments.size() - 1)))
        pairs.add(invocation.options.plain ? text.text : text.context + text.text, text.text);
    invocation.diagnostics.stop_if_strict();
    replace_file(target.path, pairs.lines(), target.shown);
    invocation.out.write(target.shown + ": " + counted(pairs.count(), "text") + "\n");
    return pairs.complete() ? kOk : kNo;
}

ExitCode run_wld_missing(Invocation& invocation) {
    const std::span<const std::wstring> arguments = invocation.arguments;
    const WldFile file = open_dictionary(invocation, arguments[0]);
    std::unordered_set<unsigned> known = hashes_of(file);
    bool complete = true;
    for (const ResourceText& text : texts_of(invocation, arguments.subspan(1))) {
        const unsigned with_context = hash_of(text.context + text.text);
        if (known.count(hash_of(text.text)) != 0 || !known.insert(with_context).second) continue;
        complete = false;
        invocation.out.write(printable(utf8(text.context)) + "  " + printable(utf8(text.text)) + "\n");
    }
    return complete ? kOk : kNo;
}

ExitCode run_wld_merge(Invocation& invocation) {
    const std::span<const std::wstring> arguments = invocation.arguments;
    const WldFile target = open_dictionary(invocation, arguments[0]);
    if (!target.pairs().empty() && target.pairs().back().translation_line == 0)
        fail(target.place(target.pairs().back().line) +
             ": has no translation line; what follows would shift");
    NewPairs added(target.page(), target.shown(), invocation.diagnostics);
    for (const WldPair& pair : target.pairs())
        added.know(target.source(pair));
    const auto progress = progress_over(invocation, "merging", arguments.subspan(1));
    for (const std::wstring& argument : arguments.subspan(1)) {
        const WldFile source = open_dictionary(invocation, argument);
        for (const WldPair& pair : source.pairs()) {
            const bool other_language = pair.is_language() && language_of(target.pairs()).has_value();
            if (!other_language && pair.translation_line != 0)
                added.add(source.source(pair), source.translation(pair));
        }
        finish(*progress, argument);
    }
    invocation.diagnostics.stop_if_strict();
    if (added.count() != 0) {
        const bool open_end = !target.bytes().empty() && target.bytes().back() != '\n';
        replace_file(target.path(), target.bytes() + (open_end ? "\r\n" : "") + added.lines(),
                     target.shown());
    }
    invocation.out.write(target.shown() + ": " + counted(added.count(), "pair") + " added\n");
    return added.complete() ? kOk : kNo;
}

ExitCode run_wld_stats(Invocation& invocation) {
    const WldFile file = open_dictionary(invocation, invocation.arguments[0]);
    const auto language = language_of(file.pairs());
    std::size_t contexts = 0, untranslated = 0, longest = 0;
    for (const WldPair& pair : file.pairs()) {
        const std::wstring source = file.source(pair);
        const std::wstring translation = file.translation(pair);
        const Key key = take_apart(source);
        contexts += !key.context.empty();
        untranslated += translation.empty() || translation == key.text;
        longest = std::max(longest, translation.size());
    }
    const struct {
        const char* name;
        std::size_t value;
    } rows[] = {
        {"lines", file.lines().size()},
        {"pairs", file.pairs().size()},
        {"entries", hashes_of(file).size()}, // what is left of the pairs after loading
        {"with context", contexts},
        {"untranslated", untranslated}, // empty, or the same as the source
        {"longest translation", longest},
        {"language", language.value_or(0)},
        {"code page", file.page().number()},
    };
    if (!invocation.options.json) {
        for (const auto& row : rows)
            invocation.out.write(row.name + (": " + std::to_string(row.value)) + "\n");
        return kOk;
    }
    JsonWriter json(invocation.out);
    json.begin_object();
    for (const auto& row : rows) {
        json.key(row.name);
        json.raw(std::to_string(row.value));
    }
    json.end_object();
    json.finish();
    return kOk;
}

ExitCode run_wld_lookup(Invocation& invocation) {
    const Target file(invocation.arguments[0]);
    read_file(file.path, file.shown); // fails with a reason
    // A missing companion file makes the call fail, but not the look-up.
    Supp_AddWld(file.path.c_str());
    const std::wstring& text = invocation.arguments[1];
    std::wstring context = invocation.arguments.size() > 2 ? invocation.arguments[2] : std::wstring();
    if (std::count(context.begin(), context.end(), L'#') >= 2 && !context.ends_with(kContextEnd))
        context += kContextEnd;
    const wchar_t* const translation = Supp_Translate(text.c_str(), context.c_str());
    if (translation == nullptr || translation == text.c_str()) {
        print_error(file.shown + ": there is no entry for " + printable(utf8(text)));
        return kNo;
    }
    invocation.out.write(utf8(std::wstring_view(translation)) + "\n");
    return kOk;
}

ExitCode run_wld_export(Invocation& invocation) {
    const WldFile file = open_dictionary(invocation, invocation.arguments[0]);
    const Target target(invocation.arguments[1]);
    PoFile po;
    po.language = language_of(file.pairs());
    std::unordered_set<unsigned> known;
    for (const WldPair& pair : file.pairs()) {
        const std::wstring source = file.source(pair);
        if (pair.is_language() || !known.insert(hash_of(source)).second) continue;
        const Key key = take_apart(source);
        PoEntry entry;
        if (!key.context.empty()) entry.context = utf8(key.context);
        entry.source = utf8(key.text);
        const std::wstring translation = file.translation(pair);
        if (translation != key.text) entry.translation = utf8(translation);
        po.entries.push_back(std::move(entry));
    }
    invocation.diagnostics.stop_if_strict();
    replace_file(target.path, po_text(po), target.shown);
    invocation.out.write(target.shown + ": " + counted(po.entries.size(), "text") + "\n");
    return kOk;
}

ExitCode run_wld_import(Invocation& invocation) {
    const Target source(invocation.arguments[0]);
    const PoFile po = read_po(read_file(source.path, source.shown), source.shown);
    const Target target = new_target(invocation.arguments[1]);
    Options options = invocation.options;
    if (options.language == 0) options.language = po.language.value_or(0);
    const bool has_contexts = std::any_of(po.entries.begin(), po.entries.end(),
                                          [](const PoEntry& entry) { return entry.context.has_value(); });
    const CodePage page = new_page(options, has_contexts ? kPageOfContexts : 0);
    NewPairs pairs(page, target.shown, invocation.diagnostics);
    if (options.language != 0) pairs.add_language(options.language);
    for (const PoEntry& entry : po.entries) {
        const std::string place = source.shown + ":" + std::to_string(entry.line);
        if (entry.fuzzy)
            invocation.diagnostics.warn(place, "marked as fuzzy; its source is taken for its translation");
        const std::wstring text = wide(entry.source, place);
        const std::wstring translation = entry.fuzzy ? std::wstring() : wide(entry.translation, place);
        pairs.add(wide(entry.context.value_or(""), place) + text, translation.empty() ? text : translation);
    }
    invocation.diagnostics.stop_if_strict();
    replace_file(target.path, pairs.lines(), target.shown);
    invocation.out.write(target.shown + ": " + counted(pairs.count(), "pair") + "\n");
    return pairs.complete() ? kOk : kNo;
}

} // namespace tool
