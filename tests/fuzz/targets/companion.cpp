// Companion files of dictionaries: the sizes of dialogs.
#include "fuzz/low_bytes.h"
#include "qzparam.h"
#include "qzref.h"
#include "supp/dialog_layout.h"

namespace {

std::vector<std::string> seeds() {
    return {"[\\Dialogs\\app.exe#1#101\\Dialog Size]\n0=t0,0,10,10\n1=s1,2,3,4\n",
            "[\\Dialogs\\app.exe#1##7\xFD\xFD\\Dialog Size]\r\n101=t-5,1,20,20\r\n-1=s 1 , 2,30\r\nx=i5\r\n",
            "[Dialogs]\n[\\Dialogs\\]\n[\\Dialogs\\a#1#b]\nv=t1,2,3,4\n[Dialogs\\a#1#b\\dialog "
            "size]\n9=t1,2,99999,4\n"};
}

std::vector<std::string> pieces() {
    return fuzz::parts(
        "[\\Dialogs\\~\\Dialog Size]\n~=t1,2,3,4\n~=s1,2,3,4\n~#1#101~app.exe#1##7~\xFD\xFD~\n~"
        "\r\n~,~-~2147483647~-2147483648~32768~99999999999~;~|~\\");
}

void check(const RECT* rect) {
    if (rect == nullptr) return;
    const auto fits = [](long long n) { return n >= SHRT_MIN && n <= SHRT_MAX; };
    fuzz::require(rect->right > rect->left && rect->bottom > rect->top, "an empty rectangle");
    fuzz::require(fits(rect->left) && fits(rect->top) && fits(1LL * rect->right - rect->left) &&
                      fits(1LL * rect->bottom - rect->top),
                  "a rectangle that fits into no template");
}

void run(const std::string& input) {
    static fuzz::LowBytes memory(8192);
    const auto tree = CQZRef<IParam>::Adopt(new_MemParam());
    fuzz::require(Param_IniFile2Param(memory.put(input).c_str(), tree.Get()) == 1, "not read");
    qzr::DialogLayouts layouts;
    layouts.add(*tree);
    for (const wchar_t* const id : {L"101", static_cast<const wchar_t*>(MAKEINTRESOURCEW(101)),
                                    static_cast<const wchar_t*>(MAKEINTRESOURCEW(7)), L"b"}) {
        for (const wchar_t* const module : {L"app.exe", L"a"}) {
            const qzr::DialogLayout* const layout = layouts.find(module, id);
            if (layout == nullptr) continue;
            for (const unsigned item : {0u, 1u, 9u, 101u, ~0u})
                check(layout->find(item));
        }
    }
}

} // namespace

const fuzz::Target fuzz::kCompanion{.name = "companion", .run = run, .seeds = seeds, .pieces = pieces};
