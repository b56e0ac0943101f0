// Random edits and searches against a model that keeps a text as a list of characters.
#include "string_kinds.h"

#include <algorithm>
#include <random>
#include <vector>

namespace {

using Characters = std::vector<std::string>;

bool leads_a_pair(unsigned char c) {
    return GetACP() == 932 && ((c >= 0x81 && c <= 0x9F) || (c >= 0xE0 && c <= 0xFC));
}

Characters split(const std::string& text) {
    Characters characters;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t n =
            leads_a_pair(static_cast<unsigned char>(text[i])) && i + 1 < text.size() ? 2 : 1;
        characters.push_back(text.substr(i, n));
        i += n;
    }
    return characters;
}

std::string join(const Characters& characters, std::size_t from, std::size_t to) {
    std::string text;
    for (std::size_t i = from; i < to; ++i)
        text += characters[i];
    return text;
}

int find(const Characters& text, const Characters& wanted, int start) {
    if (text.empty()) return -1;
    const std::size_t from = std::min<std::size_t>(static_cast<unsigned>(start), text.size());
    const auto found = std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(),
                                   wanted.begin(), wanted.end());
    return found == text.end() && !wanted.empty() ? -1 : static_cast<int>(found - text.begin());
}

struct Interval {
    std::size_t from, to;
};

Interval range(std::size_t length, int pos, int count) {
    const auto size = static_cast<long long>(length);
    const long long start = pos < 0 || pos >= size ? size : pos;
    const auto [from, to] = std::minmax({start, start + count});
    return {static_cast<std::size_t>(std::max(from, 0LL)), static_cast<std::size_t>(std::min(to, size))};
}

class Model : public testing::Test {
protected:
    int number(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }

    // Bytes that pair up in many ways: lead bytes, trail bytes that are "\", letters and spaces, half-width
    // ones.
    std::string random_text(int most) {
        static constexpr char kAlphabet[] = "ab \\.:x\x83\x81\xE0\xB1\x40\x83";
        std::string text;
        for (int n = number(0, most); n > 0; --n)
            text += kAlphabet[number(0, int(sizeof kAlphabet) - 2)];
        return text;
    }

    std::mt19937 random_{20240607};
};

TEST_F(Model, OfEditsAgrees) {
    CXString s;
    std::string model;
    for (int round = 0; round < 100000; ++round) {
        const Characters characters = split(model);
        const auto size = static_cast<int>(characters.size());
        const int pos = number(-2, size + 2);
        const int count = number(-4, 4);
        const std::string text = random_text(6);
        const Interval r = range(characters.size(), pos, count);
        const std::string head = join(characters, 0, r.from), inside = join(characters, r.from, r.to),
                          tail = join(characters, r.to, characters.size());
        const int operation = model.size() > 60 ? 1 : number(0, 7);
        switch (operation) {
        case 0: {
            const std::size_t at = std::min<std::size_t>(static_cast<unsigned>(pos), characters.size());
            model = join(characters, 0, at) + text + join(characters, at, characters.size());
            s.Insert(pos, text.c_str());
            break;
        }
        case 1:
            model = head + tail;
            s.Delete(pos, count);
            break;
        case 2:
            if (!inside.empty() && !text.empty()) model = head + text + tail;
            s.Replace(pos, count, text.c_str());
            break;
        case 3:
            if (number(0, 9) == 0) model = inside, s.Extract(pos, count);
            break;
        case 4: {
            const Characters wanted = split(text.substr(0, 2));
            const int found = find(characters, wanted, 0);
            if (found >= 0) {
                const auto at = static_cast<std::size_t>(found);
                model =
                    join(characters, 0, at) + "yz" + join(characters, at + wanted.size(), characters.size());
            }
            ASSERT_EQ(s.FindReplace(text.substr(0, 2).c_str(), "yz"), found >= 0 ? 1 : 0);
            break;
        }
        case 5: {
            Characters kept = characters;
            while (!kept.empty() && kept.back() == " ")
                kept.pop_back();
            model = join(kept, 0, kept.size());
            s.TrimRight();
            break;
        }
        case 6: {
            const std::size_t blank = std::min(model.find_first_not_of(' '), model.size());
            model.erase(0, blank);
            s.TrimLeft();
            break;
        }
        default:
            model += text;
            s = s + text.c_str();
        }
        ASSERT_EQ(std::string(s.GetData()), model) << "operation " << operation << " in round " << round;
    }
}

TEST_F(Model, OfReadingAndSearchingAgrees) {
    for (int round = 0; round < 100000; ++round) {
        const std::string text = random_text(40);
        SCOPED_TRACE(testing::PrintToString(text));
        const Characters characters = split(text);
        const auto size = static_cast<int>(characters.size());
        const CXString s(text.c_str());
        ASSERT_EQ(static_cast<int>(s.GetLength()), size);

        const int i = number(0, size + 1);
        const auto index = static_cast<std::size_t>(i);
        const std::string c = i < size ? characters[index] : "";
        const auto byte = [&c](std::size_t n) { return static_cast<unsigned char>(c[n]); };
        const int value = c.empty() ? 0 : c.size() == 1 ? byte(0) : byte(0) << 8 | byte(1);
        ASSERT_EQ(s.GetAt(static_cast<unsigned>(i)), value);
        ASSERT_EQ(s.GetSize(static_cast<unsigned>(i)),
                  join(characters, 0, std::min(index, characters.size())).size());

        const std::string wanted = random_text(3);
        const int start = number(0, size + 1);
        ASSERT_EQ(s.Find(wanted.c_str(), start), find(characters, split(wanted), start));

        const Characters set = split(wanted);
        const auto in_set = [&set](const std::string& one) {
            return std::find(set.begin(), set.end(), one) != set.end();
        };
        const auto first = std::find_if(characters.begin(), characters.end(), in_set);
        const auto last = std::find_if(characters.rbegin(), characters.rend(), in_set);
        ASSERT_EQ(s.FindOnOf(wanted.c_str(), 0), first == characters.end() ? -1 : first - characters.begin());
        ASSERT_EQ(s.FindRevOnOf(wanted.c_str()),
                  last == characters.rend() ? -1 : characters.rend() - last - 1);
        if (value != 0) {
            ASSERT_EQ(s.Find(static_cast<wchar_t>(value), start), find(characters, {c}, start));
            const auto same = std::find(characters.rbegin(), characters.rend(), c);
            ASSERT_EQ(s.FindRev(static_cast<wchar_t>(value)), characters.rend() - same - 1);
        }
    }
}

} // namespace
