#include "param/text/included_files.h"

#include <utility>

namespace qzr {

FileContent IncludedFiles::open(const std::wstring& path) {
    const auto [found, first_time] = files_.try_emplace(path);
    if (!first_time && repeated_bytes_ >= kMostRepeatedBytes) return nullptr;
    ++includes_;
    File& file = found->second;
    FileContent content = file.kept ? file.content : read(path, file);
    if (content && !first_time) repeated_bytes_ += content->size();
    return content;
}

FileContent IncludedFiles::read(const std::wstring& path, File& file) {
    std::string text;
    const bool opened = try_read_text_file(path, file.size, text);
    file.size = text.size();
    const bool keep = keep_ && file.size <= kMostKeptBytes - kept_bytes_;
    if (keep) text.shrink_to_fit();
    FileContent content = opened ? std::make_shared<const std::string>(std::move(text)) : nullptr;
    if (!keep) return content;
    kept_bytes_ += file.size;
    file.kept = true;
    file.content = content;
    return content;
}

} // namespace qzr
