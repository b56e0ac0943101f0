// Random edits and searches, in both widths, against a model that keeps a text as a list of characters.
#include "string_kinds.h"

#include <algorithm>
#include <random>
#include <vector>

namespace {

template <class Unit>
using Text = std::basic_string<Unit>;
template <class Unit>
using Characters = std::vector<Text<Unit>>;

bool leads_a_pair(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return GetACP() == 932 && ((byte >= 0x81 && byte <= 0x9F) || (byte >= 0xE0 && byte <= 0xFC));
}
bool leads_a_pair(wchar_t) { return false; }

template <class Unit>
Characters<Unit> split(const Text<Unit>& text) {
    Characters<Unit> characters;
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t n = leads_a_pair(text[i]) && i + 1 < text.size() ? 2 : 1;
        characters.push_back(text.substr(i, n));
        i += n;
    }
    return characters;
}

template <class Unit>
Text<Unit> join(const Characters<Unit>& characters, std::size_t from, std::size_t to) {
    Text<Unit> text;
    for (std::size_t i = from; i < to; ++i)
        text += characters[i];
    return text;
}

template <class Unit>
int find(const Characters<Unit>& text, const Characters<Unit>& wanted, int start) {
    if (text.empty()) return -1;
    const std::size_t from = std::min<std::size_t>(static_cast<unsigned>(start), text.size());
    const auto found = std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(),
                                   wanted.begin(), wanted.end());
    return found == text.end() && !wanted.empty() ? -1 : static_cast<int>(found - text.begin());
}

// A character as the members take it; of nothing 0.
template <class Unit>
wchar_t value_of(const Text<Unit>& c) {
    const auto unit = [&c](std::size_t i) { return static_cast<wchar_t>(std::make_unsigned_t<Unit>(c[i])); };
    return c.empty() ? wchar_t{0} : c.size() == 1 ? unit(0) : static_cast<wchar_t>(unit(0) << 8 | unit(1));
}

