#include "supp/code_page_setting.h"

#include "qzsupp.h"

#include <atomic>

namespace {

constinit std::atomic<unsigned long> dictionary_code_page{0};

} // namespace

void qzr::set_dictionary_code_page(unsigned long code_page) noexcept {
    dictionary_code_page.store(code_page, std::memory_order_relaxed);
}

unsigned long Supp_GetACP() { return dictionary_code_page.load(std::memory_order_relaxed); }