template <class Unit>
bool is_space(Unit c) {
    return c == ' ' || c == '\t' || c == '\n';
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

template <class Kind>
class Model : public testing::Test {
protected:
    using Letter = typename Kind::Unit;
    using String = typename Kind::String;

    int number(int from, int to) { return std::uniform_int_distribution<int>(from, to)(random_); }

    // Bytes that pair up in many ways: lead bytes, trail bytes that are "\", letters and spaces, half-width
    // ones.
    Text<Letter> random_text(int most) {
        static constexpr char kAlphabet[] = "ab \t\n\\.:x\x83\x81\xE0\xB1\x40\x83";
        Text<Letter> text;
        for (int n = number(0, most); n > 0; --n)
            text += static_cast<Letter>(
                static_cast<unsigned char>(kAlphabet[number(0, int(sizeof kAlphabet) - 2)]));
        return text;
    }

    // As texts, or as characters where they are such.
    int replace(String& s, const Text<Letter>& wanted, const Text<Letter>& by) {
        const bool as_characters = split(wanted).size() <= 1 && split(by).size() <= 1;
        switch (as_characters ? number(0, 3) : 0) {
        case 1:
            return s.FindReplace(wanted.c_str(), value_of(by));
        case 2:
            return s.FindReplace(value_of(wanted), by.c_str());
        case 3:
            return s.FindReplace(value_of(wanted), value_of(by));
        default:
            return s.FindReplace(wanted.c_str(), by.c_str());
        }
    }

    std::mt19937 random_{20240607};
};
TYPED_TEST_SUITE(Model, BothKinds, KindNames);

TYPED_TEST(Model, OfEditsAgrees) {
    using Unit = typename TypeParam::Unit;
    typename TypeParam::String s;
    Text<Unit> model;
    for (int round = 0; round < 100000; ++round) {
        const Characters<Unit> characters = split(model);
        const auto size = static_cast<int>(characters.size());
        const int pos = this->number(-2, size + 2);
        const int count = this->number(-4, 4);
        const Text<Unit> text = this->random_text(6);
        const Interval r = range(characters.size(), pos, count);
        const std::size_t at = std::min<std::size_t>(static_cast<unsigned>(pos), characters.size());
        const Text<Unit> head = join(characters, 0, r.from), inside = join(characters, r.from, r.to),
                         tail = join(characters, r.to, characters.size());
        const int operation = model.size() > 60 ? 2 : this->number(0, 8);
        switch (operation) {
        case 0:
        case 1: { // a text or its first character
            const Characters<Unit> added = split(text);
            const Text<Unit> one = added.empty() ? Text<Unit>() : added[0];
            model = join(characters, 0, at) + (operation == 0 ? text : one) +
                    join(characters, at, characters.size());
            operation == 0 ? s.Insert(pos, text.c_str()) : s.Insert(pos, value_of(one));
            break;
        }
        case 2:
            model = head + tail;
            s.Delete(pos, count);
            break;
        case 3:
            if (!inside.empty() && !text.empty()) model = head + text + tail;
            s.Replace(pos, count, text.c_str());
            break;
        case 4:
            if (this->number(0, 9) == 0) {
                model = inside;
                ASSERT_EQ(s.Extract(pos, count), static_cast<int>(inside.size()));
            }
            break;
        case 5: {
            const Text<Unit> by = this->random_text(2);
            const Characters<Unit> wanted = split(text.substr(0, 2));
            const int found = find(characters, wanted, 0);
            if (found >= 0) {
                const auto first = static_cast<std::size_t>(found);
                model = join(characters, 0, first) + by +
                        join(characters, first + wanted.size(), characters.size());
            }
            ASSERT_EQ(this->replace(s, text.substr(0, 2), by), found >= 0 ? 1 : 0);
            break;
        }
        case 6: {
            Characters<Unit> kept = characters;
            while (!kept.empty() && is_space(kept.back()[0]))
                kept.pop_back();
            model = join(kept, 0, kept.size());
            s.TrimRight();
            break;
        }
        case 7:
            model.erase(model.begin(), std::find_if_not(model.begin(), model.end(), is_space<Unit>));
            s.TrimLeft();
            break;
        default:
            model += text;
            s = s + text.c_str();
        }
        ASSERT_EQ(Text<Unit>(s.GetData()), model) << "operation " << operation << " in round " << round;
    }
}

TYPED_TEST(Model, OfReadingAndSearchingAgrees) {
    using Unit = typename TypeParam::Unit;
    for (int round = 0; round < 100000; ++round) {
        const Text<Unit> text = this->random_text(40);
        SCOPED_TRACE(testing::PrintToString(text));
        const Characters<Unit> characters = split(text);
        const auto size = static_cast<int>(characters.size());
        const typename TypeParam::String s(text.c_str());
        ASSERT_EQ(static_cast<int>(s.GetLength()), size);

        const int i = this->number(0, size + 1);
        const auto index = i > size ? 4000000000U : static_cast<unsigned>(i);
        const auto at = std::min<std::size_t>(index, characters.size());
        const Text<Unit> c = i < size ? characters[at] : Text<Unit>(), head = join(characters, 0, at);
        const wchar_t value = value_of(c);
        ASSERT_EQ(s.GetAt(index), value);
        ASSERT_EQ(s.GetSize(index), head.size());
        ASSERT_EQ(s.GetData(index), s.GetData() + head.size());
        const auto count = static_cast<unsigned>(this->number(-1, size + 1));
        const std::size_t end = at + std::min<std::size_t>(count, characters.size() - at);
        ASSERT_EQ(s.GetSize(index, count), join(characters, at, end).size());

        Text<Unit> buffer(48, Unit('?'));
        ASSERT_EQ(s.Copy(buffer.data(), index), head.size());
        ASSERT_EQ(buffer.c_str(), head);
        const auto room = static_cast<unsigned>(this->number(0, 45));
        std::size_t fits = 0;
        for (std::size_t k = 0; k < characters.size() && fits + characters[k].size() < room; ++k)
            fits += characters[k].size();
        buffer.assign(48, Unit('?'));
        ASSERT_EQ(s.CopyFit(buffer.data(), room), fits);
        ASSERT_EQ(buffer.substr(0, fits), text.substr(0, fits));
        ASSERT_EQ(buffer[fits], room != 0 ? Unit(0) : Unit('?')) << "without any room nothing is written";

        const Text<Unit> wanted = this->random_text(3);
        const int start = this->number(-2, size + 2);
        const auto from = std::min<std::size_t>(static_cast<unsigned>(start), characters.size());
        ASSERT_EQ(s.Find(wanted.c_str(), start), find(characters, split(wanted), start));

        const Characters<Unit> set = split(wanted);
        const auto in_set = [&set](const Text<Unit>& one) {
            return std::find(set.begin(), set.end(), one) != set.end();
        };
        const auto first =
            std::find_if(characters.begin() + static_cast<std::ptrdiff_t>(from), characters.end(), in_set);
        const auto last = std::find_if(characters.rbegin(), characters.rend(), in_set);
        ASSERT_EQ(s.FindOnOf(wanted.c_str(), start),
                  first == characters.end() ? -1 : first - characters.begin());
        ASSERT_EQ(s.FindRevOnOf(wanted.c_str()),
                  last == characters.rend() ? -1 : characters.rend() - last - 1);
        if (value != 0) {
            ASSERT_EQ(s.Find(value, start), find(characters, {c}, start));
            const auto same = std::find(characters.rbegin(), characters.rend(), c);
            ASSERT_EQ(s.FindRev(value), characters.rend() - same - 1);
        }
    }
}

} // namespace
